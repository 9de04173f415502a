#include "Core/AppModel.h"
#include "Support/FakeServices.h"
#include "Support/FolderHold.h"

#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

#include <algorithm>
#include <memory>
#include <thread>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Kind = Phase::Kind;

const auto lastFileCountKey = u"Quillbrook.lastFileCount"_s;

// A home folder with one project, one file beside it and a folder that a quiet scan does not open.
struct Fixture : FakeServices
{
    Fixture()
    {
        directories.folder("/home/someone",
            { FakeDirectories::aFolder("project"), FakeDirectories::aFile("b.txt", 8192),
                FakeDirectories::aFolder("Documents") });
        directories.folder("/home/someone/project", { FakeDirectories::aFile("a.txt", 4096) });
        directories.folder("/home/someone/Documents", { FakeDirectories::aFile("c.txt", 16384) });
    }

    [[nodiscard]] bool wasOpened(const std::string &path) const
    {
        const auto opened = directories.opened();
        return std::ranges::find(opened, path) != opened.end();
    }
};

// A home folder of `count` files whose scan is held before it opens the one folder in it. One of the
// catalogue's places is there, so that the quick stage takes the bar to where the tree stage begins.
struct HeldFixture : FakeServices
{
    explicit HeldFixture(size_t count)
    {
        files.entries["/home/someone/.gradle/daemon"] = {};
        directories.folder("/home/someone/.gradle/daemon", { FakeDirectories::aFile("log", 4096) });
        std::vector<DirectoryRecord> records(count, FakeDirectories::aFile("file", 4096));
        records.push_back(FakeDirectories::aFolder("project"));
        directories.folder("/home/someone", std::move(records));
        directories.folder("/home/someone/project", {});
    }

    // Starts a scan and meets it where it is held.
    void scanUntilHeld(AppModel &model)
    {
        model.scan({ .scope = Scope::complete });
        QTRY_VERIFY(hold.isHolding());
    }

    FolderHold hold{ directories, "/home/someone/project" };
};

bool isAt(const AppModel &model, Kind kind)
{
    return model.phase().kind == kind;
}

// One step of the ticker, without waiting for its second.
void tick(AppModel &model)
{
    auto *ticker = model.findChild<QTimer *>(u"ticker"_s);
    QVERIFY(ticker != nullptr);
    QMetaObject::invokeMethod(ticker, "timeout");
}

// Lets everything that runs on the pool, and what follows from it, come to its end.
void settle()
{
    for (int round = 0; round < 3; ++round) {
        QCoreApplication::processEvents();
        QVERIFY(QThreadPool::globalInstance()->waitForDone(10'000));
    }
    QCoreApplication::processEvents();
}

QStringList namesAtTop(const AppModel &model)
{
    QStringList names;
    for (const auto node : model.tree()->children(model.rootNode()))
        names.append(model.tree()->name(node));
    names.sort();
    return names;
}

} // namespace

class TestAppModelScan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsIdleWithTheRealHomeFolder();
    void startsNeitherScanNorTimer();
    void scanBeginsAtOnce();
    void scanEndsReadyWithTheTree();
    void endOfScanIsWholeBeforeAnyoneIsTold();
    void finishedScanRemembersItsFileCount();
    void finishedScanRefreshesTheVolume();
    void quietScanStaysOutOfProtectedFolders();
    void completeScanOpensEverything();
    void scopeStaysWhenNoneIsGiven();
    void scanDuringScanIsDropped();
    void automaticScanHappensOncePerRun();
    void automaticFirstScanAfterARescanIsDropped();
    void byHandScansAfterAnAutomaticOne();
    void rescanKeepsTheOldTreeUntilItsEnd();
    void everyScanStartRaisesTheTreeGeneration();
    void scanUsesTheRootOfItsStart();
    void missingRootEndsReadyWithAnUnreadableRoot();
    void cancelBeforeTheFirstTreeIsIdle();
    void cancelDropsALateResult();
    void cancelRightAfterTheStartReadsNothing();
    void cancelDuringARescanKeepsTheOldTree();
    void cancelWithoutAScanChangesNothing();
    void scanAfterACancelWaitsForTheOldOne();
    void manyQuickScansEndWithTheLast();
    void tickerTellsTheCounts();
    void tickerDoesNothingWithoutAScan();
    void tickerRunsOnlyDuringAScan();
    void barStandsAtTheQuickStagesShareWhenTheTreeStageBegins();
    void barStallsWhereTheQuickStageFoundLittle();
    void fileCountOf1000SaysNothing();
    void fileCountOf1001IsExpected();
    void moreFilesThanExpectedStopTheBarShortOfDone();
    void barNeverMovesBackwards();
    void damagedFileCountIsNone();
    void destroyedModelEndsItsScan();
    void modelDestroyedBeforeTheWalkReadsNothing();
};

