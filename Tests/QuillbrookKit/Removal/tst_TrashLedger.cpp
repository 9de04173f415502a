#include "Removal/LedgerFormat.h"
#include "Removal/TrashLedger.h"
#include "Support/FakeTrash.h"
#include "Support/MemoryFiles.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const std::string store = "/home/someone/.local/share/Quillbrook/ledger.json";
const QDateTime moved(QDate(2024, 5, 1), QTime(8, 30), Qt::UTC);
constexpr qint64 ampleBytes = TrashLedger::criticalFreeBytes * 4;

// A machine with a Trash and a store, and ledgers that open it, one after the other, as runs of the program
// do.
struct Machine
{
    FakeTrash trash;
    MemoryFiles files;

    [[nodiscard]] TrashLedger ledger()
    {
        return TrashLedger({ .reading = files, .writing = files, .files = trash, .trash = trash }, store);
    }

    // A row of a thing that lies in the Trash.
    [[nodiscard]] TrashedItem trashed(const std::string &name, qint64 bytes, std::optional<bool> byRule = {})
    {
        const auto item = gone(name, bytes, byRule);
        trash.things.insert(item.trashPath);
        return item;
    }

    // A row of a thing that does not any more.
    [[nodiscard]] TrashedItem gone(
        const std::string &name, qint64 bytes, std::optional<bool> byRule = {}) const
    {
        return { .id = QString::fromStdString(name),
            .label = u"Thing "_s + QString::fromStdString(name),
            .originalPath = "/home/someone/.cache/" + name,
            .trashPath = trash.folder + "/files/" + name,
            .bytes = bytes,
            .movedAt = moved,
            .byRule = byRule };
    }

    // What the next run of the program would know.
    [[nodiscard]] std::vector<TrashedItem> stored()
    {
        return LedgerFormat::decode(files.files[store]).value_or(std::vector<TrashedItem>());
    }
};

using Purged = TrashLedger::Purged;
using Pending = TrashLedger::Pending;

} // namespace

