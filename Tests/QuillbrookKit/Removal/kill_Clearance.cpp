// Clears findings in a child that is killed at the entry of one of its system calls, starts anew, and
// compares disk, Trash, ledger, journal and total. Ten findings of three entries are killed at every call,
// until they come to their end; with "random", larger ones are killed at a thousand calls picked by chance.
//
//     kill_Clearance all | random | start | back | purge
//
// With the last three two findings are cleared, and what is killed at every call is the start after a
// clearance that never came to its books, putting all back, or deleting all for good.

#include "Platform/Clock.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Platform/Linux/Trash/LinuxTrash.h"
#include "Removal/Books.h"
#include "Removal/Clearance.h"
#include "Removal/RemovalJournal.h"
#include "Removal/TrashLedger.h"
#include "Support/FakeSpaceReserve.h"
#include "Support/KilledAtCall.h"
#include "Support/RootGivenUp.h"

#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <unistd.h>

using namespace Quillbrook;
namespace fs = std::filesystem;

namespace {

struct Size
{
    int findings = 0;
    int entries = 0;
};

constexpr Size small{ .findings = 10, .entries = 3 };
constexpr Size smallest{ .findings = 2, .entries = 3 };
constexpr Size large{ .findings = 4, .entries = 15 };
constexpr int randomKills = 1000;
constexpr qint64 bytesOfAnEntry = 1000;
constexpr qint64 totalBefore = 70'000;
constexpr std::string_view foreign = "foreign";
constexpr std::string_view foreignText = "not ours";
constexpr std::string_view foreignNote = "[Trash Info]\nPath=/elsewhere\nDeletionDate=2024-01-01T00:00:00\n";
constexpr auto closedToWriting = fs::perms::owner_read | fs::perms::owner_exec;

[[noreturn]] void fail(const std::string &what)
{
    std::fprintf(stderr, "%s\n", what.c_str());
    std::exit(1);
}

std::string content(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

void write(const std::string &path, std::string_view text)
{
    std::ofstream(path, std::ios::binary) << text;
}

std::vector<std::string> names(const std::string &folder)
{
    std::vector<std::string> found;
    std::error_code error;
    for (const auto &entry : fs::directory_iterator(folder, error))
        found.push_back(entry.path().filename().string());
    std::ranges::sort(found);
    return found;
}

// A home with findings whose entries have the same names, so that names in the Trash are taken, and with a
// thing in the Trash that somebody else threw away.
class Home
{
public:
    Home(std::string base, Size size)
        : m_base(std::move(base))
        , m_size(size)
    {
    }

    void make() const
    {
        remove();
        for (int i = 0; i < m_size.findings; ++i) {
            fs::create_directories(folder(i));
            for (int j = 0; j < m_size.entries; ++j)
                makeEntry(i, j);
        }
        fs::create_directories(trashFolder() + "/files");
        fs::create_directories(trashFolder() + "/info");
        write(trashFolder() + "/files/" + std::string(foreign), foreignText);
        write(trashFolder() + "/info/" + std::string(foreign) + ".trashinfo", foreignNote);
        write(totalFile(), std::to_string(totalBefore));
    }

    void remove() const
    {
        std::vector folders{ trashFolder() + "/files", trashFolder() + "/expunged" };
        for (int i = 0; i < m_size.findings; ++i)
            folders.push_back(folder(i));
        for (const auto &folder : folders)
            for (const auto &name : names(folder))
                if (fs::is_directory(fs::symlink_status(folder + '/' + name)))
                    fs::permissions(folder + '/' + name, fs::perms::owner_all);
        fs::remove_all(m_base);
    }

    [[nodiscard]] QList<Finding> findings() const
    {
        QList<Finding> all;
        for (int i = 0; i < m_size.findings; ++i)
            all.append({ .id = QString::number(i),
                .rule
                = { .id = QStringLiteral("a.rule"), .title = QStringLiteral("Rule"), .safety = Safety::safe },
                .path = QString::fromStdString(folder(i)),
                .rawPath = folder(i),
                .bytes = bytesOfAnEntry * m_size.entries });
        return all;
    }

    [[nodiscard]] std::string base() const { return m_base; }
    [[nodiscard]] std::string folder(int finding) const
    {
        return m_base + "/home/finding" + std::to_string(finding);
    }
    [[nodiscard]] std::string trashFolder() const { return m_base + "/data/Trash"; }
    [[nodiscard]] std::string ledger() const { return m_base + "/data/Quillbrook/ledger.json"; }
    [[nodiscard]] std::string totalFile() const { return m_base + "/total"; }
    [[nodiscard]] Size size() const { return m_size; }

    // What tells one entry from all others, wherever it lies.
    [[nodiscard]] static std::string mark(const std::string &path)
    {
        return fs::is_directory(fs::symlink_status(path)) ? content(path + "/inner") : content(path);
    }

private:
    void makeEntry(int finding, int entry) const
    {
        const auto path = folder(finding) + "/entry" + std::to_string(entry) + "\xFF";
        const auto text = std::to_string(finding) + ' ' + std::to_string(entry);
        if (entry % 3 == 0) {
            fs::create_directory(path);
            write(path + "/inner", text);
            // A move lends its owner the right to write to it.
            fs::permissions(path, closedToWriting);
        } else {
            write(path, text);
        }
    }

    std::string m_base;
    Size m_size;
};

// All that a program has, as one start of it.
class Start
{
public:
    explicit Start(const Home &home)
        : m_home(home)
        , m_trash({ .homeTrash = home.trashFolder(), .user = ::getuid() }, m_reserve, m_clock)
        , m_journal(m_reading, m_writing, RemovalJournal::besideLedger(home.ledger()))
        , m_ledger({ .reading = m_reading, .writing = m_writing, .files = m_files, .trash = m_trash },
              home.ledger())
    {
    }

    void clear()
    {
        Clearance clearance({ .trash = m_trash, .removal = m_removal, .files = m_files, .clock = m_clock },
            m_journal, m_home.base() + "/home");
        m_journal.startBatch(total());
        m_outcomes = clearance.clear({ .findings = m_home.findings() }, {});
    }
    void enter()
    {
        books().enter(m_outcomes, false, [this](qint64 bytes) { count(bytes); });
    }
    void clearAndEnter()
    {
        clear();
        enter();
    }

    void putBack()
    {
        std::ignore = books().putBack(books().held());
        books().close();
    }
    void purge()
    {
        books().purge(m_ledger.items());
        books().close();
    }
    void prune() { m_ledger.prune(); }

    void takeUp()
    {
        books().takeUp(total(), [this](qint64 bytes) { count(bytes); });
    }

    [[nodiscard]] qint64 total() const { return std::stoll(content(m_home.totalFile())); }
    [[nodiscard]] const TrashLedger &ledger() const { return m_ledger; }
    [[nodiscard]] const RemovalJournal &journal() const { return m_journal; }
    [[nodiscard]] const LinuxTrash &trash() const { return m_trash; }

private:
    [[nodiscard]] Books books() { return { .ledger = m_ledger, .journal = m_journal, .trash = m_trash }; }
    void count(qint64 bytes)
    {
        std::ignore = m_writing.replace(m_home.totalFile(), QByteArray::number(total() + bytes));
    }

    const Home &m_home;
    FakeSpaceReserve m_reserve;
    SystemClock m_clock;
    LinuxFileFacts m_files;
    LinuxFileReading m_reading;
    LinuxFileWriting m_writing;
    LinuxFileRemoval m_removal;
    LinuxTrash m_trash;
    RemovalJournal m_journal;
    TrashLedger m_ledger;
    std::vector<Reclaimer::Outcome> m_outcomes;
};

// A run of the program of its own that does `job`.
KilledAtCall run(const Home &home, void (Start::*job)() = &Start::clearAndEnter)
{
    return KilledAtCall([&home, job] {
        Start start(home);
        (start.*job)();
    });
}

// Where every entry lies: at home by its path, or in the Trash.
struct Whereabouts
{
    std::set<std::string> atHome{};
    std::map<std::string, std::string> inTrash{};
};

// Things and notes belong together, and what somebody else threw away is as it was.
void compareTrash(const Home &home, const std::string &when)
{
    const auto files = home.trashFolder() + "/files";
    std::vector<std::string> notes;
    for (const auto &name : names(files))
        notes.push_back(name + ".trashinfo");
    std::ranges::sort(notes);
    if (notes != names(home.trashFolder() + "/info"))
        fail(when + ": things and notes do not match");
    if (content(files + '/' + std::string(foreign)) != foreignText
        || content(home.trashFolder() + "/info/" + std::string(foreign) + ".trashinfo") != foreignNote)
        fail(when + ": what is not ours has changed");
}

Whereabouts whereabouts(const Home &home, const std::string &when)
{
    Whereabouts found;
    const auto checkRights = [&](const std::string &path) {
        const auto status = fs::symlink_status(path);
        if (fs::is_directory(status) && status.permissions() != closedToWriting)
            fail(when + ": a right that was lent is not taken back");
    };
    for (int i = 0; i < home.size().findings; ++i)
        for (const auto &name : names(home.folder(i))) {
            checkRights(home.folder(i) + '/' + name);
            found.atHome.insert(Home::mark(home.folder(i) + '/' + name));
        }
    for (const auto &name : names(home.trashFolder() + "/files"))
        if (name != foreign) {
            const auto path = home.trashFolder() + "/files/" + name;
            checkRights(path);
            found.inTrash.emplace(Home::mark(path), path);
        }
    return found;
}

void compare(const Home &home, const std::string &when)
{
    Start start(home);
    start.takeUp();
    const auto found = whereabouts(home, when);
    const auto entries = static_cast<size_t>(home.size().findings) * static_cast<size_t>(home.size().entries);
    if (found.atHome.size() + found.inTrash.size() != entries)
        fail(when + ": an entry is gone, or is there twice");
    std::set<std::string> rows;
    qint64 bytes = 0;
    for (const auto &item : start.ledger().items()) {
        rows.insert(item.trashPath);
        bytes += item.bytes;
        if (!start.trash().isStill(item.trashPath, item.provenance()))
            fail(when + ": a row names what is not its thing");
    }
    std::set<std::string> things;
    for (const auto &[mark, path] : found.inTrash)
        things.insert(path);
    if (rows != things || start.ledger().items().size() != things.size())
        fail(when + ": the ledger holds " + std::to_string(rows.size()) + " of "
            + std::to_string(things.size()) + " things");
    if (start.total() != totalBefore + bytes || bytes != bytesOfAnEntry * static_cast<qint64>(things.size()))
        fail(when + ": the total is " + std::to_string(start.total()) + " with rows of "
            + std::to_string(bytes));
    if (!start.journal().units().empty() || start.journal().total())
        fail(when + ": the journal was not closed");
    compareTrash(home, when);

    Start again(home);
    again.takeUp();
    const auto isSameRow = [](const TrashedItem &a, const TrashedItem &b) { return a.id == b.id; };
    if (again.total() != start.total()
        || !std::ranges::equal(again.ledger().items(), start.ledger().items(), isSameRow))
        fail(when + ": a second start changes something");
}

long killEverywhere(const Home &home)
{
    home.make();
    auto whole = run(home);
    std::ignore = whole.at(0);
    std::printf("%ld calls\n", whole.calls);
    std::fflush(stdout);
    compare(home, "not killed");
    long kills = 0;
    for (bool isKilled = true; isKilled;) {
        home.make();
        isKilled = run(home).at(++kills);
        compare(home, "killed at call " + std::to_string(kills));
    }
    return kills - 1;
}

// Everything is where it was or in the Trash with its row, and a second try puts the rest back.
void comparePutBack(const Home &home, const std::string &when)
{
    Start start(home);
    start.takeUp();
    compareTrash(home, when);
    const auto found = whereabouts(home, when);
    const auto entries = static_cast<size_t>(home.size().findings) * static_cast<size_t>(home.size().entries);
    if (found.atHome.size() + found.inTrash.size() != entries)
        fail(when + ": an entry is gone, or is there twice");
    start.putBack();
    compareTrash(home, when);
    if (whereabouts(home, when).atHome.size() != entries)
        fail(when + ": not all can be put back");
}

// A row names a whole thing or none, what is in no row is gone or out of the Trash, and nothing else was
// touched. The next purge takes the rest, and what the first has left half deleted.
void comparePurged(const Home &home, const std::string &when)
{
    Start start(home);
    start.takeUp();
    compareTrash(home, when);
    const auto found = whereabouts(home, when);
    std::set<std::string> rows;
    for (const auto &item : start.ledger().items())
        if (start.trash().isStill(item.trashPath, item.provenance()))
            rows.insert(item.trashPath);
    for (const auto &[mark, path] : found.inTrash)
        if (!rows.erase(path) || mark.empty())
            fail(when + ": what lies in the Trash is not whole, or in no row");
    if (!rows.empty())
        fail(when + ": two rows name one thing");
    start.purge();
    compareTrash(home, when);
    if (names(home.trashFolder() + "/files") != std::vector{ std::string(foreign) })
        fail(when + ": the next purge did not take the rest alone");
    if (!names(home.trashFolder() + "/expunged").empty())
        fail(when + ": the next purge left what was half deleted");
    start.prune();
    if (!start.ledger().items().empty())
        fail(when + ": rows are left");
}

// Kills `job` at every call, after what `before` does, until it comes to its end.
long killEveryCall(const Home &home, void (Start::*before)(), void (Start::*job)(),
    void (*comparison)(const Home &, const std::string &))
{
    long kills = 0;
    for (bool isKilled = true; isKilled;) {
        home.make();
        (Start(home).*before)();
        isKilled = run(home, job).at(++kills);
        comparison(home, "killed at call " + std::to_string(kills));
    }
    return kills - 1;
}

long killAtRandom(const Home &home)
{
    home.make();
    auto whole = run(home);
    std::ignore = whole.at(0);
    compare(home, "not killed");
    std::mt19937 random(4711); // NOLINT: the same points in every run
    std::uniform_int_distribution<long> anyCall(1, whole.calls);
    for (int i = 0; i < randomKills; ++i) {
        const auto call = anyCall(random);
        home.make();
        std::ignore = run(home).at(call);
        compare(home, "larger findings, killed at call " + std::to_string(call));
    }
    return randomKills;
}

long killStarts(const Home &home)
{
    return killEveryCall(home, &Start::clear, &Start::takeUp, compare);
}

long killReturns(const Home &home)
{
    return killEveryCall(home, &Start::clearAndEnter, &Start::putBack, comparePutBack);
}

long killPurges(const Home &home)
{
    return killEveryCall(home, &Start::clearAndEnter, &Start::purge, comparePurged);
}

struct Job
{
    Size size{};
    long (*kill)(const Home &home) = nullptr;
};

} // namespace

int main(int arguments, char **texts)
{
    const std::string_view which = arguments == 2 ? texts[1] : "";
    const std::map<std::string_view, Job> jobs{
        { "all", { .size = small, .kill = killEverywhere } },
        { "random", { .size = large, .kill = killAtRandom } },
        { "start", { .size = smallest, .kill = killStarts } },
        { "back", { .size = smallest, .kill = killReturns } },
        { "purge", { .size = smallest, .kill = killPurges } },
    };
    const auto job = jobs.find(which);
    if (job == jobs.end()) {
        std::fputs("kill_Clearance all | random | start | back | purge\n", stderr);
        return 2;
    }
    // To whom nothing is closed, no right is lent.
    giveUpRoot();
    KilledAtCall::prepare();
    // In memory where there is such a place: thousands of homes are made and deleted.
    const auto place
        = QDir(QStringLiteral("/dev/shm")).exists() ? QStringLiteral("/dev/shm") : QDir::tempPath();
    const QTemporaryDir folder(place + QStringLiteral("/quillbrook-kill-XXXXXX"));
    if (!folder.isValid())
        fail("no folder");
    const Home home(folder.path().toStdString() + "/base", job->second.size);
    const auto kills = job->second.kill(home);
    home.remove();
    std::printf("%ld kills\n", kills);
    return 0;
}