void TestAppModelScan::startsIdleWithTheRealHomeFolder()
{
    Fixture fixture;
    fixture.home.home = u"/home/someone/.var/app/sandbox"_s;
    const AppModel model(fixture.services);
    QVERIFY(model.phase() == Phase{});
    QCOMPARE(model.scanRoot(), u"/home/someone"_s);
    QVERIFY(!model.tree());
    QCOMPARE(model.rootNode(), -1);
    QCOMPARE(model.focus(), -1);
    QVERIFY(model.breadcrumb().isEmpty());
    QVERIFY(model.breadcrumbNames().isEmpty());
    QVERIFY(!model.selection());
    QVERIFY(model.scope() == Scope::quiet);
    QVERIFY(!model.requestedPane());
    QCOMPARE(model.lastScanDuration(), 0.0);
    QCOMPARE(model.treeGeneration(), quint64(0));
    QCOMPARE(model.scannedFileCount(), qsizetype(0));
    QCOMPARE(model.menuBarTitle(), u"—"_s);
}

void TestAppModelScan::startsNeitherScanNorTimer()
{
    Fixture fixture;
    const AppModel model(fixture.services);
    QCoreApplication::processEvents();
    QCOMPARE(fixture.directories.sessionsMade(), 0);
    for (const auto *timer : model.findChildren<QTimer *>())
        QVERIFY(!timer->isActive());
}

void TestAppModelScan::scanBeginsAtOnce()
{
    Fixture fixture;
    AppModel model(fixture.services);
    const QSignalSpy phases(&model, &AppModel::phaseChanged);
    model.scan({});
    QVERIFY(isAt(model, Kind::scanning));
    QCOMPARE(phases.count(), 1);
    QCOMPARE(model.treeGeneration(), quint64(1));
    QCOMPARE(model.scanProgress().fraction(), 0.0);
    QVERIFY(!model.tree());
    QTRY_VERIFY(isAt(model, Kind::ready));
}

void TestAppModelScan::scanEndsReadyWithTheTree()
{
    Fixture fixture;
    AppModel model(fixture.services);
    model.scan({ .scope = Scope::complete });
    QTRY_VERIFY(isAt(model, Kind::ready));
    QVERIFY(model.tree());
    QCOMPARE(model.rootNode(), 0);
    QCOMPARE(model.focus(), model.rootNode());
    QCOMPARE(model.breadcrumb(), QList<qint32>{ model.rootNode() });
    QCOMPARE(model.breadcrumbNames(), QStringList{ u"/home/someone"_s });
    QCOMPARE(model.tree()->size(model.rootNode()), qint64(4096 + 8192 + 16384));
    QCOMPARE(model.scannedFileCount(), qsizetype(3));
    QVERIFY(model.lastScanDuration() > 0);
    QCOMPARE(model.scanProgress().fraction(), 0.0);
    QCOMPARE(model.scanProgress().detail(), QString());
    QCOMPARE(model.scanProgress().counts(), QString());
}

void TestAppModelScan::endOfScanIsWholeBeforeAnyoneIsTold()
{
    Fixture fixture;
    AppModel model(fixture.services);
    int told = 0;
    connect(&model, &AppModel::treeChanged, this, [&] {
        ++told;
        QCOMPARE(model.focus(), model.rootNode());
        QCOMPARE(model.breadcrumbNames().size(), model.breadcrumb().size());
        QVERIFY(isAt(model, Kind::ready));
    });
    model.scan({});
    QTRY_VERIFY(isAt(model, Kind::ready));
    QCOMPARE(told, 1);
}

void TestAppModelScan::finishedScanRemembersItsFileCount()
{
    Fixture fixture;
    AppModel model(fixture.services);
    model.scan({ .scope = Scope::complete });
    QCOMPARE(fixture.defaults.integer(lastFileCountKey), std::optional<qint64>());
    QTRY_VERIFY(isAt(model, Kind::ready));
    QCOMPARE(fixture.defaults.integer(lastFileCountKey), std::optional<qint64>(3));
}

