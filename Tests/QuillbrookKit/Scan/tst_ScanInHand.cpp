#include "Scan/ScanInHand.h"
#include "Support/FakeDirectories.h"

#include <QTest>

#include <functional>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

// A root with one file and two folders of one file each.
void fill(FakeDirectories &disk)
{
    using Disk = FakeDirectories;
    disk.folder("/r", { Disk::aFile("f", 3), Disk::aFolder("a"), Disk::aFolder("b") });
    disk.folder("/r/a", { Disk::aFile("g", 5) });
    disk.folder("/r/b", { Disk::aFile("h", 7) });
}

// Calls `onSession` when a scan has begun on its thread and has not read anything.
struct WatchedReading final : DirectoryReading
{
    std::unique_ptr<DirectorySession> session(const std::string &rootPath) override
    {
        onSession();
        return disk.session(rootPath);
    }

    FakeDirectories disk;
    std::function<void()> onSession;
};

} // namespace

class TestScanInHand : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runsTheWholeScan();
    void cancelBeforeTheRunReadsNothing();
    void cancelBetweenTheStartAndTheFirstFolderReadsNothing();
    void cancelDuringTheRunLeavesTheRestOut();
};

void TestScanInHand::runsTheWholeScan()
{
    FakeDirectories disk;
    fill(disk);
    ScanInHand scan(disk);
    const auto result = scan.run({ .rootPath = "/r", .threads = 2 });
    QCOMPARE(result.tree->size(result.root), qint64(15));
    QCOMPARE(scan.progress().filesSeen, qsizetype(3));
    QCOMPARE(scan.progress().bytesSeen, qint64(15));
}

void TestScanInHand::cancelBeforeTheRunReadsNothing()
{
    for (const auto threads : { 1, 2, 8 }) {
        FakeDirectories disk;
        fill(disk);
        ScanInHand scan(disk);
        scan.cancel();
        const auto result = scan.run({ .rootPath = "/r", .threads = threads });
        QCOMPARE(disk.opened(), std::vector<std::string>());
        QCOMPARE(result.tree->nodeCount(), qsizetype(1));
    }
}

void TestScanInHand::cancelBetweenTheStartAndTheFirstFolderReadsNothing()
{
    WatchedReading reading;
    fill(reading.disk);
    ScanInHand scan(reading);
    reading.onSession = [&] { scan.cancel(); };
    const auto result = scan.run({ .rootPath = "/r" });
    QCOMPARE(reading.disk.opened(), std::vector<std::string>());
    QCOMPARE(result.tree->nodeCount(), qsizetype(1));
}

void TestScanInHand::cancelDuringTheRunLeavesTheRestOut()
{
    FakeDirectories disk;
    fill(disk);
    ScanInHand scan(disk);
    disk.beforeOpen = [&](const std::string &path) {
        if (path != "/r")
            scan.cancel();
    };
    const auto result = scan.run({ .rootPath = "/r", .threads = 1 });
    QCOMPARE(disk.opened().size(), size_t(2));
    QCOMPARE(result.tree->nodeCount(), qsizetype(5));
}

QTEST_APPLESS_MAIN(TestScanInHand)
#include "tst_ScanInHand.moc"
