// Clearing findings with ledger and journal on the real disk. Kills are in kill_Clearance.cpp.

#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Removal/BookedMove.h"
#include "Removal/Books.h"
#include "Removal/Clearance.h"
#include "Removal/RemovalJournal.h"
#include "Removal/TrashLedger.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

struct Machine
{
    Machine()
    {
        for (const auto *name : { "one/a\xff", "one/b", "one/c", "two/a\xff", "two/d" })
            f.home.fileWith(std::string("caches/") + name, name);
        start();
    }

    void start()
    {
        const auto store = f.home.path("data/ledger.json");
        journal = std::make_unique<RemovalJournal>(reading, writing, RemovalJournal::besideLedger(store));
        ledger = std::make_unique<TrashLedger>(
            LedgerServices{ .reading = reading, .writing = writing, .files = files, .trash = f.trash },
            store);
    }

    [[nodiscard]] Finding finding(const std::string &name, qint64 bytes) const
    {
        return { .rule = { .id = u"a.rule"_s, .title = QString::fromStdString(name), .safety = Safety::safe },
            .path = QString::fromStdString(f.home.path("caches/" + name)),
            .rawPath = f.home.path("caches/" + name),
            .bytes = bytes };
    }
    [[nodiscard]] std::vector<Reclaimer::Outcome> clear(const Clearance::Watch &watch = {})
    {
        Clearance clearance({ .trash = f.trash, .removal = removal, .files = files, .clock = f.clock },
            *journal, f.home.path("caches"));
        journal->startBatch(total);
        return clearance.clear(
            { .findings = { finding("one", 30), finding("two", 20) }, .byRule = byRule }, watch);
    }
    [[nodiscard]] Books books() { return { .ledger = *ledger, .journal = *journal, .trash = f.trash }; }
    void enter(const std::vector<Reclaimer::Outcome> &outcomes)
    {
        books().enter(outcomes, byRule, [this](qint64 bytes) { total += bytes; });
    }
    void takeUp()
    {
        books().takeUp(total, [this](qint64 bytes) { total += bytes; });
    }
    // Of a path that lies where `clear` finds it.
    void makeStuck(const std::string &path, int error = EBUSY)
    {
        f.calls.before = [name = path.substr(path.rfind('/') + 1), error](std::string_view call,
                             const char *of) { return call == "renameat2" && of == name ? error : 0; };
    }
    // As on a full disk, where a long ledger no longer finds room.
    void makeLedgerUnsavable() { f.home.file("data/ledger.json/in the way"); }
    void startWithTheLedgerOfBefore()
    {
        std::filesystem::remove_all(f.home.path("data/ledger.json"));
        start();
    }

    TrashFixture f;
    LinuxFileReading reading;
    LinuxFileWriting writing;
    LinuxFileFacts files;
    LinuxFileRemoval removal;
    std::unique_ptr<RemovalJournal> journal;
    std::unique_ptr<TrashLedger> ledger;
    qint64 total = 7;
    bool byRule = false;
};

} // namespace