void TestAppModelScan::finishedScanRefreshesTheVolume()
{
    Fixture fixture;
    AppModel model(fixture.services);
    model.scan({});
    fixture.volumes.answer = { .available = 2048, .availableForImportantUsage = 2048, .total = 4096 };
    QTRY_VERIFY(isAt(model, Kind::ready));
    QCOMPARE(model.liveFree(), qint64(2048));
    QCOMPARE(model.menuBarTitle(), u"2.0 KB"_s);
}

void TestAppModelScan::quietScanStaysOutOfProtectedFolders()
{
    Fixture fixture;
    AppModel model(fixture.services);
    model.scan({ .scope = Scope::quiet });
    QTRY_VERIFY(isAt(model, Kind::ready));
    QVERIFY(!fixture.wasOpened("/home/someone/Documents"));
    QCOMPARE(namesAtTop(model), (QStringList{ u"Documents"_s, u"b.txt"_s, u"project"_s }));
    const auto documents = model.tree()->find(u"/home/someone/Documents"_s, model.rootNode());
    QCOMPARE(model.tree()->size(documents), qint64(0));
}

void TestAppModelScan::completeScanOpensEverything()
{
    Fixture fixture;
    AppModel model(fixture.services);
    const QSignalSpy scopes(&model, &AppModel::scopeChanged);
    model.scan({ .scope = Scope::complete });
    QTRY_VERIFY(isAt(model, Kind::ready));
    QVERIFY(model.scope() == Scope::complete);
    QCOMPARE(scopes.count(), 1);
    QVERIFY(fixture.wasOpened("/home/someone/Documents"));
    QVERIFY(fixture.wasOpened("/home/someone/project"));
}

void TestAppModelScan::scopeStaysWhenNoneIsGiven()
{
    Fixture fixture;
    AppModel model(fixture.services);
    model.scan({ .scope = Scope::complete });
    QTRY_VERIFY(isAt(model, Kind::ready));
    model.scan({});
    QTRY_VERIFY(isAt(model, Kind::ready));
    QVERIFY(model.scope() == Scope::complete);
    QCOMPARE(model.scannedFileCount(), qsizetype(3));
}

void TestAppModelScan::scanDuringScanIsDropped()
{
    Fixture fixture;
    FolderHold hold(fixture.directories, "/home/someone");
    AppModel model(fixture.services);
    model.scan({ .scope = Scope::quiet });
    QTRY_VERIFY(hold.isHolding());
    const QSignalSpy phases(&model, &AppModel::phaseChanged);
    model.scan({});
    model.scan({ .scope = Scope::complete });
    QVERIFY(model.scope() == Scope::quiet);
    QCOMPARE(model.treeGeneration(), quint64(1));
    QCOMPARE(phases.count(), 0);
    hold.release();
    QTRY_VERIFY(isAt(model, Kind::ready));
    QCOMPARE(fixture.directories.sessionsMade(), 1);
    QVERIFY(!fixture.wasOpened("/home/someone/Documents"));
}

void TestAppModelScan::automaticScanHappensOncePerRun()
{
    Fixture fixture;
    AppModel model(fixture.services);
    model.scan({ .scope = Scope::quiet, .automatic = true });
    QTRY_VERIFY(isAt(model, Kind::ready));
    model.scan({ .scope = Scope::quiet, .automatic = true });
    QVERIFY(isAt(model, Kind::ready));
    QCOMPARE(model.treeGeneration(), quint64(1));
}

void TestAppModelScan::automaticFirstScanAfterARescanIsDropped()
{
    Fixture fixture;
    AppModel model(fixture.services);
    model.scan({ .scope = Scope::complete });
    model.cancelScan();
    model.scan({ .scope = Scope::quiet, .automatic = true });
    QVERIFY(isAt(model, Kind::idle));
    QVERIFY(model.scope() == Scope::complete);
}

void TestAppModelScan::byHandScansAfterAnAutomaticOne()
{
    Fixture fixture;
    AppModel model(fixture.services);
    model.scan({ .scope = Scope::quiet, .automatic = true });
    QTRY_VERIFY(isAt(model, Kind::ready));
    model.scan({});
    QVERIFY(isAt(model, Kind::scanning));
    QTRY_VERIFY(isAt(model, Kind::ready));
}

