// What the catalogue brings to a scan: the quick stage before the walk, the evaluation after it, and the
// report.

#include "Core/AppModel.h"
#include "Support/FolderHold.h"
#include "Support/ScannedHome.h"

#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

#include <algorithm>
#include <thread>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Kind = Phase::Kind;

QStringList titles(const QList<Finding> &findings)
{
    QStringList titles;
    for (const auto &finding : findings)
        titles.append(finding.rule.title);
    return titles;
}

bool wasOpened(const FakeDirectories &directories, const std::string &path)
{
    const auto opened = directories.opened();
    return std::ranges::find(opened, path) != opened.end();
}

// Lets everything that runs on the pool, and what follows from it, come to its end.
void settle()
{
    for (int round = 0; round < 3; ++round) {
        QCoreApplication::processEvents();
        QVERIFY(QThreadPool::globalInstance()->waitForDone(10'000));
    }
    QTest::qWait(250);
}

const auto logsTitle = u"Android build logs"_s;
const auto packagesTitle = u"Downloaded code packages"_s;

} // namespace

class AppModelCatalogueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noPlacesAreNoDivisionByZero();
    void findingsArriveLargestFirstWhileTheQuickStageRuns();
    void quickReportStandsBeforeTheTree();
    void fullReportReplacesTheQuickOneWhole();
    void progressIsEmptyAfterTheScan();
    void oldReportStandsUntilTheNewQuickOne();
    void cancelDuringTheQuickStageDropsItsResult();
    void cancelDuringTheQuickStageEndsItEarly();
    void cancelDuringTheEvaluationKeepsTheOldReport();
    void lastFindingIsNeverLostToTheReport();
    void quietScanPassesProtectedPlacesOver();
    void completeScanMeasuresThem();
    void hostsPlacesAreFound();
    void hostsProtectedFoldersStayClosedInAQuietScan();
    void reportsVolumeFiguresGoFirst();
    void menuBarShowsTheReportsFigureWithoutALiveOne();
    void secondScanStartsItsCatalogueWorkAfterTheFirstHasEnded();
    void destroyedModelEndsItsQuickStage();
};

void AppModelCatalogueTest::noPlacesAreNoDivisionByZero()
{
    ScannedHome home;
    FolderHold hold(home.directories, home.path());
    home.model.scan({ .scope = Scope::complete });
    QTRY_VERIFY(hold.isHolding());
    QCOMPARE(home.model.scanProgress().fraction(), 0.0);
    QCOMPARE(home.model.scanProgress().detail(), u"measuring the rest of the disk"_s);
    QVERIFY(home.model.report());
    QVERIFY(home.model.report()->findings.isEmpty());
    hold.release();
    QTRY_COMPARE(home.model.phase().kind, Kind::ready);
}

void AppModelCatalogueTest::findingsArriveLargestFirstWhileTheQuickStageRuns()
{
    ScannedHome home;
    home.addPlace(".gradle/daemon", 30);
    home.addPlace(".npm/_cacache", 50);
    home.addPlace(".pub-cache", 70);
    FolderHold hold(home.directories, home.path(".pub-cache"));
    home.model.scan({ .scope = Scope::complete });
    QTRY_COMPARE(home.model.scanProgress().findings().size(), 2);
    QCOMPARE(titles(home.model.scanProgress().findings()), QStringList({ packagesTitle, logsTitle }));
    QCOMPARE(home.model.scanProgress().fraction(), 2.0 / 3 * 0.4);
    QCOMPARE(home.model.scanProgress().detail(), packagesTitle);
    QVERIFY(!home.model.report());
    hold.release();
    QTRY_COMPARE(home.model.phase().kind, Kind::ready);
}

void AppModelCatalogueTest::quickReportStandsBeforeTheTree()
{
    ScannedHome home;
    home.addPlace(".gradle/daemon", 30);
    FolderHold hold(home.directories, home.path());
    QSignalSpy reports(&home.model, &AppModel::reportChanged);
    home.model.scan({ .scope = Scope::complete });
    QTRY_VERIFY(hold.isHolding());
    QCOMPARE(reports.count(), 1);
    QCOMPARE(titles(home.model.report()->findings), QStringList{ logsTitle });
    QVERIFY(!home.model.tree());
    QCOMPARE(home.model.phase().kind, Kind::scanning);
    // What has been found stays on the screen during the walk.
    QCOMPARE(home.model.scanProgress().findings().size(), 1);
    hold.release();
    QTRY_COMPARE(home.model.phase().kind, Kind::ready);
    QCOMPARE(reports.count(), 2);
}