class TestClearance : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachEntryIsToldBeforeItGoes()
    {
        Machine machine;
        std::vector<Clearance::Progress> told;
        const auto outcomes = machine.clear(
            { .progress = [&](const Clearance::Progress &progress) { told.push_back(progress); } });
        machine.enter(outcomes);
        QCOMPARE(told.size(), size_t{ 5 });
        QVERIFY((told[1]
            == Clearance::Progress{ .finding = 1,
                .findings = 2,
                .entry = 2,
                .entries = 3,
                .title = u"one"_s,
                .name = u"b"_s,
                .bytes = 10 }));
        QCOMPARE(told[4].finding, 2);
        QCOMPARE(told[4].bytes, 40);
        QCOMPARE(machine.total, 7 + 50);
        QCOMPARE(machine.ledger->items().size(), size_t{ 5 });
        machine.start();
        machine.takeUp();
        QCOMPARE(machine.total, 7 + 50);
        QCOMPARE(machine.ledger->items().size(), size_t{ 5 });
    }

    // The finding that a stop cuts short is a failed one: never rows, and kept to be put back.
    void stopEndsBetweenTwoEntries()
    {
        Machine machine;
        std::stop_source stop;
        const auto outcomes = machine.clear({ .progress =
                                                  [&](const Clearance::Progress &progress) {
                                                      if (progress.finding == 2)
                                                          stop.request_stop();
                                                  },
            .stop = stop.get_token() });
        QCOMPARE(outcomes.size(), size_t{ 2 });
        QVERIFY(!outcomes[0].error);
        QCOMPARE(outcomes[1].error, ReclaimError::stopped());
        QVERIFY(TrashFixture::isThere(machine.f.home.path("caches/two/d")));
        machine.enter(outcomes);
        QCOMPARE(machine.total, 7 + 30);
        QCOMPARE(machine.ledger->pendingCount(), 3);
        QCOMPARE(machine.books().held().size(), size_t{ 4 });
    }

    void whatFailedInPartIsKeptToBePutBackAndNothingElse_data()
    {
        QTest::addColumn<int>("error");
        QTest::newRow("in use") << EBUSY;
        QTest::newRow("on another volume") << EXDEV;
        QTest::newRow("not to be changed") << EPERM;
    }
    void whatFailedInPartIsKeptToBePutBackAndNothingElse()
    {
        QFETCH(int, error);
        Machine machine;
        machine.makeStuck("b", error);
        machine.enter(machine.clear());
        machine.f.calls.before = nullptr;
        QCOMPARE(machine.ledger->pendingCount(), 2);
        machine.start();
        machine.takeUp();
        QCOMPARE(machine.total, 7 + 20);
        QCOMPARE(machine.ledger->purge().removed, 2);
        const auto held = machine.books().held();
        QCOMPARE(held.size(), size_t{ 2 });
        for (const auto &each : held)
            QVERIFY(each.isOnlyInJournal);
        for (const bool isThere : { true, false })
            for (const auto &done : machine.books().putBack(held))
                QCOMPARE(done.has_value(), isThere);
        QCOMPARE(TrashFixture::names(machine.f.home.path("caches/one")),
            (std::vector<std::string>{ "a\xff", "b", "c" }));
        machine.start();
        QVERIFY(machine.books().held().empty());
    }

    void nothingIsReplacedByWhatIsPutBack()
    {
        Machine machine;
        machine.enter(machine.clear());
        machine.f.home.fileWith("caches/two/d", "new");
        const auto held = machine.books().held();
        const auto done = machine.books().putBack(held);
        QCOMPARE(done.size(), held.size());
        for (size_t i = 0; i < held.size(); ++i)
            QCOMPARE(done[i].has_value(), held[i].item.originalPath != machine.f.home.path("caches/two/d"));
        QCOMPARE(TrashFixture::content(machine.f.home.path("caches/two/d")), "new");
        QCOMPARE(machine.ledger->items().size(), size_t{ 1 });
    }

    void withoutAJournalNothingIsBegun()
    {
        Machine machine;
        machine.f.home.folder("data/journal.jsonl");
        const auto outcomes = machine.clear();
        for (const auto &outcome : outcomes)
            QVERIFY(outcome.error && outcome.error->startsWith(BookedMove::notBegun({})));
        QVERIFY(TrashFixture::names(machine.f.places.homeTrash + "/files").empty());
        QVERIFY(TrashFixture::isThere(machine.f.home.path("caches/one/b")));
    }

    // Ended by a kill after the moves and before the books, at the very last line or in the middle of it.
    void nextStartTakesUpWhatTheJournalNames_data()
    {
        QTest::addColumn<int>("cut");
        QTest::addColumn<qint64>("added");
        QTest::newRow("whole") << 0 << qint64{ 50 };
        QTest::newRow("without its last line") << 10 << qint64{ 50 };
        QTest::newRow("without the last entry") << 40 << qint64{ 40 };
    }
    void nextStartTakesUpWhatTheJournalNames()
    {
        QFETCH(int, cut);
        QFETCH(qint64, added);
        Machine machine;
        std::ignore = machine.clear();
        const auto path = machine.f.home.path("data/journal.jsonl");
        std::filesystem::resize_file(path, std::filesystem::file_size(path) - static_cast<size_t>(cut));
        machine.f.home.file("somebody's");
        QVERIFY(machine.f.trash.move(machine.f.home.path("somebody's")));
        machine.start();
        machine.takeUp();
        QCOMPARE(machine.total, 7 + added);
        QCOMPARE(machine.ledger->items().size(), static_cast<size_t>(added / 10));
        QCOMPARE(machine.ledger->pendingBytes(), added);
    }

    void whatADriveHoldsThatIsAwayIsNotForgotten_data()
    {
        QTest::addColumn<bool>("hasFailed");
        QTest::newRow("killed") << false;
        QTest::newRow("failed in part") << true;
    }
    // No volume is where its trash would be.
    void whatADriveHoldsThatIsAwayIsNotForgotten()
    {
        QFETCH(bool, hasFailed);
        Machine machine;
        const auto trash = "/nowhere/stick/" + machine.f.places.ownTrashName() + "/files/";
        const auto item = [&](const QString &id, const std::string &name) {
            return TrashedItem{
                .id = id, .label = id, .trashPath = trash + name, .identity = ThingIdentity{ .note = "note" }
            };
        };
        machine.journal->startBatch(machine.total);
        QVERIFY(machine.journal->begin({ .title = u"Stick"_s, .bytes = 20, .planned = 2 }));
        // The second name was taken.
        for (const auto &tried : { item(u"A"_s, "a"), item(u"B"_s, "b"), item(u"B"_s, "b.2") })
            QVERIFY(machine.journal->plan(tried));
        if (hasFailed)
            machine.journal->fail({});
        for (int starts = 0; starts < 2; ++starts) {
            machine.start();
            machine.takeUp();
        }
        QVERIFY(machine.books().held().empty());
        QStringList names;
        for (const auto &row : machine.ledger->items())
            names.append(QString::fromStdString(row.trashPath.substr(trash.size())));
        QCOMPARE(names, hasFailed ? QStringList() : (QStringList{ u"a"_s, u"b.2"_s }));
        QCOMPARE(machine.total, hasFailed ? 7 : 27);
        QCOMPARE(machine.journal->units().size(), hasFailed ? size_t{ 1 } : size_t{ 0 });
    }

    void namesThatAreNoTextAreToldApart()
    {
        Machine machine;
        machine.f.home.fileWith("caches/one/a\xfe", "another");
        machine.enter(machine.clear());
        QVERIFY(TrashFixture::names(machine.f.home.path("caches/one")).empty());
        machine.start();
        for (const auto &done : machine.books().putBack(machine.books().held()))
            QVERIFY(done);
        QCOMPARE(TrashFixture::content(machine.f.home.path("caches/one/a\xfe")), "another");
        QCOMPARE(TrashFixture::content(machine.f.home.path("caches/one/a\xff")), "one/a\xff");
    }

    void journalStaysUntilTheLedgerIsSaved()
    {
        Machine machine;
        machine.makeLedgerUnsavable();
        machine.enter(machine.clear());
        QCOMPARE(machine.ledger->items().size(), size_t{ 5 });
        QCOMPARE(machine.total, 57);
        machine.startWithTheLedgerOfBefore();
        QVERIFY(machine.ledger->items().empty());
        machine.takeUp();
        QCOMPARE(machine.ledger->items().size(), size_t{ 5 });
        QCOMPARE(machine.total, 57);
        machine.start();
        QCOMPARE(machine.ledger->items().size(), size_t{ 5 });
        QVERIFY(machine.journal->units().empty());
    }

    // The first one has been counted, the second not.
    void killAfterAnUnsavedClearanceCountsBothOnce()
    {
        Machine machine;
        machine.makeLedgerUnsavable();
        machine.enter(machine.clear());
        for (const auto *name : { "caches/one/later", "caches/two/later" })
            machine.f.home.file(name);
        std::ignore = machine.clear();
        machine.startWithTheLedgerOfBefore();
        machine.takeUp();
        QCOMPARE(machine.total, 7 + 50 + 50);
        QCOMPARE(machine.ledger->items().size(), size_t{ 7 });
    }

    void puttingBackBeforeTheLedgerIsSavedCountsNothingTwice()
    {
        Machine machine;
        machine.makeLedgerUnsavable();
        machine.makeStuck("b");
        machine.enter(machine.clear());
        machine.f.calls.before = nullptr;
        auto held = machine.books().held();
        std::erase_if(held, [](const HeldItem &each) { return !each.isOnlyInJournal; });
        QCOMPARE(held.size(), size_t{ 2 });
        for (const auto &done : machine.books().putBack(held))
            QVERIFY(done);
        machine.startWithTheLedgerOfBefore();
        machine.takeUp();
        QCOMPARE(machine.total, 7 + 20);
        QCOMPARE(machine.ledger->items().size(), size_t{ 2 });
    }

    // What is deleted for good is counted too, and stands in no journal.
    void totalOfAnEmptyClearanceIsNotKept()
    {
        Machine machine;
        machine.journal->startBatch(machine.total);
        machine.total = 1000;
        std::ignore = machine.clear();
        machine.start();
        machine.takeUp();
        QCOMPARE(machine.total, 1000 + 50);
    }

    // All that went is known, also of a finding that failed in part, and none of it a person has reclaimed.
    void whatARuleMovedBeforeAKillIsMarkedAndNotCounted()
    {
        Machine machine;
        machine.byRule = true;
        machine.makeStuck("b");
        std::ignore = machine.clear();
        machine.start();
        machine.takeUp();
        QCOMPARE(machine.total, 7);
        QCOMPARE(machine.ledger->items().size(), size_t{ 4 });
        for (const auto &item : machine.ledger->items())
            QCOMPARE(item.byRule, std::optional(true));
        QVERIFY(machine.journal->units().empty());
    }

    void stopEndsPuttingBackBetweenTwoThings()
    {
        Machine machine;
        machine.enter(machine.clear());
        std::stop_source stop;
        const auto held = machine.books().held();
        const auto done = machine.books().putBack(held,
            { .before =
                    [&](qsizetype number, qsizetype count, const TrashedItem &item, qint64 bytes) {
                        QCOMPARE(count, 5);
                        QCOMPARE(item, held[static_cast<size_t>(number - 1)].item);
                        QCOMPARE(bytes, (number - 1) * 10);
                        if (number == 2)
                            stop.request_stop();
                    },
                .stop = stop.get_token() });
        QCOMPARE(done.size(), size_t{ 2 });
        QCOMPARE(machine.books().held(), std::vector(held.begin() + 2, held.end()));
    }

    // Of each thing that leaves the Trash a line goes before, and is closed with the rest.
    void whatIsAboutToLeaveTheTrashStandsInTheJournal()
    {
        Machine machine;
        machine.enter(machine.clear());
        const auto held = machine.books().held();
        std::ignore = machine.books().putBack({ held[0] });
        machine.books().purge({ held[1].item });
        machine.start();
        QCOMPARE(machine.journal->leaving(), (std::vector{ held[0].item, held[1].item }));
        machine.takeUp();
        machine.start();
        QVERIFY(machine.journal->leaving().empty());
        QCOMPARE(machine.books().held(), std::vector(held.begin() + 2, held.end()));
    }

    // Its own row, its own line in the journal, and the tests of its finding.
    void memberOfAFindingPassesTheTestsOfThatFinding()
    {
        Machine machine;
        machine.f.home.file("elsewhere/x");
        machine.f.home.link("caches/one/out", "../../elsewhere");
        const Reclaimer reclaimer{ .services = { .trash = machine.f.trash,
                                       .removal = machine.removal,
                                       .files = machine.files,
                                       .clock = machine.f.clock },
            .home = machine.f.home.path("caches"),
            .journal = machine.journal.get() };
        const auto item = [&](const std::string &path) {
            return StorageItem{ .name = u"It"_s, .bytes = 5, .rawPath = machine.f.home.path(path) };
        };
        auto finding = machine.finding("one", 30);
        QCOMPARE(reclaimer.moveItem(item("caches/one/b"), finding)->bytes, 5);
        QCOMPARE(machine.journal->units().size(), size_t{ 1 });
        QVERIFY(!reclaimer.moveItem(item("caches/one/out/x"), finding));
        QVERIFY(!reclaimer.moveItem(item("caches/two/d"), finding));
        finding.rule.safety = Safety::reportOnly;
        QVERIFY(!reclaimer.moveItem(item("caches/one/c"), finding));
        QVERIFY(TrashFixture::isThere(machine.f.home.path("elsewhere/x")));
        QVERIFY(TrashFixture::isThere(machine.f.home.path("caches/one/c")));
    }

    // What is moved to another place under its name in the middle of a clearance stays.
    void folderExchangedForALinkKeepsTheRest()
    {
        Machine machine;
        machine.f.home.fileWith("elsewhere/c", "kept");
        const auto exchange = [&](const Clearance::Progress &progress) {
            if (progress.finding != 1 || progress.entry != 2)
                return;
            std::filesystem::rename(machine.f.home.path("caches/one"), machine.f.home.path("moved"));
            std::filesystem::create_symlink("../elsewhere", machine.f.home.path("caches/one"));
        };
        const auto outcomes = machine.clear({ .progress = exchange });
        QVERIFY(outcomes[0].error && !outcomes[1].error);
        QCOMPARE(outcomes[0].trashed.size(), size_t{ 1 });
        QCOMPARE(TrashFixture::content(machine.f.home.path("elsewhere/c")), "kept");
        QVERIFY(TrashFixture::isThere(machine.f.home.path("moved/c")));
    }
};

QUILLBROOK_SUITE(TestClearance, QCoreApplication)
#include "tst_Clearance.moc"
