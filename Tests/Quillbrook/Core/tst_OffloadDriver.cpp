// What the model makes of moves, over made-up drives and copies; how real ones go is tested with the logic.

#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QDeadlineTimer>
#include <QSemaphore>
#include <QSignalSpy>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

constexpr qint64 mebi = 1'048'576;
constexpr auto models = ".ollama/models";
const auto modelsTitle = u"Downloaded AI models"_s;

struct Fixture : ScannedHome
{
    Fixture()
    {
        addPlace(models, 200);
        addPlace(".android/avd", 150);
        addPlace(".gradle/caches", 500);
        files.entries["/media/disk/."] = {};
        drives.answer = { .available = 1000 * mebi };
        relocation.size = 200 * mebi;
        trash.things.insert(path(models));
        scan();
    }

    [[nodiscard]] OffloadDriver &driver() { return model.offloads(); }
    [[nodiscard]] Finding candidate(const QString &title = modelsTitle)
    {
        for (const auto &finding : driver().offloadCandidates())
            if (finding.rule.title == title)
                return finding;
        qFatal("no such candidate");
    }
    void profile(const std::string &folder = "/media/disk")
    {
        driver().profileDestination(folder);
        QTRY_VERIFY(!driver().isProfiling());
    }
    void idle() { QTRY_VERIFY(!driver().running()); }
    void settled() { QTRY_COMPARE(model.scans().phase().kind, Phase::Kind::ready); }
};

// Copies of a fixture that get as far as a quarter and go on when they are told to.
struct HeldCopy
{
    QSemaphore reached;
    QSemaphore goOn;

    explicit HeldCopy(Fixture &f)
    {
        f.relocation.onCopy = [this](const CopyOrder &order) {
            order.onProgress(50 * mebi);
            reached.release();
            goOn.acquire();
            return CopyResult{ .made = FileIdentity{ .device = 1, .inode = 2 } };
        };
    }
};

} // namespace

