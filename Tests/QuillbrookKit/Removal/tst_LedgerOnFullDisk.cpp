// The ledger on a small disk that is filled to the last byte.

#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Removal/TrashLedger.h"
#include "Support/FakeTrash.h"
#include "Support/SmallDisk.h"
#include "Support/Suite.h"

#include <QDir>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

QString whyNotPermitted;

std::vector<TrashedItem> rows(size_t count)
{
    return { count,
        TrashedItem{ .id = TrashedItem::moved({}).id,
            .label = u"Thing"_s,
            .originalPath = "/home/someone/" + std::string(200, 'o'),
            .trashPath = "/home/someone/.local/share/Trash/files/" + std::string(200, 't'),
            .bytes = 1,
            .movedAt = QDateTime::fromMSecsSinceEpoch(1'700'000'000'000, Qt::UTC) } };
}

// A disk with a ledger on it.
struct Machine
{
    [[nodiscard]] TrashLedger ledger(LinuxFileWriting &writing)
    {
        return TrashLedger(
            { .reading = reading, .writing = writing, .files = trash, .trash = trash }, store());
    }
    [[nodiscard]] std::string store() const { return disk.path("Quillbrook/ledger.json"); }
    [[nodiscard]] QStringList names() const
    {
        return QDir(QString::fromStdString(disk.path("Quillbrook"))).entryList(QDir::Files | QDir::Hidden);
    }

    SmallDisk disk;
    LinuxFileReading reading;
    FakeTrash trash;
};

} // namespace

class TestLedgerOnFullDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!whyNotPermitted.isEmpty())
            QSKIP(qPrintable(whyNotPermitted));
    }

    void theOldBooksStand()
    {
        Machine machine;
        LinuxFileWriting writing;
        auto ledger = machine.ledger(writing);
        ledger.record(rows(1));
        machine.disk.fill();
        ledger.record(rows(40));
        QCOMPARE(ledger.items().size(), size_t{ 41 });
        QCOMPARE(
            machine.ledger(writing).items(), std::vector(ledger.items().begin(), ledger.items().begin() + 1));
        QCOMPARE(machine.names(), QStringList{ u"ledger.json"_s });
    }

    void aSaveThatFitsOnlyInPartLeavesNothing()
    {
        Machine machine;
        LinuxFileWriting writing;
        auto ledger = machine.ledger(writing);
        ledger.record(rows(1));
        machine.disk.fill(8192);
        ledger.record(rows(100));
        QCOMPARE(machine.ledger(writing).items().size(), size_t{ 1 });
        QCOMPARE(machine.names(), QStringList{ u"ledger.json"_s });
    }

    void theNextSaveWithRoomCatchesUp()
    {
        Machine machine;
        LinuxFileWriting writing;
        auto ledger = machine.ledger(writing);
        machine.disk.fill();
        ledger.record(rows(3));
        QVERIFY(machine.ledger(writing).items().empty());
        machine.disk.empty();
        ledger.record({});
        QCOMPARE(machine.ledger(writing).items(), ledger.items());
    }

    void theReserveIsGivenUpForIt()
    {
        Machine machine;
        FakeSpaceReserve reserve;
        machine.disk.keep(reserve, 65'536);
        LinuxFileWriting writing(&reserve);
        auto ledger = machine.ledger(writing);
        ledger.record(rows(1));
        QCOMPARE(reserve.released, 0);
        machine.disk.fill();
        ledger.record(rows(40));
        QCOMPARE(machine.ledger(writing).items(), ledger.items());
        QCOMPARE(reserve.released, 1);
        QCOMPARE(reserve.replenished, 1);
    }

    // What is added to the journal is added whole, with the reserve where there is one, or not at all.
    void whatIsAddedIsWholeOrNothing()
    {
        Machine machine;
        LinuxFileWriting without;
        const auto journal = machine.disk.path("Quillbrook/journal.jsonl");
        const QByteArray line(20'000, 'x');
        QVERIFY(without.append(journal, "first\n"));
        FakeSpaceReserve reserve;
        machine.disk.keep(reserve, 65'536);
        machine.disk.fill();
        QVERIFY(!without.append(journal, line));
        QCOMPARE(machine.reading.contents(journal, 1 << 20), QByteArray("first\n"));
        LinuxFileWriting writing(&reserve);
        QVERIFY(writing.append(journal, line));
        QCOMPARE(machine.reading.contents(journal, 1 << 20), "first\n" + line);
    }

    void aReserveThatIsGoneIsNotWaitedFor()
    {
        Machine machine;
        FakeSpaceReserve reserve;
        reserve.isKept = false;
        LinuxFileWriting writing(&reserve);
        auto ledger = machine.ledger(writing);
        ledger.record(rows(1));
        machine.disk.fill();
        ledger.record(rows(40));
        QCOMPARE(machine.ledger(writing).items().size(), size_t{ 1 });
        QCOMPARE(reserve.released, 1);
        QCOMPARE(reserve.replenished, 0);
    }

    void theReserveIsForWantOfSpaceAlone()
    {
        Machine machine;
        FakeSpaceReserve reserve;
        machine.disk.folder("Quillbrook/ledger.json/kept");
        LinuxFileWriting writing(&reserve);
        machine.ledger(writing).record(rows(1));
        QCOMPARE(reserve.released, 0);
    }
};

QUILLBROOK_SUITE(TestLedgerOnFullDisk, QCoreApplication, [] { whyNotPermitted = PrivateMounts::enter(); })
#include "tst_LedgerOnFullDisk.moc"
