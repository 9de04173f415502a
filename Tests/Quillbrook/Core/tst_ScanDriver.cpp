// How a scan begins and ends, and what is kept of it.

#include "Support/FolderHold.h"
#include "Support/SmallHome.h"
#include "Support/Suite.h"

#include <QElapsedTimer>
#include <QPromise>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

#include <limits>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Fixture = SmallHome;
using Kind = Phase::Kind;

const auto lastFileCountKey = u"Quillbrook.lastFileCount"_s;

QStringList namesAtTop(const AppModel &model)
{
    QStringList names;
    for (const auto node : model.scans().tree()->children(model.scans().rootNode()))
        names.append(model.scans().tree()->name(node));
    names.sort();
    return names;
}

} // namespace

class TestScanDriver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsIdleWithTheRealHomeFolder()
    {
        Fixture fixture;
        fixture.home.home = u"/home/someone/.var/app/sandbox"_s;
        const AppModel model(fixture.services);
        QVERIFY(model.scans().phase() == Phase{});
        QCOMPARE(model.scans().scanRoot(), u"/home/someone"_s);
        QVERIFY(!model.scans().tree());
        QCOMPARE(model.scans().rootNode(), -1);
        QCOMPARE(model.navigation().focus(), -1);
        QVERIFY(model.navigation().breadcrumb().isEmpty());
        QVERIFY(model.navigation().breadcrumbNames().isEmpty());
        QVERIFY(!model.navigation().selection());
        QVERIFY(model.scans().scope() == Scope::quiet);
        QVERIFY(!model.navigation().requestedPane());
        QCOMPARE(model.scans().lastScanDuration(), 0.0);
        QCOMPARE(model.scans().treeGeneration(), quint64(0));
        QCOMPARE(model.scans().scannedFileCount(), qsizetype(0));
        QCOMPARE(model.volume().menuBarTitle(), u"—"_s);
    }

    void startsNeitherScanNorTimer()
    {
        Fixture fixture;
        const AppModel model(fixture.services);
        QCoreApplication::processEvents();
        QCOMPARE(fixture.directories.sessionsMade(), 0);
        for (const auto *timer : model.findChildren<QTimer *>())
            QVERIFY(!timer->isActive());
    }

    void scanBeginsAtOnce()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        const QSignalSpy phases(&model.scans(), &ScanDriver::phaseChanged);
        model.scans().scan({});
        QVERIFY(isAt(model, Kind::scanning));
        QCOMPARE(phases.count(), 1);
        QCOMPARE(model.scans().treeGeneration(), quint64(1));
        QCOMPARE(model.scans().scanProgress().fraction(), 0.0);
        QVERIFY(!model.scans().tree());
        QTRY_VERIFY(isAt(model, Kind::ready));
    }

    void scanEndsReadyWithTheTree()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        model.scans().scan({ .scope = Scope::complete });
        QTRY_VERIFY(isAt(model, Kind::ready));
        QVERIFY(model.scans().tree());
        QCOMPARE(model.scans().rootNode(), 0);
        QCOMPARE(model.navigation().focus(), model.scans().rootNode());
        QCOMPARE(model.navigation().breadcrumb(), QList<qint32>{ model.scans().rootNode() });
        QCOMPARE(model.navigation().breadcrumbNames(), QStringList{ u"/home/someone"_s });
        QCOMPARE(model.scans().tree()->size(model.scans().rootNode()), qint64(4096 + 8192 + 16384));
        QCOMPARE(model.scans().scannedFileCount(), qsizetype(3));
        QCOMPARE(fixture.defaults.integer(lastFileCountKey), std::optional<qint64>(3));
        QVERIFY(model.scans().lastScanDuration() > 0);
        QCOMPARE(model.scans().scanProgress().fraction(), 0.0);
        QCOMPARE(model.scans().scanProgress().detail(), QString());
        QCOMPARE(model.scans().scanProgress().counts(), QString());
    }

    void startOfScanIsWholeBeforeAnyoneIsTold()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        model.scans().scan({});
        QTRY_VERIFY(isAt(model, Kind::ready));
        model.navigation().setSelection(model.scans().tree()->snapshot(model.scans().rootNode()));
        int told = 0;
        const auto isWhole = [&] {
            ++told;
            QVERIFY(isAt(model, Kind::scanning));
            QVERIFY(model.scans().scope() == Scope::complete);
            QCOMPARE(model.scans().treeGeneration(), quint64(2));
            QVERIFY(!model.navigation().selection());
            QCOMPARE(model.navigation().focus(), -1);
            QVERIFY(
                model.navigation().breadcrumb().isEmpty() && model.navigation().breadcrumbNames().isEmpty());
        };
        connect(&model.scans(), &ScanDriver::scopeChanged, this, isWhole);
        connect(&model.navigation(), &Navigation::selectionChanged, this, isWhole);
        connect(&model.navigation(), &Navigation::focusChanged, this, isWhole);
        model.scans().scan({ .scope = Scope::complete });
        QCOMPARE(told, 3);
        model.scans().cancelScan();
    }

    void endOfScanIsWholeBeforeAnyoneIsTold()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        int told = 0;
        connect(&model.scans(), &ScanDriver::treeChanged, this, [&] {
            ++told;
            QCOMPARE(model.navigation().focus(), model.scans().rootNode());
            QCOMPARE(model.navigation().breadcrumbNames().size(), model.navigation().breadcrumb().size());
            QVERIFY(isAt(model, Kind::ready));
        });
        model.scans().scan({});
        QTRY_VERIFY(isAt(model, Kind::ready));
        QCOMPARE(told, 1);
    }

    void oldTreeIsTakenApartOffTheMainThread()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        model.scans().scan({});
        QTRY_VERIFY(isAt(model, Kind::ready));
        const std::weak_ptr oldTree = model.scans().tree();
        auto *pool = QThreadPool::globalInstance();
        QSemaphore go;
        // Before the end of the scan lets go of the old tree, every thread of the pool has something to do.
        connect(&model.scans(), &ScanDriver::phaseChanged, this, [&] {
            for (int i = 0; isAt(model, Kind::ready) && i < pool->maxThreadCount(); ++i)
                pool->start([&go] { (void)go.tryAcquire(1, 20'000); });
        });
        // The calls at a scan's end still run on the main thread when the pool takes the old tree apart.
        bool isGone = false;
        connect(&model.volume(), &VolumeFigures::volumeChanged, this, [&] {
            QVERIFY(!oldTree.expired());
            go.release(pool->maxThreadCount());
            QVERIFY(pool->waitForDone(10'000));
            isGone = oldTree.expired();
        });
        fixture.volumes.answer = { .available = 2048, .availableForImportantUsage = 2048, .total = 4096 };
        model.scans().scan({});
        QTRY_VERIFY(isAt(model, Kind::ready));
        QVERIFY(isGone);
    }

    void endedScanLetsItsScratchGo()
    {
        Fixture fixture;
        fixture.host.facts.protectedPaths = { u"/home/someone/Bilder"_s };
        AppModel model(fixture.services);
        model.scans().scan({});
        QTRY_VERIFY(isAt(model, Kind::ready));
        // A scan keeps what the host told it, without a copy, for as long as it keeps anything.
        QTRY_VERIFY(fixture.host.facts.protectedPaths.isDetached());
    }

    void shortScanDoesNotWaitForThePoll()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        // The poll would take 200 milliseconds. The best of several counts, since the machine may be busy.
        qint64 best = std::numeric_limits<qint64>::max();
        for (int i = 0; i < 20 && best >= 150; ++i) {
            QElapsedTimer sinceStart;
            sinceStart.start();
            QSignalSpy finished(&model.scans(), &ScanDriver::finished);
            model.scans().scan({});
            QVERIFY(finished.wait());
            best = std::min(best, sinceStart.elapsed());
        }
        QVERIFY(best < 150);
    }

    void finishedScanRefreshesTheVolume()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        model.scans().scan({});
        fixture.volumes.answer = { .available = 2048, .availableForImportantUsage = 2048, .total = 4096 };
        QTRY_VERIFY(isAt(model, Kind::ready));
        QCOMPARE(model.volume().liveFree(), qint64(2048));
        QCOMPARE(model.volume().menuBarTitle(), u"2.0 KB"_s);
    }

    void quietScanStaysOutOfProtectedFolders()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        model.scans().scan({ .scope = Scope::quiet });
        QTRY_VERIFY(isAt(model, Kind::ready));
        QVERIFY(!fixture.wasOpened("/home/someone/Documents"));
        QCOMPARE(namesAtTop(model), (QStringList{ u"Documents"_s, u"b.txt"_s, u"project"_s }));
        const auto documents
            = model.scans().tree()->find(u"/home/someone/Documents"_s, model.scans().rootNode());
        QCOMPARE(model.scans().tree()->size(documents), qint64(0));
    }

    void completeScanOpensEverything()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        const QSignalSpy scopes(&model.scans(), &ScanDriver::scopeChanged);
        model.scans().scan({ .scope = Scope::complete });
        QTRY_VERIFY(isAt(model, Kind::ready));
        QVERIFY(model.scans().scope() == Scope::complete);
        QCOMPARE(scopes.count(), 1);
        QVERIFY(fixture.wasOpened("/home/someone/Documents"));
        QVERIFY(fixture.wasOpened("/home/someone/project"));
    }

    void scopeStaysWhenNoneIsGiven()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        model.scans().scan({ .scope = Scope::complete });
        QTRY_VERIFY(isAt(model, Kind::ready));
        model.scans().scan({});
        QTRY_VERIFY(isAt(model, Kind::ready));
        QVERIFY(model.scans().scope() == Scope::complete);
        QCOMPARE(model.scans().scannedFileCount(), qsizetype(3));
    }

    void scanDuringScanIsDropped()
    {
        Fixture fixture;
        FolderHold hold(fixture.directories, "/home/someone");
        AppModel model(fixture.services);
        model.scans().scan({ .scope = Scope::quiet });
        QTRY_VERIFY(hold.isHolding());
        const QSignalSpy phases(&model.scans(), &ScanDriver::phaseChanged);
        model.scans().scan({});
        model.scans().scan({ .scope = Scope::complete });
        QVERIFY(model.scans().scope() == Scope::quiet);
        QCOMPARE(model.scans().treeGeneration(), quint64(1));
        QCOMPARE(phases.count(), 0);
        hold.release();
        QTRY_VERIFY(isAt(model, Kind::ready));
        QCOMPARE(fixture.directories.sessionsMade(), 1);
        QVERIFY(!fixture.wasOpened("/home/someone/Documents"));
    }

    void heldScanStartsWhenItMay()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        QSignalSpy starts(&model.scans(), &ScanDriver::started);
        model.scans().hold(true);
        model.scans().scan({ .scope = Scope::complete });
        model.scans().scan({});
        model.scans().scan({ .automatic = true });
        QCOMPARE(starts.count(), 0);
        QCOMPARE(model.scans().phase().kind, Kind::idle);
        model.scans().hold(false);
        QCOMPARE(starts.count(), 1);
        QCOMPARE(model.scans().scope(), Scope::complete);
        QTRY_COMPARE(model.scans().phase().kind, Kind::ready);
        // Nothing was asked for meanwhile.
        model.scans().hold(true);
        model.scans().hold(false);
        QCOMPARE(starts.count(), 1);
    }

    void judgingWaitsUntilTheDiskHasSettled()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        QPromise<void> settled;
        settled.start();
        model.scans().settleBeforeEvaluation(settled.future());
        model.scans().scan({});
        QTest::qWait(300);
        QCOMPARE(model.scans().phase().kind, Kind::scanning);
        settled.finish();
        QTRY_COMPARE(model.scans().phase().kind, Kind::ready);
    }

    void automaticScanHappensOncePerRun()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        model.scans().scan({ .scope = Scope::quiet, .automatic = true });
        QTRY_VERIFY(isAt(model, Kind::ready));
        model.scans().scan({ .scope = Scope::quiet, .automatic = true });
        QVERIFY(isAt(model, Kind::ready));
        QCOMPARE(model.scans().treeGeneration(), quint64(1));
        model.scans().scan({});
        QVERIFY(isAt(model, Kind::scanning));
        QTRY_VERIFY(isAt(model, Kind::ready));
    }

    void automaticFirstScanAfterARescanIsDropped()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        model.scans().scan({ .scope = Scope::complete });
        model.scans().cancelScan();
        model.scans().scan({ .scope = Scope::quiet, .automatic = true });
        QVERIFY(isAt(model, Kind::idle));
        QVERIFY(model.scans().scope() == Scope::complete);
    }

    void rescanKeepsTheOldTreeUntilItsEnd()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        model.scans().scan({});
        QTRY_VERIFY(isAt(model, Kind::ready));
        const auto oldTree = model.scans().tree();
        model.navigation().setSelection(oldTree->snapshot(model.scans().rootNode()));

        FolderHold hold(fixture.directories, "/home/someone");
        model.scans().scan({});
        QTRY_VERIFY(hold.isHolding());
        QCOMPARE(model.scans().tree(), oldTree);
        QCOMPARE(model.scans().rootNode(), 0);
        QCOMPARE(model.navigation().focus(), -1);
        QVERIFY(model.navigation().breadcrumb().isEmpty());
        QVERIFY(model.navigation().breadcrumbNames().isEmpty());
        QVERIFY(!model.navigation().selection());

        hold.release();
        QTRY_VERIFY(isAt(model, Kind::ready));
        QVERIFY(model.scans().tree() != oldTree);
        QCOMPARE(model.navigation().focus(), 0);
    }

    void everyScanStartRaisesTheTreeGeneration()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        for (quint64 generation = 1; generation <= 3; ++generation) {
            model.scans().scan({});
            QCOMPARE(model.scans().treeGeneration(), generation);
            QTRY_VERIFY(isAt(model, Kind::ready));
            QCOMPARE(model.scans().treeGeneration(), generation);
        }
    }

    void scanUsesTheRootOfItsStart()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        fixture.directories.folder("/caf\xE9", { FakeDirectories::aFile("a.txt", 4096) });
        const QSignalSpy roots(&model.scans(), &ScanDriver::scanRootChanged);
        model.scans().setScanRoot("/caf\xE9");
        model.scans().setScanRoot("/caf\xE9");
        QCOMPARE(roots.count(), 1);
        model.scans().scan({});
        model.scans().setScanRoot("/home/someone");
        QTRY_VERIFY(isAt(model, Kind::ready));
        QCOMPARE(model.navigation().breadcrumbNames(), QStringList{ u"/caf\uFFFD"_s });
        QCOMPARE(model.scans().scannedFileCount(), qsizetype(1));
    }

    void missingRootEndsReadyWithAnUnreadableRoot()
    {
        Fixture fixture;
        AppModel model(fixture.services);
        model.scans().setScanRoot("/nowhere");
        model.scans().scan({});
        QTRY_VERIFY(isAt(model, Kind::ready));
        QCOMPARE(model.scans().tree()->nodeCount(), qsizetype(1));
        QVERIFY(
            contains(model.scans().tree()->nodeFlags(model.scans().rootNode()), FileTree::Flags::unreadable));
        QCOMPARE(model.scans().scannedFileCount(), qsizetype(0));
    }
};

QUILLBROOK_SUITE(TestScanDriver, QCoreApplication)
#include "tst_ScanDriver.moc"
