// What the stages of a scan bring: the quick stage before the walk, the evaluation after it, and the report.

#include "Catalogue/StorageItem.h"
#include "Core/AppModel.h"
#include "Support/FolderHold.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>
#include <semaphore>
#include <thread>
#include <tuple>
#include <utility>

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
    QTest::qWait(50);
}

const auto logsTitle = u"Android build logs"_s;
const auto packagesTitle = u"Downloaded code packages"_s;

} // namespace

class TestScanStages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noPlacesAreNoDivisionByZero()
    {
        ScannedHome home;
        FolderHold hold(home.directories, home.path());
        home.model.scans().scan({ .scope = Scope::complete });
        QTRY_VERIFY(hold.isHolding());
        QCOMPARE(home.model.scans().scanProgress().fraction(), 0.0);
        QCOMPARE(home.model.scans().scanProgress().detail(), u"measuring the rest of the disk"_s);
        QVERIFY(home.model.scans().report());
        QVERIFY(home.model.scans().report()->findings.isEmpty());
        hold.release();
        QTRY_COMPARE(home.model.scans().phase().kind, Kind::ready);
    }

    void findingsArriveLargestFirstWhileTheQuickStageRuns()
    {
        ScannedHome home;
        home.addPlace(".gradle/daemon", 30);
        home.addPlace(".npm/_cacache", 50);
        home.addPlace(".pub-cache", 70);
        FolderHold hold(home.directories, home.path(".pub-cache"));
        home.model.scans().scan({ .scope = Scope::complete });
        QTRY_COMPARE(home.model.scans().scanProgress().findings().size(), 2);
        QCOMPARE(
            titles(home.model.scans().scanProgress().findings()), QStringList({ packagesTitle, logsTitle }));
        QCOMPARE(home.model.scans().scanProgress().fraction(), 2.0 / 3 * 0.4);
        QCOMPARE(home.model.scans().scanProgress().detail(), packagesTitle);
        QVERIFY(!home.model.scans().report());
        hold.release();
        QTRY_COMPARE(home.model.scans().phase().kind, Kind::ready);
    }

    void quickReportStandsBeforeTheTree()
    {
        ScannedHome home;
        home.addPlace(".gradle/daemon", 30);
        FolderHold hold(home.directories, home.path());
        QSignalSpy reports(&home.model.scans(), &ScanDriver::reportChanged);
        home.model.scans().scan({ .scope = Scope::complete });
        QTRY_VERIFY(hold.isHolding());
        QCOMPARE(reports.count(), 1);
        QCOMPARE(titles(home.model.scans().report()->findings), QStringList{ logsTitle });
        QVERIFY(!home.model.scans().tree());
        QCOMPARE(home.model.scans().phase().kind, Kind::scanning);
        // What has been found stays on the screen during the walk.
        QCOMPARE(home.model.scans().scanProgress().findings().size(), 1);
        hold.release();
        QTRY_COMPARE(home.model.scans().phase().kind, Kind::ready);
        QCOMPARE(reports.count(), 2);
    }

    void homeWhoseNameIsNotTextHasAQuickReportToo()
    {
        FakeServices machine;
        machine.home.home = machine.home.realHome = u"/home/jos\ufffd"_s;
        machine.home.raw = "/home/jos\xE9";
        machine.directories.folder("/home/jos\xE9", { FakeDirectories::aFolder(".npm") });
        machine.directories.folder("/home/jos\xE9/.npm", { FakeDirectories::aFolder("_cacache") });
        machine.directories.folder("/home/jos\xE9/.npm/_cacache", { FakeDirectories::aFile("f", 8192) });
        machine.files.entries["/home/jos\xE9/.npm/_cacache"] = {};
        AppModel model(machine.services);
        FolderHold hold(machine.directories, "/home/jos\xE9");
        model.scans().scan({});
        QTRY_VERIFY(hold.isHolding());
        QCOMPARE(titles(model.scans().report()->findings), QStringList{ packagesTitle });
        const auto quick = *model.scans().report();
        QCOMPARE(quick.findings.first().rawPath, std::string("/home/jos\xE9/.npm/_cacache"));
        hold.release();
        QTRY_COMPARE(model.scans().phase().kind, Kind::ready);
        QCOMPARE(*model.scans().report(), quick);
    }

    void fullReportReplacesTheQuickOneWhole()
    {
        ScannedHome home;
        home.addPlace(".gradle/daemon", 30);
        home.addPlace(".npm/_cacache", 50);
        FolderHold hold(home.directories, home.path());
        home.model.scans().scan({ .scope = Scope::complete });
        QTRY_VERIFY(hold.isHolding());
        QCOMPARE(home.model.scans().report()->findings.size(), 2);
        // One grows and one goes while the rest is measured.
        home.directories.folder(
            home.path(".gradle/daemon"), { FakeDirectories::aFile("log", qint64{ 60 } * 1024 * 1024) });
        home.directories.folder(home.path(".npm/_cacache"), {});
        hold.release();
        QTRY_COMPARE(home.model.scans().phase().kind, Kind::ready);
        QCOMPARE(titles(home.model.scans().report()->findings), QStringList{ logsTitle });
        QCOMPARE(home.model.scans().report()->findings.first().bytes, qint64{ 60 } * 1024 * 1024);
    }

    void oldReportStandsUntilTheNewQuickOne()
    {
        ScannedHome home;
        home.addPlace(".gradle/daemon", 30);
        home.scan();
        const auto old = home.model.scans().report();
        FolderHold hold(home.directories, home.path(".gradle/daemon"));
        home.model.scans().scan({});
        QTRY_VERIFY(hold.isHolding());
        QCOMPARE(home.model.scans().report(), old);
        hold.release();
        QTRY_COMPARE(home.model.scans().phase().kind, Kind::ready);
    }

    void cancelDuringTheQuickStageEndsItAndDropsItsResult()
    {
        ScannedHome home;
        home.addPlace(".gradle/daemon", 30);
        home.addPlace(".npm/_cacache", 50);
        FolderHold hold(home.directories, home.path(".gradle/daemon"));
        home.model.scans().scan({});
        QTRY_VERIFY(hold.isHolding());
        home.model.scans().cancelScan();
        QCOMPARE(home.model.scans().phase().kind, Kind::idle);
        hold.release();
        settle();
        QVERIFY(!home.model.scans().report());
        QVERIFY(home.model.scans().scanProgress().findings().isEmpty());
        QCOMPARE(home.model.scans().scanProgress().fraction(), 0.0);
        QVERIFY(!wasOpened(home.directories, home.path()));
        QVERIFY(!wasOpened(home.directories, home.path(".npm/_cacache")));
    }

    void cancelDuringTheEvaluationKeepsTheOldReport()
    {
        ScannedHome home;
        home.addPlace(".gradle/daemon", 30);
        home.scan();
        const auto oldTree = home.model.scans().tree();
        // After the quick stage and the walk it is the evaluation that asks for the place once more.
        std::atomic<bool> evaluating = false;
        std::binary_semaphore mayGoOn(0);
        home.files.beforeKind = [&](const std::string &path) {
            if (path != home.path(".gradle/daemon")
                || std::ranges::count(home.directories.opened(), home.path()) < 2)
                return;
            evaluating = true;
            std::ignore = mayGoOn.try_acquire_for(std::chrono::seconds(20));
        };
        home.model.scans().scan({});
        QTRY_VERIFY(evaluating);
        const auto quick = home.model.scans().report();
        home.model.scans().cancelScan();
        mayGoOn.release();
        settle();
        QVERIFY(home.model.scans().report() == quick);
        QCOMPARE(home.model.scans().tree(), oldTree);
        QCOMPARE(home.model.scans().phase().kind, Kind::ready);
    }

    void lastFindingIsNeverLostToTheReport()
    {
        ScannedHome home;
        for (const auto *place : { ".gradle/daemon", ".gradle/caches", ".npm/_cacache", ".pub-cache" })
            home.addPlace(place, 10);
        // What the quick stage has shown, and what its report holds, when it has just ended.
        std::optional<std::pair<qsizetype, qsizetype>> atItsEnd;
        auto &scans = home.model.scans();
        connect(&scans, &ScanDriver::reportChanged, this, [&] {
            if (!scans.tree())
                atItsEnd = { scans.scanProgress().findings().size(), scans.report()->findings.size() };
        });
        FolderHold hold(home.directories, home.path(".pub-cache"));
        scans.scan({ .scope = Scope::complete });
        QTRY_COMPARE(scans.scanProgress().findings().size(), 3);
        hold.release();
        QTRY_COMPARE(scans.phase().kind, Kind::ready);
        QCOMPARE(atItsEnd, std::optional(std::pair(qsizetype(4), qsizetype(4))));
    }

    void quietScanPassesProtectedPlacesOver()
    {
        ScannedHome home;
        home.addPlace("Pictures", 90);
        home.scan(Scope::quiet);
        QVERIFY(home.model.scans().report()->findings.isEmpty());
        QVERIFY(!wasOpened(home.directories, home.path("Pictures")));
    }

    void completeScanMeasuresThem()
    {
        ScannedHome home;
        home.addPlace("Pictures", 90);
        home.scan(Scope::complete);
        QCOMPARE(home.model.scans().report()->findings.size(), 1);
        QCOMPARE(home.model.scans().report()->findings.first().bytes, qint64{ 90 } * 1024 * 1024);
    }

    void hostsPlacesAreFoundAndOpened()
    {
        ScannedHome home;
        home.host.facts.catalogue.rules = { { .rule = { .id = "host.things",
                                                  .title = "Things of the host",
                                                  .safety = Safety::safe,
                                                  .paths = { ".cache/things" } },
            .locations = { { .path = ".cache/things", .label = "things" } } } };
        home.host.facts.catalogue.itemisations = { { .ruleId = "host.things", .detail = "Thing" } };
        home.addPlace(".cache/things", 5);
        home.scan();
        QCOMPARE(titles(home.model.scans().report()->findings), QStringList{ "Things of the host" });
        const auto items = home.model.reclaims().items(home.model.scans().report()->findings.first());
        QCOMPARE(items.size(), 1);
        QCOMPARE(items.first().name + u", "_s + items.first().detail, u"content, Thing"_s);
    }

    void hostsProtectedFoldersStayClosedInAQuietScan()
    {
        ScannedHome home;
        home.addFolder("Bilder");
        home.host.facts.protectedPaths = { QString::fromStdString(home.path("Bilder")) };
        home.scan(Scope::quiet);
        QVERIFY(!wasOpened(home.directories, home.path("Bilder")));
        home.scan(Scope::complete);
        QVERIFY(wasOpened(home.directories, home.path("Bilder")));
    }

    void destroyedModelEndsItsQuickStage()
    {
        FakeServices fake;
        fake.files.entries["/home/someone/.gradle/daemon"] = {};
        fake.directories.folder("/home/someone/.gradle/daemon", {});
        FolderHold hold(fake.directories, "/home/someone/.gradle/daemon");
        auto model = std::make_unique<AppModel>(fake.services);
        model->scans().scan({});
        QTRY_VERIFY(hold.isHolding());
        // What is being measured ends only when its reader is let go, and the services may go right after the
        // model.
        const std::jthread releasing([&] { hold.release(); });
        model.reset();
        QCOMPARE(fake.directories.readersEnded(), fake.directories.readersMade());
        settle();
    }
};

QUILLBROOK_SUITE(TestScanStages, QCoreApplication)
#include "tst_ScanStages.moc"