void TestAppModelScan::rescanKeepsTheOldTreeUntilItsEnd()
{
    Fixture fixture;
    AppModel model(fixture.services);
    model.scan({});
    QTRY_VERIFY(isAt(model, Kind::ready));
    const auto oldTree = model.tree();
    model.setSelection(oldTree->snapshot(model.rootNode()));

    FolderHold hold(fixture.directories, "/home/someone");
    model.scan({});
    QTRY_VERIFY(hold.isHolding());
    QCOMPARE(model.tree(), oldTree);
    QCOMPARE(model.rootNode(), 0);
    QCOMPARE(model.focus(), -1);
    QVERIFY(model.breadcrumb().isEmpty());
    QVERIFY(model.breadcrumbNames().isEmpty());
    QVERIFY(!model.selection());

    hold.release();
    QTRY_VERIFY(isAt(model, Kind::ready));
    QVERIFY(model.tree() != oldTree);
    QCOMPARE(model.focus(), 0);
}

void TestAppModelScan::everyScanStartRaisesTheTreeGeneration()
{
    Fixture fixture;
    AppModel model(fixture.services);
    for (quint64 generation = 1; generation <= 3; ++generation) {
        model.scan({});
        QCOMPARE(model.treeGeneration(), generation);
        QTRY_VERIFY(isAt(model, Kind::ready));
        QCOMPARE(model.treeGeneration(), generation);
    }
}

void TestAppModelScan::scanUsesTheRootOfItsStart()
{
    Fixture fixture;
    AppModel model(fixture.services);
    fixture.directories.folder("/caf\xE9", { FakeDirectories::aFile("a.txt", 4096) });
    const QSignalSpy roots(&model, &AppModel::scanRootChanged);
    model.setScanRoot("/caf\xE9");
    model.setScanRoot("/caf\xE9");
    QCOMPARE(roots.count(), 1);
    model.scan({});
    model.setScanRoot("/home/someone");
    QTRY_VERIFY(isAt(model, Kind::ready));
    QCOMPARE(model.breadcrumbNames(), QStringList{ u"/caf\uFFFD"_s });
    QCOMPARE(model.scannedFileCount(), qsizetype(1));
}

void TestAppModelScan::missingRootEndsReadyWithAnUnreadableRoot()
{
    Fixture fixture;
    AppModel model(fixture.services);
    model.setScanRoot("/nowhere");
    model.scan({});
    QTRY_VERIFY(isAt(model, Kind::ready));
    QCOMPARE(model.tree()->nodeCount(), qsizetype(1));
    QVERIFY(contains(model.tree()->nodeFlags(model.rootNode()), FileTree::Flags::unreadable));
    QCOMPARE(model.scannedFileCount(), qsizetype(0));
}

void TestAppModelScan::cancelBeforeTheFirstTreeIsIdle()
{
    Fixture fixture;
    FolderHold hold(fixture.directories, "/home/someone");
    AppModel model(fixture.services);
    model.scan({});
    QTRY_VERIFY(hold.isHolding());
    const QSignalSpy phases(&model, &AppModel::phaseChanged);
    model.cancelScan();
    QVERIFY(isAt(model, Kind::idle));
    QCOMPARE(phases.count(), 1);
    QCOMPARE(model.scanProgress().fraction(), 0.0);
    QCOMPARE(model.scanProgress().detail(), QString());
    hold.release();
}

void TestAppModelScan::cancelDropsALateResult()
{
    Fixture fixture;
    FolderHold hold(fixture.directories, "/home/someone");
    AppModel model(fixture.services);
    const QSignalSpy trees(&model, &AppModel::treeChanged);
    model.scan({});
    QTRY_VERIFY(hold.isHolding());
    model.cancelScan();
    hold.release();
    // A second scan comes to its end only after the first task has ended.
    model.scan({});
    QTRY_VERIFY(isAt(model, Kind::ready));
    QCOMPARE(trees.count(), 1);
    QCOMPARE(fixture.directories.sessionsMade(), 2);
}

void TestAppModelScan::cancelRightAfterTheStartReadsNothing()
{
    Fixture fixture;
    AppModel model(fixture.services);
    model.scan({});
    model.cancelScan();
    QVERIFY(isAt(model, Kind::idle));
    model.scan({});
    QTRY_VERIFY(isAt(model, Kind::ready));
    QCOMPARE(fixture.directories.sessionsMade(), 1);
    QCOMPARE(model.treeGeneration(), quint64(2));
}

