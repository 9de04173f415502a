// The ledger on a small disk of the test's own, that is filled to the last byte.

#include "Platform/Linux/LinuxFileFacts.h"
#include "Platform/Linux/LinuxFileReading.h"
#include "Platform/Linux/LinuxFileWriting.h"
#include "Platform/SpaceReserve.h"
#include "Removal/TrashLedger.h"
#include "Support/FakeTrash.h"
#include "Support/PrivateMounts.h"
#include "Support/TempTree.h"

#include <QDir>
#include <QTest>

#include <fcntl.h>
#include <memory>
#include <unistd.h>

using namespace Quillbrook;
using namespace Quillbrook::PrivateMounts;
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

// A disk of 256 KiB with a ledger on it.
struct SmallDisk
{
    SmallDisk()
        : mounted(folderFor(tree), tree.path("disk"), "tmpfs", 0, "size=256k,mode=755")
    {
    }

    // Leaves `bytes` free; only where the small disk is really there.
    void fill(qint64 bytesFree = 0) const
    {
        if (!mounted.failure().isEmpty() || !isMounted(tree.path("disk")))
            qFatal("the small disk is not there");
        const int file = ::open(tree.path("disk/filler").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        const std::string block(4096, 'f');
        off_t length = 0;
        for (ssize_t written = 1; written > 0; length += written > 0 ? written : 0)
            written = ::write(file, block.data(), block.size());
        std::ignore = ::ftruncate(file, std::max<off_t>(length - bytesFree, 0));
        ::close(file);
    }

    [[nodiscard]] static std::string folderFor(const TempTree &tree)
    {
        tree.folder("disk");
        return "none";
    }

    [[nodiscard]] TrashLedger ledger(LinuxFileWriting &writing)
    {
        return TrashLedger(
            { .reading = reading, .writing = writing, .files = trash, .trash = trash }, store());
    }
    [[nodiscard]] std::string store() const { return tree.path("disk/Quillbrook/ledger.json"); }
    [[nodiscard]] QStringList names() const
    {
        return QDir(tree.text("disk/Quillbrook")).entryList(QDir::Files | QDir::Hidden);
    }

    TempTree tree;
    Mounted mounted;
    LinuxFileReading reading;
    FakeTrash trash;
};

// Keeps a file on the small disk.
class FileReserve final : public SpaceReserve
{
public:
    FileReserve(const TempTree &tree, qint64 bytes)
        : m_path(tree.path("disk/reserve"))
    {
        tree.file("disk/reserve", bytes);
    }
    [[nodiscard]] bool release() override
    {
        ++released;
        return ::unlink(m_path.c_str()) == 0;
    }
    void replenish() override { ++replenished; }

    int released = 0;
    int replenished = 0;

private:
    std::string m_path;
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
        SmallDisk disk;
        LinuxFileWriting writing;
        auto ledger = disk.ledger(writing);
        ledger.record(rows(1));
        disk.fill();
        ledger.record(rows(40));
        QCOMPARE(ledger.items().size(), size_t{ 41 });
        QCOMPARE(
            disk.ledger(writing).items(), std::vector(ledger.items().begin(), ledger.items().begin() + 1));
        QCOMPARE(disk.names(), QStringList{ u"ledger.json"_s });
    }

    void aSaveThatFitsOnlyInPartLeavesNothing()
    {
        SmallDisk disk;
        LinuxFileWriting writing;
        auto ledger = disk.ledger(writing);
        ledger.record(rows(1));
        disk.fill(8192);
        ledger.record(rows(100));
        QCOMPARE(disk.ledger(writing).items().size(), size_t{ 1 });
        QCOMPARE(disk.names(), QStringList{ u"ledger.json"_s });
    }

    void theNextSaveWithRoomCatchesUp()
    {
        SmallDisk disk;
        LinuxFileWriting writing;
        auto ledger = disk.ledger(writing);
        disk.fill();
        ledger.record(rows(3));
        QVERIFY(disk.ledger(writing).items().empty());
        QCOMPARE(::unlink(disk.tree.path("disk/filler").c_str()), 0);
        ledger.record({});
        QCOMPARE(disk.ledger(writing).items(), ledger.items());
    }

    void theReserveIsGivenUpForIt()
    {
        SmallDisk disk;
        FileReserve reserve(disk.tree, 65'536);
        LinuxFileWriting writing(&reserve);
        auto ledger = disk.ledger(writing);
        ledger.record(rows(1));
        QCOMPARE(reserve.released, 0);
        disk.fill();
        ledger.record(rows(40));
        QCOMPARE(disk.ledger(writing).items(), ledger.items());
        QCOMPARE(reserve.released, 1);
        QCOMPARE(reserve.replenished, 1);
    }

    void aReserveThatIsGoneIsNotWaitedFor()
    {
        SmallDisk disk;
        FileReserve reserve(disk.tree, 0);
        LinuxFileWriting writing(&reserve);
        auto ledger = disk.ledger(writing);
        ledger.record(rows(1));
        QVERIFY(reserve.release());
        disk.fill();
        ledger.record(rows(40));
        QCOMPARE(disk.ledger(writing).items().size(), size_t{ 1 });
        QCOMPARE(reserve.replenished, 0);
    }

    void theReserveIsForWantOfSpaceAlone()
    {
        SmallDisk disk;
        FileReserve reserve(disk.tree, 4096);
        disk.tree.folder("disk/Quillbrook/ledger.json/kept");
        LinuxFileWriting writing(&reserve);
        disk.ledger(writing).record(rows(1));
        QCOMPARE(reserve.released, 0);
    }
};

int main(int argc, char **argv)
{
    whyNotPermitted = enter();
    QCoreApplication application(argc, argv);
    TestLedgerOnFullDisk test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_LedgerOnFullDisk.moc"