class TestTrashLedger : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void storeHasItsPlaceAmongTheUsersData()
    {
        QCOMPARE(TrashLedger::standardStore("/home/someone/.local/share"), store);
    }

    void withoutAFileItStartsEmptyAndWritesNothing()
    {
        Machine machine;
        const auto ledger = machine.ledger();
        QVERIFY(ledger.items().empty());
        QCOMPARE(ledger.pending(), Pending());
        QCOMPARE(machine.files.writes, 0);
    }

    void rowsSurviveTheProgramInOrder()
    {
        Machine machine;
        const auto a = machine.trashed("a", 10);
        const auto b = machine.trashed("b", 20, true);
        const auto c = machine.trashed("c", 30);
        {
            auto ledger = machine.ledger();
            ledger.record({ b, a });
            ledger.record({ c });
            QCOMPARE(ledger.items(), std::vector({ b, a, c }));
        }
        QCOMPARE(machine.ledger().items(), std::vector({ b, a, c }));
    }

    void recordingNothingSavesAllTheSame()
    {
        Machine machine;
        machine.ledger().record({});
        QCOMPARE(machine.files.files[store], "[]");
    }

    void damagedFileIsAnEmptyLedgerUntilTheNextSave()
    {
        Machine machine;
        const QByteArray damaged = "[{\"id\":";
        machine.files.files[store] = damaged;
        auto ledger = machine.ledger();
        QVERIFY(ledger.items().empty());
        ledger.prune();
        QCOMPARE(machine.files.files[store], damaged);
        const auto item = machine.trashed("a", 1);
        ledger.record({ item });
        QCOMPARE(machine.stored(), std::vector{ item });
    }

    void fileWithoutByRuleLoadsAsMovedByHand()
    {
        Machine machine;
        const auto item = machine.trashed("a", 1);
        const auto json = LedgerFormat::encode({ item, item });
        QVERIFY(!json.contains("byRule"));
        machine.files.files[store] = json;
        const auto ledger = machine.ledger();
        QCOMPARE(ledger.items().size(), size_t{ 2 });
        for (const auto &row : ledger.items())
            QVERIFY(!row.byRule);
        QVERIFY(ledger.ruleItemsDue(moved.addYears(10), 0).empty());
    }

    void whatCannotBeSavedStandsInMemory()
    {
        Machine machine;
        const auto a = machine.trashed("a", 10);
        const auto b = machine.trashed("b", 20);
        auto ledger = machine.ledger();
        ledger.record({ a });
        machine.files.isFull = true;
        ledger.record({ b });
        QCOMPARE(ledger.items(), std::vector({ a, b }));
        QCOMPARE(ledger.pendingBytes(), 30);
        QCOMPARE(machine.stored(), std::vector{ a });
        machine.files.isFull = false;
        ledger.record({});
        QCOMPARE(machine.stored(), std::vector({ a, b }));
    }

    void onlyWhatIsStillInTheTrashIsPending()
    {
        Machine machine;
        auto ledger = machine.ledger();
        const auto here = machine.trashed("here", 5);
        ledger.record({ machine.gone("gone", 100), here, machine.trashed("too", 7) });
        QCOMPARE(ledger.pendingBytes(), 12);
        QCOMPARE(ledger.pendingCount(), 2);
        machine.trash.things.erase(here.trashPath);
        QCOMPARE(ledger.pending(), (Pending{ .count = 1, .bytes = 7 }));
        QCOMPARE(ledger.items().size(), size_t{ 3 });
    }

    void sumsStopAtTheEndOfTheRange()
    {
        Machine machine;
        auto ledger = machine.ledger();
        constexpr auto most = std::numeric_limits<qint64>::max();
        ledger.record({ machine.trashed("a", most), machine.trashed("b", most) });
        QCOMPARE(ledger.pendingBytes(), most);
        QCOMPARE(ledger.purge(), (Purged{ .removed = 2, .bytes = most }));
    }

    void purgeDeletesAllItsOwnAndNothingElse()
    {
        Machine machine;
        const auto others = machine.trash.folder + "/files/somebody's";
        machine.trash.things.insert(others);
        auto ledger = machine.ledger();
        ledger.record({ machine.trashed("a", 10), machine.trashed("b", 20, true) });
        QCOMPARE(ledger.purge(), (Purged{ .removed = 2, .bytes = 30 }));
        QCOMPARE(machine.trash.things, std::set{ others });
        QVERIFY(ledger.items().empty());
        QVERIFY(machine.stored().empty());
    }

    void purgeOfNothingStillWrites()
    {
        Machine machine;
        auto ledger = machine.ledger();
        QCOMPARE(ledger.purge(), Purged());
        QCOMPARE(machine.files.files[store], "[]");
        QVERIFY(machine.trash.asked.empty());
    }

    void purgeOfSomeLeavesTheOthers()
    {
        Machine machine;
        auto ledger = machine.ledger();
        const auto a = machine.trashed("a", 10);
        const auto b = machine.trashed("b", 20);
        const auto c = machine.trashed("c", 30);
        ledger.record({ a, b, c });
        QCOMPARE(ledger.purge({ c, a }), (Purged{ .removed = 2, .bytes = 40 }));
        QCOMPARE(ledger.items(), std::vector{ b });
        QCOMPARE(machine.stored(), std::vector{ b });
        const std::vector<std::string> asked{ "erase " + c.trashPath, "erase " + a.trashPath };
        QCOMPARE(machine.trash.asked, asked);
    }

    void purgeOfNoRowsIsNotAPurgeOfAll()
    {
        Machine machine;
        auto ledger = machine.ledger();
        ledger.record({ machine.trashed("a", 10) });
        QCOMPARE(ledger.purge({}), Purged());
        QCOMPARE(ledger.items().size(), size_t{ 1 });
    }

    void purgeForgetsWhatItCouldNotDelete()
    {
        Machine machine;
        auto ledger = machine.ledger();
        const auto stuck = machine.trashed("stuck", 10);
        machine.trash.stuck[stuck.trashPath] = u"Permission denied."_s;
        ledger.record({ stuck, machine.trashed("b", 20) });
        const auto line = u"Quillbrook: could not purge %1 — Permission denied."_s.arg(
            QString::fromStdString(stuck.trashPath));
        QTest::ignoreMessage(QtWarningMsg, qUtf8Printable(line));
        QCOMPARE(ledger.purge(), (Purged{ .removed = 1, .bytes = 20 }));
        QVERIFY(ledger.items().empty());
        QVERIFY(machine.stored().empty());
        QVERIFY(machine.trash.things.contains(stuck.trashPath));
        QCOMPARE(ledger.purge(), Purged());
    }

    void whatLiesUnderANameThatWasGivenAgainIsLeftAlone()
    {
        Machine machine;
        auto ledger = machine.ledger();
        const auto item = machine.trashed("data", 10, true);
        machine.trash.origins[item.trashPath] = "/home/someone/Documents/data";
        ledger.record({ item });
        QTest::ignoreMessage(QtWarningMsg,
            "Quillbrook: restore failed — Something else lies in the Trash under its name by now.");
        QVERIFY(!ledger.restore(item));
        QCOMPARE(ledger.items(), std::vector{ item });
        QTest::ignoreMessage(QtWarningMsg,
            qPrintable(u"Quillbrook: could not purge %1 \u2014 Something else lies in the Trash under its "
                       "name by now."_s.arg(QString::fromStdString(item.trashPath))));
        QCOMPARE(ledger.purge(), Purged());
        QVERIFY(ledger.items().empty());
        QVERIFY(machine.trash.things.contains(item.trashPath));
        QVERIFY(machine.trash.asked.empty());
    }

    void whatAPurgeLeftHalfDeletedIsFinished()
    {
        Machine machine;
        auto ledger = machine.ledger();
        const auto gone = machine.gone("gone", 10);
        auto nowhere = machine.gone("nowhere", 10);
        nowhere.trashPath = "files/nowhere";
        ledger.record({ gone, machine.trashed("b", 20), nowhere });
        ledger.finishPurging();
        QCOMPARE(machine.trash.asked, std::vector{ "finish " + gone.trashPath });
        QCOMPARE(ledger.items().size(), size_t{ 3 });
    }

    void rowsOfExchangedThingsAreTold()
    {
        Machine machine;
        auto ledger = machine.ledger();
        const auto item = machine.trashed("data", 10);
        ledger.record({ machine.gone("gone", 1), machine.trashed("b", 20), item });
        QVERIFY(ledger.exchanged().empty());
        machine.trash.origins[item.trashPath] = "/home/someone/Documents/data";
        QCOMPARE(ledger.exchanged(), std::vector{ item });
    }

    void purgeLeavesRowsThatAreNotInTheTrash()
    {
        Machine machine;
        auto ledger = machine.ledger();
        const auto gone = machine.gone("gone", 10);
        ledger.record({ gone, machine.trashed("b", 20) });
        QCOMPARE(ledger.purge(), (Purged{ .removed = 1, .bytes = 20 }));
        QCOMPARE(ledger.items(), std::vector{ gone });
    }

    void purgeDropsEveryRowOfAnIdThatWasTried()
    {
        Machine machine;
        auto ledger = machine.ledger();
        auto twin = machine.gone("gone", 10);
        twin.id = u"b"_s;
        ledger.record({ twin, machine.trashed("b", 20) });
        ledger.purge();
        QVERIFY(ledger.items().empty());
    }

    void pathThatIsNoPlaceIsNeverTouched_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("relative") << QByteArray("files/a");
        QTest::newRow("with a zero byte") << QByteArray("/home/someone\0/a", 16);
    }
    void pathThatIsNoPlaceIsNeverTouched()
    {
        QFETCH(QByteArray, path);
        Machine machine;
        auto item = machine.gone("a", 1, true);
        item.trashPath = path.toStdString();
        machine.trash.things.insert(item.trashPath);
        auto ledger = machine.ledger();
        ledger.record({ item });
        QCOMPARE(ledger.pending(), Pending());
        QVERIFY(ledger.ruleItemsDue(moved.addYears(1), 0).empty());
        QCOMPARE(ledger.purge(), Purged());
        QVERIFY(!ledger.restore(item));
        QVERIFY(machine.trash.asked.empty());
    }

    void ruleItemsDue_data()
    {
        QTest::addColumn<std::optional<bool>>("byRule");
        QTest::addColumn<qint64>("milliseconds");
        QTest::addColumn<qint64>("freeBytes");
        QTest::addColumn<bool>("isDue");
        constexpr qint64 day = 86'400'000;
        constexpr qint64 critical = 5'368'709'120;
        const auto rule = std::optional(true);
        QTest::newRow("just before its day is over") << rule << day - 1000 << ampleBytes << false;
        QTest::newRow("a millisecond before") << rule << day - 1 << ampleBytes << false;
        QTest::newRow("after its day") << rule << day << ampleBytes << true;
        QTest::newRow("much later") << rule << day * 400 << ampleBytes << true;
        QTest::newRow("at once, with exactly the critical space") << rule << qint64{ 0 } << critical << false;
        QTest::newRow("at once, with a byte less") << rule << qint64{ 0 } << critical - 1 << true;
        QTest::newRow("at once, with nothing free") << rule << qint64{ 0 } << qint64{ 0 } << true;
        QTest::newRow("moved in the future") << rule << -day * 2 << ampleBytes << false;
        QTest::newRow("by hand, long ago, nothing free")
            << std::optional<bool>() << day * 400 << qint64{ 0 } << false;
        QTest::newRow("said to be by hand") << std::optional(false) << day * 400 << qint64{ 0 } << false;
    }
    void ruleItemsDue()
    {
        QFETCH(std::optional<bool>, byRule);
        QFETCH(qint64, milliseconds);
        QFETCH(qint64, freeBytes);
        QFETCH(bool, isDue);
        Machine machine;
        auto ledger = machine.ledger();
        const auto item = machine.trashed("a", 1, byRule);
        ledger.record({ item });
        const auto due = ledger.ruleItemsDue(moved.addMSecs(milliseconds), freeBytes);
        QCOMPARE(due, isDue ? std::vector{ item } : std::vector<TrashedItem>());
    }

    void whatTheUserTookBackIsNotDue()
    {
        Machine machine;
        auto ledger = machine.ledger();
        const auto first = machine.trashed("z", 1, true);
        const auto last = machine.trashed("a", 1, true);
        ledger.record({ first, machine.gone("gone", 1, true), machine.trashed("hand", 1), last });
        QCOMPARE(ledger.ruleItemsDue(moved, 0), std::vector({ first, last }));
        QCOMPARE(ledger.pendingCount(), 3);
    }

    void restorePutsTheThingBackAndForgetsIt()
    {
        Machine machine;
        auto ledger = machine.ledger();
        const auto a = machine.trashed("a", 10);
        const auto b = machine.trashed("b", 20);
        ledger.record({ a, b });
        QVERIFY(ledger.restore(a));
        QVERIFY(machine.trash.things.contains(a.originalPath));
        QVERIFY(!machine.trash.things.contains(a.trashPath));
        QCOMPARE(machine.stored(), std::vector{ b });
    }

    void restoreOntoAnOccupiedPathKeepsTheRow()
    {
        Machine machine;
        auto ledger = machine.ledger();
        const auto item = machine.trashed("a", 10);
        machine.trash.things.insert(item.originalPath);
        ledger.record({ item });
        QTest::ignoreMessage(QtWarningMsg, "Quillbrook: restore failed — Something else is there.");
        QVERIFY(!ledger.restore(item));
        QCOMPARE(ledger.items(), std::vector{ item });
        QVERIFY(machine.trash.things.contains(item.trashPath));
    }

    void restoreOfWhatIsGoneChangesNothing()
    {
        Machine machine;
        auto ledger = machine.ledger();
        const auto item = machine.gone("a", 10);
        ledger.record({ item });
        const int writes = machine.files.writes;
        QVERIFY(!ledger.restore(item));
        QCOMPARE(ledger.items(), std::vector{ item });
        QCOMPARE(machine.files.writes, writes);
        QVERIFY(machine.trash.asked.empty());
    }

    void pruneForgetsWhatIsGoneAndSavesOnlyThen()
    {
        Machine machine;
        auto ledger = machine.ledger();
        const auto here = machine.trashed("here", 5);
        ledger.record({ machine.gone("gone", 100), here });
        const int writes = machine.files.writes;
        ledger.prune();
        QCOMPARE(ledger.items(), std::vector{ here });
        QCOMPARE(machine.stored(), std::vector{ here });
        QCOMPARE(machine.files.writes, writes + 1);
        ledger.prune();
        QCOMPARE(machine.files.writes, writes + 1);
    }

    void markedByRuleIsTheSameRowOtherwise()
    {
        const auto item = Machine().gone("a", 10);
        auto expected = item;
        expected.byRule = true;
        QCOMPARE(item.markedByRule(), expected);
        QCOMPARE(expected.markedByRule(), expected);
    }
};

QUILLBROOK_SUITE(TestTrashLedger, QCoreApplication)
#include "tst_TrashLedger.moc"
