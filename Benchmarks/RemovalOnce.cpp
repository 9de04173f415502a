// Does one of the removals and prints what it took as one JSON object.
//
//     RemovalOnce make FOLDER FILES IN_A_FOLDER   makes a folder of empty files, so many in each folder of it
//     RemovalOnce delete FOLDER                   deletes it for good, past the guards, as what was picked
//     RemovalOnce clear HOME DATA                 clears each folder of HOME, as findings, to the trash in
//     DATA

#include "Platform/Clock.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Platform/Linux/Files/LinuxSpaceReserve.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Platform/Linux/Trash/LinuxTrash.h"
#include "Removal/Books.h"
#include "Removal/Clearance.h"
#include "Removal/Linux/LinuxGuards.h"
#include "Removal/PathRemoval.h"
#include "Removal/RemovalJournal.h"
#include "Removal/TrashLedger.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
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

// All that removing asks of the machine, with its books in `data`.
struct Machine
{
    Machine(std::string homePath, std::string dataPath)
        : home(std::move(homePath))
        , data(std::move(dataPath))
        , reserve(data + "/reserve")
        , trash(places, reserve, clock)
        , journal(reading, writing, RemovalJournal::besideLedger(store))
        , ledger({ .reading = reading, .writing = writing, .files = files, .trash = trash }, store)
    {
    }

    [[nodiscard]] RemovalServices services()
    {
        return { .trash = trash, .removal = removal, .files = files, .clock = clock, .guards = &guards };
    }

    std::string home;
    std::string data;
    std::string store = data + "/ledger.json";
    TrashPlaces places{ .homeTrash = data + "/Trash", .user = ::getuid() };
    HostGuards guards = LinuxGuards::guards({ .homes = { home }, .trashes = places });
    LinuxSpaceReserve reserve;
    SystemClock clock;
    LinuxFileFacts files;
    LinuxFileReading reading;
    LinuxFileWriting writing;
    LinuxFileRemoval removal;
    LinuxTrash trash;
    RemovalJournal journal;
    TrashLedger ledger;
};

QJsonObject make(const std::string &folder, long files, long inAFolder)
{
    const auto start = Watch::now();
    for (long number = 0; number < files; ++number) {
        const auto inner = folder + "/folder " + std::to_string(number / inAFolder);
        if (number % inAFolder == 0)
            std::filesystem::create_directories(inner);
        std::ofstream(inner + "/file " + std::to_string(number));
    }
    return { { "seconds", secondsSince(start) } };
}

QJsonObject deleteForGood(const std::string &folder)
{
    const auto home = folder.substr(0, folder.rfind('/'));
    Machine machine(home, home + "/data");
    const auto start = Watch::now();
    const auto inode = inodeAt(folder);
    const auto done = PathRemoval::remove(machine.services(),
        { .path = folder,
            .label = QStringLiteral("folder"),
            .picked = PathRemoval::Picked{ .isDirectory = true, .inode = inode.value_or(0) } },
        { .permanent = true, .home = home, .host = &machine.guards });
    return done.error ? failed(*done.error) : QJsonObject{ { "seconds", secondsSince(start) } };
}

QJsonObject clear(const std::string &home, const std::string &data)
{
    Machine machine(home, data);
    QList<Finding> findings;
    for (const auto &folder : std::filesystem::directory_iterator(home))
        findings.append({ .rule = { .title = QStringLiteral("Cache"), .safety = Safety::safe },
            .path = QString::fromStdString(folder.path().string()),
            .rawPath = folder.path().string(),
            .bytes = 1'000'000 });
    const auto start = Watch::now();
    Clearance clearance(machine.services(), machine.journal, home);
    const auto outcomes = clearance.clear({ .findings = findings }, {});
    const Books books{ .ledger = machine.ledger, .journal = machine.journal, .trash = machine.trash };
    books.enter(outcomes, false, [](qint64) {});
    const auto seconds = secondsSince(start);
    for (const auto &outcome : outcomes)
        if (outcome.error)
            return failed(*outcome.error);
    return { { "seconds", seconds }, { "findings", findings.size() },
        { "entries", static_cast<qint64>(machine.ledger.items().size()) } };
}

} // namespace

int main(int arguments, char **texts)
{
    const std::string job = arguments > 1 ? texts[1] : "";
    QJsonObject output;
    if (job == "make" && arguments == 5)
        output = make(texts[2], std::stol(texts[3]), std::stol(texts[4]));
    else if (job == "delete" && arguments == 3)
        output = deleteForGood(texts[2]);
    else if (job == "clear" && arguments == 4)
        output = clear(texts[2], texts[3]);
    else {
        std::fputs("RemovalOnce make FOLDER FILES IN_A_FOLDER | delete FOLDER | clear HOME DATA\n", stderr);
        return 2;
    }
    if (output.isEmpty())
        return 1;
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
    return 0;
}