void TestAppModelScan::cancelDuringARescanKeepsTheOldTree()
{
    Fixture fixture;
    AppModel model(fixture.services);
    model.scan({});
    QTRY_VERIFY(isAt(model, Kind::ready));
    const auto oldTree = model.tree();
    FolderHold hold(fixture.directories, "/home/someone");
    model.scan({});
    QTRY_VERIFY(hold.isHolding());
    model.cancelScan();
    QVERIFY(isAt(model, Kind::ready));
    QCOMPARE(model.tree(), oldTree);
    QCOMPARE(model.focus(), -1);
    QVERIFY(model.breadcrumb().isEmpty());
    hold.release();
    settle();
    QCOMPARE(model.tree(), oldTree);
    QCOMPARE(model.focus(), -1);
}

void TestAppModelScan::cancelWithoutAScanChangesNothing()
{
    Fixture fixture;
    AppModel model(fixture.services);
    const QSignalSpy phases(&model, &AppModel::phaseChanged);
    model.cancelScan();
    QVERIFY(isAt(model, Kind::idle));
    model.scan({});
    QTRY_VERIFY(isAt(model, Kind::ready));
    model.cancelScan();
    QVERIFY(isAt(model, Kind::ready));
    QCOMPARE(model.focus(), model.rootNode());
    QCOMPARE(phases.count(), 2);
}

void TestAppModelScan::scanAfterACancelWaitsForTheOldOne()
{
    Fixture fixture;
    FolderHold hold(fixture.directories, "/home/someone");
    AppModel model(fixture.services);
    model.scan({});
    QTRY_VERIFY(hold.isHolding());
    model.cancelScan();
    model.scan({});
    // However often the main thread goes round, the second walk has not begun.
    for (int i = 0; i < 100; ++i)
        QCoreApplication::processEvents();
    QCOMPARE(fixture.directories.sessionsMade(), 1);
    QVERIFY(isAt(model, Kind::scanning));
    QCOMPARE(model.scanProgress().detail(), QString());
    hold.release();
    QTRY_VERIFY(isAt(model, Kind::ready));
    QCOMPARE(fixture.directories.sessionsMade(), 2);
}

void TestAppModelScan::manyQuickScansEndWithTheLast()
{
    Fixture fixture;
    AppModel model(fixture.services);
    const QSignalSpy trees(&model, &AppModel::treeChanged);
    for (int i = 0; i < 200; ++i) {
        model.scan({});
        for (int turn = 0; turn < i % 4; ++turn)
            QCoreApplication::processEvents();
        model.cancelScan();
    }
    const auto finishedOnTheWay = trees.count();
    model.scan({ .scope = Scope::complete });
    QTRY_VERIFY(isAt(model, Kind::ready));
    QCOMPARE(trees.count(), finishedOnTheWay + 1);
    QCOMPARE(model.scannedFileCount(), qsizetype(3));
}

void TestAppModelScan::tickerTellsTheCounts()
{
    HeldFixture fixture(1234);
    AppModel model(fixture.services);
    fixture.scanUntilHeld(model);
    tick(model);
    QCOMPARE(model.scanProgress().counts(), u"1,234 files · 4.8 MB"_s);
    QCOMPARE(model.scanProgress().detail(), u"measuring the rest of the disk"_s);
    fixture.hold.release();
    QTRY_VERIFY(isAt(model, Kind::ready));
}

void TestAppModelScan::tickerDoesNothingWithoutAScan()
{
    Fixture fixture;
    AppModel model(fixture.services);
    tick(model);
    QCOMPARE(model.scanProgress().counts(), QString());
    QCOMPARE(model.scanProgress().fraction(), 0.0);
}

void TestAppModelScan::tickerRunsOnlyDuringAScan()
{
    Fixture fixture;
    AppModel model(fixture.services);
    const auto *ticker = model.findChild<QTimer *>(u"ticker"_s);
    QCOMPARE(ticker->interval(), 1000);
    model.scan({});
    QVERIFY(ticker->isActive());
    QTRY_VERIFY(isAt(model, Kind::ready));
    QVERIFY(!ticker->isActive());
    model.scan({});
    QVERIFY(ticker->isActive());
    model.cancelScan();
    QVERIFY(!ticker->isActive());
}

