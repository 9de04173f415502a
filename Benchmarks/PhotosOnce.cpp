// Finds all pictures in a folder and prints what that took as one JSON object.
//
//     PhotosOnce FOLDER

#include "Photos/Linux/PhotoWalk.h"
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

} // namespace

int main(int arguments, char **texts)
{
    const QCoreApplication application(arguments, texts);
    if (arguments != 2) {
        std::fputs("PhotosOnce FOLDER\n", stderr);
        return 2;
    }
    std::puts(QJsonDocument(query({ texts[1] })).toJson(QJsonDocument::Compact).constData());
    return 0;
}
