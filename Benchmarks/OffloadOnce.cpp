// Moves a folder to another volume, or measures one, and prints what it took as one JSON object.
//
//     OffloadOnce move FOLDER VOLUME TRASH BYTES    leaves a link behind; the folder lies in that trash
//     afterwards OffloadOnce rates VOLUME                      mebibytes a second, written and read

#include "Offload/Profiling.h"
#include "Offload/Relocation.h"
#include "Platform/Clock.h"
#include "Platform/Linux/LinuxDisk.h"
#include "Platform/Linux/Processes/LinuxProcessors.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace {

using namespace Quillbrook;

struct Machine
{
    explicit Machine(const std::string &trash)
        : disk(trash + "-program", { .homeTrash = trash, .user = ::getuid() }, clock)
    {
    }

    [[nodiscard]] OffloadServices services()
    {
        return { .directories = disk.directories,
            .processors = processors,
            .files = disk.files,
            .drives = disk.drives,
            .speeds = disk.speeds,
            .disk = disk.relocation,
            .trash = disk.trash };
    }

    SystemClock clock;
    LinuxProcessors processors;
    LinuxDisk disk;
};

QJsonObject failed(const OffloadError &error)
{
    std::fputs(qPrintable(error.description()), stderr);
    return {};
}

QJsonObject move(const std::string &folder, const std::string &volume, const std::string &trash, qint64 bytes)
{
    Machine machine(trash);
    const auto start = std::chrono::steady_clock::now();
    const auto moved = Offload::relocate(machine.services(),
        { .source = folder,
            .into = volume,
            .bytes = bytes,
            .profile = { .freeBytes = bytes + 1 },
            .allowSlowBus = true });
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    return moved ? QJsonObject{ { "seconds", seconds.count() } } : failed(moved.error());
}

QJsonObject rates(const std::string &volume)
{
    Machine machine(volume + "/unused");
    const auto profile = Offload::profile(machine.services(), { .destination = volume, .sampleMB = 24 });
    if (!profile)
        return failed(profile.error());
    return { { "write", profile->writeMBPerSecond }, { "read", profile->readMBPerSecond },
        { "seconds", 24 / profile->writeMBPerSecond } };
}

} // namespace

int main(int count, char **texts)
{
    const QCoreApplication application(count, texts);
    const std::string job = count > 1 ? texts[1] : "";
    QJsonObject output;
    if (job == "move" && count == 6)
        output = move(texts[2], texts[3], texts[4], std::stoll(texts[5]));
    else if (job == "rates" && count == 3)
        output = rates(texts[2]);
    else {
        std::fputs("OffloadOnce move FOLDER VOLUME TRASH BYTES | rates VOLUME\n", stderr);
        return 2;
    }
    if (output.isEmpty())
        return 1;
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
    return 0;
}