void AppModelCatalogueTest::fullReportReplacesTheQuickOneWhole()
{
    ScannedHome home;
    home.addPlace(".gradle/daemon", 30);
    home.addPlace(".npm/_cacache", 50);
    FolderHold hold(home.directories, home.path());
    home.model.scan({ .scope = Scope::complete });
    QTRY_VERIFY(hold.isHolding());
    QCOMPARE(home.model.report()->findings.size(), 2);
    // One grows and one goes while the rest is measured.
    home.directories.folder(
        home.path(".gradle/daemon"), { FakeDirectories::aFile("log", qint64{ 60 } * 1024 * 1024) });
    home.directories.folder(home.path(".npm/_cacache"), {});
    hold.release();
    QTRY_COMPARE(home.model.phase().kind, Kind::ready);
    QCOMPARE(titles(home.model.report()->findings), QStringList{ logsTitle });
    QCOMPARE(home.model.report()->findings.first().bytes, qint64{ 60 } * 1024 * 1024);
}

void AppModelCatalogueTest::progressIsEmptyAfterTheScan()
{
    ScannedHome home;
    home.addPlace(".gradle/daemon", 30);
    home.scan();
    QVERIFY(home.model.scanProgress().findings().isEmpty());
    QCOMPARE(home.model.scanProgress().detail(), QString());
    QCOMPARE(home.model.scanProgress().fraction(), 0.0);
}

void AppModelCatalogueTest::oldReportStandsUntilTheNewQuickOne()
{
    ScannedHome home;
    home.addPlace(".gradle/daemon", 30);
    home.scan();
    const auto old = home.model.report();
    FolderHold hold(home.directories, home.path(".gradle/daemon"));
    home.model.scan({});
    QTRY_VERIFY(hold.isHolding());
    QCOMPARE(home.model.report(), old);
    hold.release();
    QTRY_COMPARE(home.model.phase().kind, Kind::ready);
}

void AppModelCatalogueTest::cancelDuringTheQuickStageDropsItsResult()
{
    ScannedHome home;
    home.addPlace(".gradle/daemon", 30);
    FolderHold hold(home.directories, home.path(".gradle/daemon"));
    home.model.scan({});
    QTRY_VERIFY(hold.isHolding());
    home.model.cancelScan();
    QCOMPARE(home.model.phase().kind, Kind::idle);
    hold.release();
    settle();
    QVERIFY(!home.model.report());
    QVERIFY(home.model.scanProgress().findings().isEmpty());
    QCOMPARE(home.model.scanProgress().fraction(), 0.0);
    QVERIFY(!wasOpened(home.directories, home.path()));
}

void AppModelCatalogueTest::cancelDuringTheQuickStageEndsItEarly()
{
    ScannedHome home;
    home.addPlace(".gradle/daemon", 30);
    home.addPlace(".npm/_cacache", 50);
    FolderHold hold(home.directories, home.path(".gradle/daemon"));
    home.model.scan({});
    QTRY_VERIFY(hold.isHolding());
    home.model.cancelScan();
    hold.release();
    settle();
    QVERIFY(!wasOpened(home.directories, home.path(".npm/_cacache")));
}

void AppModelCatalogueTest::cancelDuringTheEvaluationKeepsTheOldReport()
{
    ScannedHome home;
    home.addPlace(".gradle/daemon", 30);
    home.scan();
    const auto oldTree = home.model.tree();
    FolderHold hold(home.directories, home.path("Projects"));
    home.model.scan({});
    QTRY_VERIFY(hold.isHolding());
    const auto quick = home.model.report();
    home.model.cancelScan();
    hold.release();
    settle();
    QCOMPARE(home.model.report(), quick);
    QCOMPARE(home.model.tree(), oldTree);
    QCOMPARE(home.model.phase().kind, Kind::ready);
}

void AppModelCatalogueTest::lastFindingIsNeverLostToTheReport()
{
    ScannedHome home;
    for (const auto *place : { ".gradle/daemon", ".gradle/caches", ".npm/_cacache", ".pub-cache" })
        home.addPlace(place, 10);
    FolderHold hold(home.directories, home.path());
    home.model.scan({ .scope = Scope::complete });
    QTRY_VERIFY(hold.isHolding());
    QCOMPARE(home.model.report()->findings.size(), 4);
    QCOMPARE(home.model.scanProgress().findings().size(), 4);
    QCOMPARE(home.model.scanProgress().fraction(), 0.4);
    hold.release();
    QTRY_COMPARE(home.model.phase().kind, Kind::ready);
}