void TestAppModelScan::barStandsAtTheQuickStagesShareWhenTheTreeStageBegins()
{
    HeldFixture fixture(10);
    AppModel model(fixture.services);
    fixture.scanUntilHeld(model);
    QCOMPARE(model.scanProgress().fraction(), 0.4);
    fixture.hold.release();
    QTRY_VERIFY(isAt(model, Kind::ready));
}

void TestAppModelScan::barStallsWhereTheQuickStageFoundLittle()
{
    HeldFixture fixture(900);
    fixture.defaults.setInteger(lastFileCountKey, 1001);
    fixture.files.entries["/home/someone/.gradle/caches"] = {};
    AppModel model(fixture.services);
    fixture.scanUntilHeld(model);
    tick(model);
    QCOMPARE(model.scanProgress().fraction(), 0.2);
    fixture.hold.release();
    QTRY_VERIFY(isAt(model, Kind::ready));
}

void TestAppModelScan::fileCountOf1000SaysNothing()
{
    HeldFixture fixture(900);
    fixture.defaults.setInteger(lastFileCountKey, 1000);
    AppModel model(fixture.services);
    fixture.scanUntilHeld(model);
    tick(model);
    // By its 900 files the bar would stand at 0.93; by the time gone it has hardly begun.
    QVERIFY(model.scanProgress().fraction() >= 0.4);
    QVERIFY(model.scanProgress().fraction() < 0.7);
    fixture.hold.release();
    QTRY_VERIFY(isAt(model, Kind::ready));
}

void TestAppModelScan::fileCountOf1001IsExpected()
{
    HeldFixture fixture(900);
    fixture.defaults.setInteger(lastFileCountKey, 1001);
    AppModel model(fixture.services);
    fixture.scanUntilHeld(model);
    tick(model);
    QCOMPARE(model.scanProgress().fraction(), 900.0 / 1001 * 0.59 + 0.4);
    fixture.hold.release();
    QTRY_VERIFY(isAt(model, Kind::ready));
}

void TestAppModelScan::moreFilesThanExpectedStopTheBarShortOfDone()
{
    HeldFixture fixture(5000);
    fixture.defaults.setInteger(lastFileCountKey, 1001);
    AppModel model(fixture.services);
    fixture.scanUntilHeld(model);
    tick(model);
    QCOMPARE(model.scanProgress().fraction(), 0.9841);
    fixture.hold.release();
    QTRY_VERIFY(isAt(model, Kind::ready));
}

void TestAppModelScan::barNeverMovesBackwards()
{
    HeldFixture fixture(900);
    fixture.defaults.setInteger(lastFileCountKey, 1001);
    AppModel model(fixture.services);
    fixture.scanUntilHeld(model);
    tick(model);
    const auto reached = model.scanProgress().fraction();
    fixture.defaults.setInteger(lastFileCountKey, 1'000'000);
    tick(model);
    QCOMPARE(model.scanProgress().fraction(), reached);
    fixture.hold.release();
    QTRY_VERIFY(isAt(model, Kind::ready));
}

void TestAppModelScan::damagedFileCountIsNone()
{
    HeldFixture fixture(900);
    fixture.defaults.setTexts(lastFileCountKey, { u"many"_s });
    AppModel model(fixture.services);
    fixture.scanUntilHeld(model);
    tick(model);
    QVERIFY(model.scanProgress().fraction() >= 0.4);
    QVERIFY(model.scanProgress().fraction() < 0.7);
    fixture.hold.release();
    QTRY_VERIFY(isAt(model, Kind::ready));
}

void TestAppModelScan::destroyedModelEndsItsScan()
{
    Fixture fixture;
    FolderHold hold(fixture.directories, "/home/someone");
    auto model = std::make_unique<AppModel>(fixture.services);
    model->scan({});
    QTRY_VERIFY(hold.isHolding());
    // The walk ends only when its reader is let go, and the services it uses may go right after the model.
    const std::jthread releasing([&] { hold.release(); });
    model.reset();
    QCOMPARE(fixture.directories.readersEnded(), fixture.directories.readersMade());
    settle();
}

void TestAppModelScan::modelDestroyedBeforeTheWalkReadsNothing()
{
    Fixture fixture;
    {
        AppModel model(fixture.services);
        model.scan({});
    }
    settle();
    QCOMPARE(fixture.directories.sessionsMade(), 0);
}

QTEST_GUILESS_MAIN(TestAppModelScan)
#include "tst_AppModelScan.moc"