class TestOffloadDriver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void candidatesAreColdLargeAndHere_data()
    {
        QTest::addColumn<qint64>("mebibytes");
        QTest::addColumn<bool>("isLink");
        QTest::addColumn<bool>("isCandidate");
        QTest::newRow("exactly as large") << qint64(100) << false << false;
        QTest::newRow("larger") << qint64(101) << false << true;
        QTest::newRow("a link") << qint64(101) << true << false;
    }

    void candidatesAreColdLargeAndHere()
    {
        QFETCH(qint64, mebibytes);
        QFETCH(bool, isLink);
        ScannedHome home;
        QVERIFY(home.model.offloads().offloadCandidates().isEmpty());
        home.addPlace(models, mebibytes);
        home.addPlace(".gradle/caches", 500);
        if (isLink)
            home.files.entries[home.path(models)].kind = FileKind::symlink;
        home.scan();
        QTEST(home.model.offloads().offloadCandidates().size() == 1, "isCandidate");
    }

    void oneByteMoreThanTheLeastIsACandidate()
    {
        ScannedHome home;
        home.addPlace(models, 100);
        home.directories.folder(home.path(models), { FakeDirectories::aFile("content", 100 * mebi + 1) });
        home.scan();
        QCOMPARE(home.model.offloads().offloadCandidates().size(), 1);
    }

    void aProfileTakesThePlaceOfTheOneBefore()
    {
        Fixture f;
        f.profile();
        QVERIFY(f.driver().destination());
        QCOMPARE(f.driver().destination()->writeMBPerSecond, 240.0);
        QCOMPARE(f.speeds.samples.at(0).bytes, 24 * mebi);
        // No figures of the one before while the next one is measured, and none of one that was given up.
        QSemaphore held;
        f.speeds.onMeasure = [&](const SpeedProbe::Sample &sample) {
            held.acquire();
            f.speeds.answer = sample.stop.stop_requested()
                ? std::expected<MeasuredSpeed, QString>(std::unexpected(u"given up"_s))
                : MeasuredSpeed{ .writeSeconds = 1, .readSeconds = 1 };
        };
        f.driver().profileDestination("/media/disk");
        QVERIFY(!f.driver().destination());
        f.driver().profileDestination("/media/disk");
        held.release(2);
        QTRY_VERIFY(!f.driver().isProfiling());
        QCOMPARE(f.driver().destination().value_or(DestinationProfile()).writeMBPerSecond, 24.0);
        f.profile("/media/nothing");
        QVERIFY(!f.driver().destination());
        QCOMPARE(f.driver().destinationError(), u"/media/nothing is not a folder."_s);
    }

    void aDriveThatDoesNotAnswerHoldsNoOtherMeasurement()
    {
        Fixture f;
        QSemaphore held;
        QSemaphore reached;
        f.files.entries["/media/dead/."] = {};
        f.speeds.onMeasure = [&](const SpeedProbe::Sample &sample) {
            if (sample.folder != "/media/dead")
                return;
            reached.release();
            held.acquire();
        };
        f.driver().profileDestination("/media/dead");
        QVERIFY(reached.tryAcquire(1, 5000));
        f.driver().profileDestination("/media/disk");
        QTRY_VERIFY_WITH_TIMEOUT(f.driver().destination(), 20'000);
        QCOMPARE(f.driver().destination()->path, std::string("/media/disk"));
        held.release();
    }

    void withoutADestinationNothingHappens()
    {
        Fixture f;
        f.driver().offload(f.candidate(), true);
        QVERIFY(!f.driver().running());
        QVERIFY(f.driver().offloadLog().isEmpty());
        QVERIFY(f.relocation.orders.empty());
    }

    void aMoveIsLoggedAndMeasured()
    {
        Fixture f;
        f.profile();
        QSignalSpy started(&f.model.scans(), &ScanDriver::started);
        f.driver().offload(f.candidate(), false);
        QCOMPARE(f.driver().running().value().id, f.candidate().id);
        f.idle();
        QCOMPARE(f.driver().offloadLog(), QStringList{ u"✓ Downloaded AI models → /media/disk/models"_s });
        QCOMPARE(f.relocation.made.at(f.path(models)), std::string("/media/disk/models"));
        QCOMPARE(started.count(), 1);
        f.settled();
    }

    void aFailureIsLoggedAndNothingIsMeasured()
    {
        Fixture f;
        f.speeds.answer = MeasuredSpeed{ .writeSeconds = 1, .readSeconds = 1 };
        f.profile();
        QSignalSpy started(&f.model.scans(), &ScanDriver::started);
        f.driver().offload(f.candidate(), false);
        f.idle();
        QCOMPARE(f.driver().offloadLog(),
            QStringList{ u"✗ Downloaded AI models: This drive is slow (24 MB/s). Anything moved here will be "
                         u"slower to open, every time."_s });
        QCOMPARE(started.count(), 0);
    }

    void movesGoOneAtATimeAndAStopEndsThem()
    {
        Fixture f;
        f.profile();
        HeldCopy copy(f);
        f.driver().offload(f.candidate(), false);
        f.driver().offload(f.candidate(u"Test Android phones"_s), false);
        QVERIFY(copy.reached.tryAcquire(1, 5000));
        const auto running = f.driver().running().value();
        QCOMPARE(running.id, f.candidate().id);
        QCOMPARE(running.done, 50 * mebi);
        QCOMPARE(running.total, 200 * mebi);
        QVERIFY(running.canStop);
        QVERIFY(!copy.reached.tryAcquire(1, 50));
        f.driver().stop();
        QVERIFY(!f.driver().running().value().canStop);
        QVERIFY(f.model.removals().isStopping());
        // What waited has ended already.
        QCOMPARE(
            f.driver().offloadLog(), QStringList{ u"✗ Test Android phones: Stopped. Nothing was moved."_s });
        copy.goOn.release();
        f.idle();
        QTRY_VERIFY(!f.model.removals().isBusy());
        QCOMPARE(f.driver().offloadLog(),
            QStringList({ u"✗ Test Android phones: Stopped. Nothing was moved."_s,
                u"✗ Downloaded AI models: Stopped. Nothing was moved."_s }));
        QCOMPARE(f.relocation.dropped, std::vector<std::string>{ "/media/disk/models" });
        QCOMPARE(f.relocation.orders.size(), 1U);
        QCOMPARE(f.trash.asked.size(), 0U);
    }

    void aMoveWaitsForARemovalAndARemovalForAMove()
    {
        Fixture f;
        f.profile();
        QSemaphore removal;
        HeldCopy copy(f);
        f.model.removals().enqueue({ .work = [&](const auto & /*watch*/) { removal.acquire(); } });
        f.driver().offload(f.candidate(), false);
        QVERIFY(!f.driver().running().value().hasBegun);
        QVERIFY(!copy.reached.tryAcquire(1, 50));
        removal.release();
        QTRY_VERIFY(f.driver().running().value().hasBegun);
        QVERIFY(copy.reached.tryAcquire(1, 5000));
        QSemaphore removed;
        f.model.removals().enqueue({ .work = [&](const auto & /*watch*/) { removed.release(); } });
        // A scan does not wait for what may take hours.
        f.scan();
        QVERIFY(!removed.tryAcquire(1, 50));
        copy.goOn.release();
        QTRY_VERIFY(!f.model.removals().isBusy());
        QVERIFY(removed.tryAcquire(1));
        QVERIFY(f.driver().offloadLog().constFirst().startsWith(u"✓"_s));
        f.settled();
    }

    void aMoveThatWaitsIsStoppedAloneAndAtOnce()
    {
        Fixture f;
        f.profile();
        QSemaphore removal;
        bool isRemovalStopped = true;
        f.model.removals().enqueue({ .work = [&](const RemovalQueue::Watch &watch) {
            removal.acquire();
            isRemovalStopped = watch.stop.stop_requested();
        } });
        f.driver().offload(f.candidate(), false);
        f.driver().stop();
        QVERIFY(!f.driver().running());
        const QStringList log{ u"✗ Downloaded AI models: Stopped. Nothing was moved."_s };
        QCOMPARE(f.driver().offloadLog(), log);
        removal.release();
        QTRY_VERIFY(!f.model.removals().isBusy());
        QVERIFY(!isRemovalStopped);
        QVERIFY(f.relocation.orders.empty());
        QCOMPARE(f.driver().offloadLog(), log);
    }

    void whoeverStopsTheQueueStopsTheCopyThatItShows()
    {
        Fixture f;
        f.profile();
        HeldCopy copy(f);
        f.driver().offload(f.candidate(), false);
        QVERIFY(copy.reached.tryAcquire(1, 5000));
        const auto &queue = f.model.removals();
        QTRY_COMPARE(queue.progress().value_or(RemovalQueue::Progress()).bytes, 50 * mebi);
        QCOMPARE(queue.progress()->name, modelsTitle);
        QCOMPARE(queue.progress()->share(), 0.25);
        f.model.removals().stop();
        QVERIFY(!f.driver().running().value().canStop);
        copy.goOn.release();
        f.idle();
        QCOMPARE(
            f.driver().offloadLog(), QStringList{ u"✗ Downloaded AI models: Stopped. Nothing was moved."_s });
    }

    void aStoppedCopyThatDoesNotEndIsGivenUp()
    {
        Fixture f;
        OffloadDriver driver(
            f.kitServices, { .scans = f.model.scans(), .queue = f.model.removals(), .patience = 20ms });
        driver.profileDestination("/media/disk");
        QTRY_VERIFY(driver.destination());
        HeldCopy copy(f);
        driver.offload(f.candidate(), false);
        QVERIFY(copy.reached.tryAcquire(1, 5000));
        QSemaphore removed;
        f.model.removals().enqueue({ .work = [&](const auto & /*watch*/) { removed.release(); } });
        f.model.removals().stop();
        QTRY_VERIFY(!driver.running());
        QVERIFY(removed.tryAcquire(1, 5000));
        const auto line
            = u"✗ Downloaded AI models: Stopped. Nothing was moved. · /media/disk does not answer."_s;
        QCOMPARE(driver.offloadLog(), QStringList{ line });
        QTRY_VERIFY(!f.model.removals().isBusy());
        // Nothing goes where that one may still take its copy away.
        const auto held = u"✗ Downloaded AI models: /media/disk does not answer."_s;
        driver.offload(f.candidate(), false);
        QVERIFY(!driver.running());
        QCOMPARE(driver.offloadLog(), QStringList({ line, held }));
        copy.goOn.release();
        QVERIFY(driver.endsWithin(QDeadlineTimer(5s)));
        QCoreApplication::sendPostedEvents();
        QCOMPARE(f.relocation.dropped, std::vector<std::string>{ "/media/disk/models" });
        QVERIFY(f.trash.asked.empty());
        QVERIFY(f.relocation.made.empty());
        QCOMPARE(driver.offloadLog().size(), 2);
        f.relocation.onCopy = {};
        driver.offload(f.candidate(), false);
        QTRY_VERIFY(!driver.running());
        QVERIFY(driver.offloadLog().constLast().startsWith(u"✓"_s));
    }

    void aMoveThatIsDoneButForItsLastStepsIsNotGivenUp()
    {
        Fixture f;
        OffloadDriver driver(
            f.kitServices, { .scans = f.model.scans(), .queue = f.model.removals(), .patience = 20ms });
        driver.profileDestination("/media/disk");
        QTRY_VERIFY(driver.destination());
        QSemaphore reached;
        QSemaphore goOn;
        f.trash.onMove = [&](const std::string &) {
            reached.release();
            goOn.acquire();
        };
        driver.offload(f.candidate(), false);
        QVERIFY(reached.tryAcquire(1, 5000));
        driver.stop();
        QSignalSpy progressed(&driver, &OffloadDriver::progressed);
        QTRY_VERIFY(progressed.count() >= 3);
        QVERIFY(driver.running());
        QVERIFY(driver.offloadLog().isEmpty());
        goOn.release();
        QTRY_VERIFY(!driver.running());
        QCOMPARE(driver.offloadLog(), QStringList{ u"✓ Downloaded AI models → /media/disk/models"_s });
    }

    void whatIsBackIsToldThoughItsDriveDoesNotAnswer()
    {
        Fixture f;
        OffloadDriver driver(
            f.kitServices, { .scans = f.model.scans(), .queue = f.model.removals(), .patience = 20ms });
        f.relocation.links[f.path(models)] = { .text = "/media/disk/models",
            .target = "/media/disk/models",
            .leadsSomewhere = true,
            .identity = { .device = 1, .inode = 3 } };
        f.trash.things.insert("/media/disk/models");
        driver.recheckDrives();
        QTRY_VERIFY(!driver.movedThings().empty());
        QSemaphore reached;
        QSemaphore goOn;
        f.trash.onMove = [&](const std::string &) {
            reached.release();
            goOn.acquire();
        };
        driver.bringBack(driver.movedThings().at(0));
        QVERIFY(reached.tryAcquire(1, 5000));
        driver.stop();
        QTRY_VERIFY(!driver.running());
        QCOMPARE(driver.offloadLog(),
            QStringList{
                u"✓ Downloaded AI models → %1 · /media/disk/models is still there: It does not answer."_s.arg(
                    QString::fromStdString(f.path(models))) });
        goOn.release();
        QVERIFY(driver.endsWithin(QDeadlineTimer(5s)));
    }

    void aDriveThatDoesNotAnswerIsNotWaitedForLongerThanTold()
    {
        Fixture f;
        QSemaphore held;
        QSemaphore reached;
        f.speeds.onMeasure = [&](const SpeedProbe::Sample &) {
            reached.release();
            held.acquire();
        };
        f.driver().profileDestination("/media/disk");
        QVERIFY(reached.tryAcquire(1, 5000));
        QVERIFY(!f.driver().endsWithin(QDeadlineTimer(20ms)));
        held.release();
        QVERIFY(f.driver().endsWithin(QDeadlineTimer(5s)));
    }

    void theEndOfTheModelEndsWhatRuns()
    {
        QSemaphore reached;
        bool isStopped = false;
        auto f = std::make_unique<Fixture>();
        f->profile();
        f->relocation.onCopy = [&](const CopyOrder &order) {
            reached.release();
            for (int i = 0; i < 1000 && !order.stop.stop_requested(); ++i)
                QThread::msleep(5);
            isStopped = order.stop.stop_requested();
            return CopyResult{ .made = FileIdentity{ .device = 1, .inode = 2 } };
        };
        f->driver().offload(f->candidate(), false);
        f->driver().offload(f->candidate(u"Test Android phones"_s), false);
        QVERIFY(reached.tryAcquire(1, 5000));
        f.reset();
        QVERIFY(!reached.tryAcquire(1));
        QVERIFY(isStopped);
    }

    void whatLiesElsewhereIsMeasuredThereAndBroughtBack()
    {
        Fixture f;
        f.relocation.links[f.path(models)] = { .text = "/media/disk/models",
            .target = "/media/disk/models",
            .leadsSomewhere = true,
            .identity = { .device = 1, .inode = 3 } };
        f.trash.things.insert("/media/disk/models");
        f.driver().recheckDrives();
        QTRY_VERIFY(!f.driver().movedThings().empty() && f.driver().movedThings()[0].bytes);
        const auto thing = f.driver().movedThings().at(0);
        QCOMPARE(thing.bytes, 200 * mebi);
        QCOMPARE(thing.drive, u"Backup"_s);
        QSignalSpy started(&f.model.scans(), &ScanDriver::started);
        f.driver().bringBack(thing);
        f.idle();
        QCOMPARE(f.driver().offloadLog(),
            QStringList{ u"✓ Downloaded AI models → "_s + QString::fromStdString(f.path(models)) });
        QCOMPARE(f.trash.asked, std::vector<std::string>{ "move /media/disk/models" });
        QCOMPARE(started.count(), 1);
        f.settled();
    }

    void aDestinationThatIsTakenOutIsAwayUntilItComesBack()
    {
        Fixture f;
        f.profile();
        f.driver().recheckDrives();
        f.files.entries.erase("/media/disk/.");
        f.driver().recheckDrives();
        QTRY_COMPARE(f.driver().destinationError(), u"/media/disk is not connected."_s);
        QVERIFY(!f.driver().destination());
        f.files.entries["/media/disk/."] = {};
        f.driver().recheckDrives();
        QTRY_VERIFY(f.driver().destination());
        QCOMPARE(f.driver().destinationError(), std::nullopt);
    }
};

QUILLBROOK_SUITE(TestOffloadDriver, QCoreApplication)
#include "tst_OffloadDriver.moc"
