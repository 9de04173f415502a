// Does one of the removals and prints what it took as one JSON object.
//
//     RemovalOnce delete FOLDER          deletes it for good
//     RemovalOnce trash FOLDER TRASH     moves it to that trash and back, twice, and tells of the second
//     RemovalOnce count FOLDER CAP       counts what is in it

#include "Platform/Clock.h"
#include "Platform/Linux/Files/LinuxSpaceReserve.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Platform/Linux/Trash/LinuxTrash.h"
#include "Removal/PathRemoval.h"

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

QJsonObject failed(const QString &error)
{
    std::fputs(qPrintable(error), stderr);
    return {};
}

QJsonObject deleteForGood(const std::string &folder)
{
    LinuxFileRemoval removal;
    const auto start = Watch::now();
    const auto done = removal.remove(folder);
    return done ? QJsonObject{ { "seconds", secondsSince(start) } } : failed(done.error());
}

QJsonObject moveToTrash(const std::string &folder, const std::string &trashPath)
{
    LinuxSpaceReserve reserve(trashPath + "-reserve");
    const SystemClock clock;
    LinuxTrash trash({ .homeTrash = trashPath, .user = ::getuid() }, reserve, clock);
    double seconds = 0;
    // The first of a process also loads the time zone and makes the trash.
    for (int i = 0; i < 2; ++i) {
        const auto start = Watch::now();
        const auto moved = trash.move(folder);
        seconds = secondsSince(start);
        if (!moved)
            return failed(moved.error());
        if (const auto restored = trash.restore(*moved, folder); !restored)
            return failed(restored.error());
    }
    return { { "seconds", seconds } };
}

QJsonObject count(const std::string &folder, qsizetype cap)
{
    const auto start = Watch::now();
    const auto counted = PathRemoval::itemCount(folder, cap);
    return { { "seconds", secondsSince(start) }, { "count", counted.count }, { "capped", counted.capped } };
}

} // namespace

int main(int arguments, char **texts)
{
    const std::string job = arguments > 1 ? texts[1] : "";
    QJsonObject output;
    if (job == "delete" && arguments == 3)
        output = deleteForGood(texts[2]);
    else if (job == "trash" && arguments == 4)
        output = moveToTrash(texts[2], texts[3]);
    else if (job == "count" && arguments == 4)
        output = count(texts[2], std::stoll(texts[3]));
    else {
        std::fputs("RemovalOnce delete FOLDER | trash FOLDER TRASH | count FOLDER CAP\n", stderr);
        return 2;
    }
    if (output.isEmpty())
        return 1;
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
    return 0;
}