void AppModelCatalogueTest::quietScanPassesProtectedPlacesOver()
{
    ScannedHome home;
    home.addPlace("Pictures", 90);
    home.scan(Scope::quiet);
    QVERIFY(home.model.report()->findings.isEmpty());
    QVERIFY(!wasOpened(home.directories, home.path("Pictures")));
}

void AppModelCatalogueTest::completeScanMeasuresThem()
{
    ScannedHome home;
    home.addPlace("Pictures", 90);
    home.scan(Scope::complete);
    QCOMPARE(home.model.report()->findings.size(), 1);
    QCOMPARE(home.model.report()->findings.first().bytes, qint64{ 90 } * 1024 * 1024);
}

void AppModelCatalogueTest::hostsPlacesAreFound()
{
    ScannedHome home;
    home.host.facts.catalogue.rules = { { .rule = { .id = "host.things",
                                              .title = "Things of the host",
                                              .safety = Safety::safe,
                                              .paths = { ".cache/things" } },
        .locations = { { .path = ".cache/things", .label = "things" } } } };
    home.addPlace(".cache/things", 5);
    home.scan();
    QCOMPARE(titles(home.model.report()->findings), QStringList{ "Things of the host" });
}

void AppModelCatalogueTest::hostsProtectedFoldersStayClosedInAQuietScan()
{
    ScannedHome home;
    home.addFolder("Bilder");
    home.host.facts.protectedPaths = { QString::fromStdString(home.path("Bilder")) };
    home.scan(Scope::quiet);
    QVERIFY(!wasOpened(home.directories, home.path("Bilder")));
    home.scan(Scope::complete);
    QVERIFY(wasOpened(home.directories, home.path("Bilder")));
}

void AppModelCatalogueTest::reportsVolumeFiguresGoFirst()
{
    ScannedHome home;
    home.volumes.answer = { .available = 100, .availableForImportantUsage = 200, .total = 1000 };
    home.scan();
    QCOMPARE(home.model.volumeFree(), home.model.report()->volumeFreeBytes);
    QCOMPARE(home.model.volumeTotal(), qint64(1000));
    home.volumes.answer = { .available = 50, .availableForImportantUsage = 60, .total = 2000 };
    home.model.refreshVolume();
    QCOMPARE(home.model.liveFree(), qint64(50));
    QCOMPARE(home.model.volumeFree(), home.model.report()->volumeFreeBytes);
    QCOMPARE(home.model.volumeTotal(), qint64(1000));
}

void AppModelCatalogueTest::menuBarShowsTheReportsFigureWithoutALiveOne()
{
    ScannedHome home;
    home.model.refreshMenuBarTitle();
    QCOMPARE(home.model.menuBarTitle(), u"0 B"_s);
    home.volumes.answer = { .available = 2048, .availableForImportantUsage = 2048, .total = 4096 };
    home.scan();
    home.volumes.answer = { .total = 4096 };
    home.model.refreshVolume();
    QCOMPARE(home.model.liveFree(), qint64(0));
    QCOMPARE(home.model.menuBarTitle(), u"2.0 KB"_s);
}

void AppModelCatalogueTest::secondScanStartsItsCatalogueWorkAfterTheFirstHasEnded()
{
    ScannedHome home;
    home.addPlace(".gradle/daemon", 30);
    FolderHold hold(home.directories, home.path("Projects"));
    home.model.scan({ .scope = Scope::complete });
    QTRY_VERIFY(hold.isHolding());
    const auto sessions = home.directories.sessionsMade();
    home.model.cancelScan();
    home.model.scan({});
    QTest::qWait(50);
    QCOMPARE(home.directories.sessionsMade(), sessions);
    hold.release();
    QTRY_COMPARE(home.model.phase().kind, Kind::ready);
    QCOMPARE(home.directories.sessionsMade(), sessions + 2);
}

void AppModelCatalogueTest::destroyedModelEndsItsQuickStage()
{
    FakeServices fake;
    fake.files.entries["/home/someone/.gradle/daemon"] = {};
    fake.directories.folder("/home/someone/.gradle/daemon", {});
    FolderHold hold(fake.directories, "/home/someone/.gradle/daemon");
    auto model = std::make_unique<AppModel>(fake.services);
    model->scan({});
    QTRY_VERIFY(hold.isHolding());
    // What is being measured ends only when its reader is let go, and the services may go right after the
    // model.
    const std::jthread releasing([&] { hold.release(); });
    model.reset();
    QCOMPARE(fake.directories.readersEnded(), fake.directories.readersMade());
    settle();
}

QTEST_GUILESS_MAIN(AppModelCatalogueTest)
#include "tst_AppModelCatalogue.moc"
