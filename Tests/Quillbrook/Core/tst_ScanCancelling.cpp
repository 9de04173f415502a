// Scans that are given up, by a person or with the model.

#include "Support/FolderHold.h"
#include "Support/SmallHome.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

#include <memory>
#include <thread>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Fixture = SmallHome;
using Kind = Phase::Kind;

// Lets everything that runs on the pool, and what follows from it, come to its end.
void settle()
{
    for (int round = 0; round < 3; ++round) {
        QCoreApplication::processEvents();
        QVERIFY(QThreadPool::globalInstance()->waitForDone(10'000));
    }
    QCoreApplication::processEvents();
}

} // namespace

class TestScanCancelling : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cancelBeforeTheFirstTreeIsIdle()
    {
        Fixture fixture;
        FolderHold hold(fixture.directories, "/home/someone");
        AppModel model(fixture.services);
        model.scans().scan({});
        QTRY_VERIFY(hold.isHolding());
        const QSignalSpy phases(&model.scans(), &ScanDriver::phaseChanged);
        // Whoever hears of any part of it meets the scan at its end.
        auto heardAt = Kind::scanning;
        model.scans().scanProgress().setDetail(u"caches"_s);
        connect(&model.scans().scanProgress(), &ScanProgress::detailChanged, this,
            [&] { heardAt = model.scans().phase().kind; });
        model.scans().cancelScan();
        QCOMPARE(heardAt, Kind::idle);
        QVERIFY(isAt(model, Kind::idle));
        QCOMPARE(phases.count(), 1);
        QCOMPARE(model.scans().scanProgress().fraction(), 0.0);
        QCOMPARE(model.scans().scanProgress().detail(), QString());
        hold.release();
    }

    void cancelDropsALateResult()
    {
        Fixture fixture;
        FolderHold hold(fixture.directories, "/home/someone");
        AppModel model(fixture.services);
        const QSignalSpy trees(&model.scans(), &ScanDriver::treeChanged);
        model.scans().scan({});
        QTRY_VERIFY(hold.isHolding());
        model.scans().cancelScan();
        hold.release();
        // A second scan comes to its end only after the first task has ended.
        model.scans().scan({});
        QTRY_VERIFY(isAt(model, Kind::ready));
        QCOMPARE(trees.count(), 1);
        QCOMPARE(fixture.directories.sessionsMade(), 2);
    }

    void cancelDuringARescanKeepsTheOldTree()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        model.scans().scan({});
        QTRY_VERIFY(isAt(model, Kind::ready));
        const auto oldTree = model.scans().tree();
        FolderHold hold(fixture.directories, "/home/someone");
        model.scans().scan({});
        QTRY_VERIFY(hold.isHolding());
        model.scans().cancelScan();
        QVERIFY(isAt(model, Kind::ready));
        QCOMPARE(model.scans().tree(), oldTree);
        QCOMPARE(model.navigation().focus(), -1);
        QVERIFY(model.navigation().breadcrumb().isEmpty());
        hold.release();
        settle();
        QCOMPARE(model.scans().tree(), oldTree);
        QCOMPARE(model.navigation().focus(), -1);
    }

    void cancelWithoutAScanChangesNothing()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        const QSignalSpy phases(&model.scans(), &ScanDriver::phaseChanged);
        model.scans().cancelScan();
        QVERIFY(isAt(model, Kind::idle));
        model.scans().scan({});
        QTRY_VERIFY(isAt(model, Kind::ready));
        model.scans().cancelScan();
        QVERIFY(isAt(model, Kind::ready));
        QCOMPARE(model.navigation().focus(), model.scans().rootNode());
        QCOMPARE(phases.count(), 2);
    }

    void scanAfterACancelWaitsForTheOldOne()
    {
        Fixture fixture;
        FolderHold hold(fixture.directories, "/home/someone");
        AppModel model(fixture.services);
        model.scans().scan({});
        QTRY_VERIFY(hold.isHolding());
        model.scans().cancelScan();
        model.scans().scan({});
        // Long enough for the second scan to read the disk, if it did not wait.
        QTest::qWait(300);
        QCOMPARE(fixture.directories.sessionsMade(), 1);
        QVERIFY(isAt(model, Kind::scanning));
        QCOMPARE(model.scans().scanProgress().detail(), QString());
        hold.release();
        QTRY_VERIFY(isAt(model, Kind::ready));
        QCOMPARE(fixture.directories.sessionsMade(), 2);
    }

    void manyQuickScansEndWithTheLast()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        const QSignalSpy trees(&model.scans(), &ScanDriver::treeChanged);
        for (int i = 0; i < 200; ++i) {
            model.scans().scan({});
            for (int turn = 0; turn < i % 4; ++turn)
                QCoreApplication::processEvents();
            model.scans().cancelScan();
        }
        const auto finishedOnTheWay = trees.count();
        model.scans().scan({ .scope = Scope::complete });
        QTRY_VERIFY(isAt(model, Kind::ready));
        QCOMPARE(trees.count(), finishedOnTheWay + 1);
        QCOMPARE(model.scans().scannedFileCount(), qsizetype(3));
    }

    void destroyedModelEndsItsScan()
    {
        Fixture fixture;
        FolderHold hold(fixture.directories, "/home/someone");
        auto model = std::make_unique<AppModel>(fixture.services);
        model->scans().scan({});
        QTRY_VERIFY(hold.isHolding());
        // The walk ends only when its reader is let go, and the services it uses may go right after the
        // model.
        const std::jthread releasing([&] { hold.release(); });
        model.reset();
        QCOMPARE(fixture.directories.readersEnded(), fixture.directories.readersMade());
        settle();
    }

    void modelDestroyedBeforeTheWalkReadsNothing()
    {
        Fixture fixture;
        {
            AppModel model(fixture.services);
            model.scans().scan({});
        }
        settle();
        QCOMPARE(fixture.directories.sessionsMade(), 0);
    }
};

QUILLBROOK_SUITE(TestScanCancelling, QCoreApplication)
#include "tst_ScanCancelling.moc"
