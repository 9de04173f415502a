// Does one thing with a library of pictures and prints what it took as one JSON object.
//
//     PhotosOnce query FOLDER            finds all pictures in it
//     PhotosOnce trash FOLDER TRASH      moves all of them to that trash

#include "Photos/Linux/PhotoRemoval.h"
#include "Photos/Linux/PhotoWalk.h"
#include "Platform/Clock.h"
#include "Platform/Linux/LinuxDisk.h"
#include "Removal/Linux/LinuxGuards.h"
#include "Removal/PathRemoval.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace {

using namespace Quillbrook;
using Watch = std::chrono::steady_clock;

double secondsSince(Watch::time_point start)
{
    return std::chrono::duration<double>(Watch::now() - start).count();
}

struct Library
{
    std::string folder;
    HostGuards guards = LinuxGuards::guards({ .homes = { folder },
        .userFolders = { folder + "/Pictures" },
        .trashes = { .homeTrash = folder + "/.local/share/Trash", .user = ::getuid() } });

    [[nodiscard]] std::shared_ptr<const LinuxPhotoAssets> query() const
    {
        PhotoWork work;
        const auto everything = PhotoQuery::ofRange(
            QDateTime::fromSecsSinceEpoch(0), QDateTime::currentDateTime().addYears(1), true);
        const auto keeps = [this](const std::string &path) {
            return PathRemoval::refusal(path, folder, &guards).has_value();
        };
        PhotoWalk walk(everything, keeps, work);
        std::ignore = walk.walk({ .path = folder });
        return walk.take();
    }
};

QJsonObject query(const Library &library)
{
    const auto start = Watch::now();
    const auto assets = library.query();
    const auto seconds = secondsSince(start);
    return { { "seconds", seconds }, { "assets", assets->count() } };
}

QJsonObject trash(const Library &library, const std::string &trashPath)
{
    const SystemClock clock;
    LinuxDisk disk(trashPath + "-data", { .homeTrash = trashPath, .user = ::getuid() }, clock);
    const auto assets = library.query();
    PhotoRemoval removal(
        { .removal = { .trash = disk.trash, .removal = disk.removal, .files = disk.files, .clock = clock },
            .reading = disk.reading,
            .writing = disk.writing,
            .guards = &library.guards,
            .home = library.folder,
            .list = trashPath + "-data/photos.jsonl" });
    PhotoWork work;
    const auto start = Watch::now();
    const auto deletion = removal.moveAll(*assets, work);
    const auto seconds = secondsSince(start);
    return deletion.succeeded ? QJsonObject{ { "seconds", seconds }, { "assets", assets->count() } }
                              : QJsonObject();
}

} // namespace

int main(int arguments, char **texts)
{
    const QCoreApplication application(arguments, texts);
    const std::string job = arguments > 1 ? texts[1] : "";
    QJsonObject output;
    if (job == "query" && arguments == 3)
        output = query({ texts[2] });
    else if (job == "trash" && arguments == 4)
        output = trash({ texts[2] }, texts[3]);
    else {
        std::fputs("PhotosOnce query FOLDER | trash FOLDER TRASH\n", stderr);
        return 2;
    }
    if (output.isEmpty())
        return 1;
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
    return 0;
}
