#include "Core/AppModel.h"
#include "Core/Background.h"
#include "Support/FolderHold.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>

#include <thread>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 gibibyte = qint64(1) << 30;

// A disk that is nearly full, with much on it that can go.
struct FullDisk : ScannedHome
{
    FullDisk()
    {
        addPlace(".npm/_cacache", 3072);
        addPlace(".gradle/daemon", 1024);
        volumes.answer = { .available = gibibyte, .total = 500 * gibibyte };
        model.watch().configureWatcher(background);
    }

    /// One check by the timer. REQUIRES: the watching is on.
    void check()
    {
        desktop.utility.fire();
        QCoreApplication::processEvents();
    }

    Background background{ services };
};

} // namespace

class TestWatchDriver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isOffAtFirst()
    {
        FullDisk disk;
        QVERIFY(!disk.model.watch().watching());
        QVERIFY(!disk.model.watch().lastWatch());
        QVERIFY(!disk.desktop.utility.timer);
        QVERIFY(disk.desktop.utility.waiting.empty());
        QCOMPARE(disk.desktop.notifier.requests, 0);
    }

    void switchingOnStartsTheTimerAndChecks()
    {
        FullDisk disk;
        disk.model.watch().setWatching(true);
        QVERIFY(disk.model.watch().watching());
        QVERIFY(disk.model.watch().watcher().settings().enabled);
        QVERIFY(disk.desktop.utility.timer);
        QCOMPARE(disk.desktop.utility.timer->interval, std::chrono::milliseconds(1'800'000));
        QCOMPARE(disk.desktop.utility.waiting.size(), size_t(1));
        QVERIFY(!disk.model.watch().lastWatch());
        disk.desktop.utility.run();
        QTRY_VERIFY(disk.model.watch().lastWatch());
    }

    void switchingOnAsksToBeLetThrough()
    {
        FullDisk disk;
        QTRY_COMPARE(disk.desktop.notifier.questions, 1);
        QCOMPARE(disk.background.notificationState(), NotificationState::notAsked);
        disk.model.watch().setWatching(true);
        QCOMPARE(disk.desktop.notifier.requests, 1);
        QTRY_COMPARE(disk.background.notificationState(), NotificationState::allowed);
        disk.model.watch().setWatching(false);
        QCoreApplication::processEvents();
        QCOMPARE(disk.desktop.notifier.requests, 1);
        QCOMPARE(disk.desktop.notifier.questions, 2);
    }

    void switchingOnWithoutABackgroundAsksToo()
    {
        FakeServices fake;
        AppModel model(fake.services);
        model.watch().setWatching(true);
        QCoreApplication::processEvents();
        QCOMPARE(fake.desktop.notifier.requests, 1);
        QCOMPARE(fake.desktop.utility.waiting.size(), size_t(1));
    }

    void switchingOffEndsTheTimer()
    {
        FullDisk disk;
        disk.model.watch().setWatching(true);
        disk.model.watch().setWatching(false);
        QVERIFY(!disk.model.watch().watching());
        QVERIFY(!disk.model.watch().watcher().settings().enabled);
        QVERIFY(!disk.desktop.utility.timer);
        QCOMPARE(disk.desktop.utility.starts, 1);
    }

    void switchingOffLetsALookReport()
    {
        FullDisk disk;
        FolderHold hold(disk.directories, disk.path(".npm"));
        disk.model.watch().setWatching(true);
        std::thread queue([&disk] { disk.desktop.utility.run(); });
        const bool isHeld = QTest::qWaitFor([&hold] { return hold.isHolding(); }, 20'000);
        disk.model.watch().setWatching(false);
        hold.release();
        queue.join();
        QVERIFY(isHeld);
        QTRY_VERIFY(disk.model.watch().lastWatch());
        QCOMPARE(disk.desktop.notifier.posted.size(), 1);
    }

    void switchTellsOnlyChanges()
    {
        FullDisk disk;
        const QSignalSpy changes(&disk.model.watch(), &WatchDriver::watchingChanged);
        disk.model.watch().setWatching(false);
        QCOMPARE(changes.count(), 0);
        disk.model.watch().setWatching(true);
        disk.model.watch().setWatching(true);
        QCOMPARE(changes.count(), 1);
        disk.model.watch().setWatching(false);
        QCOMPARE(changes.count(), 2);
    }

    void otherSettingsStay()
    {
        FullDisk disk;
        QVERIFY(disk.model.watch().watcher().settings() == Watcher::Settings());
        disk.model.watch().setWatching(true);
        QVERIFY(disk.model.watch().watcher().settings() == (Watcher::Settings{ .enabled = true }));
        disk.model.watch().setWatching(false);
        QVERIFY(disk.model.watch().watcher().settings() == Watcher::Settings());
    }

    void observationIsKeptAndTold()
    {
        FullDisk disk;
        disk.model.watch().setWatching(true);
        const QSignalSpy changes(&disk.model.watch(), &WatchDriver::lastWatchChanged);
        disk.check();
        QCOMPARE(changes.count(), 1);
        QVERIFY(disk.model.watch().lastWatch() == disk.model.watch().watcher().lastObservation());
        QCOMPARE(disk.model.watch().lastWatch()->reclaimableBytes, 4 * gibibyte);
        QCOMPARE(disk.model.watch().lastWatch()->checkedAt, disk.clock.moment);
    }

    void worthyObservationIsPosted()
    {
        FullDisk disk;
        disk.model.watch().setWatching(true);
        disk.check();
        const QList<std::pair<QString, QString>> expected{ { u"4.0 GB can be reclaimed"_s,
            u"1.0 GB free · 4.0 GB can be reclaimed · mostly Downloaded code packages"_s } };
        QCOMPARE(disk.desktop.notifier.posted, expected);
    }

    void secondObservationInTheQuietPeriodIsNotPosted()
    {
        FullDisk disk;
        disk.model.watch().setWatching(true);
        disk.check();
        disk.clock.moment = disk.clock.moment.addSecs(1800);
        disk.check();
        QCOMPARE(disk.model.watch().lastWatch()->checkedAt, disk.clock.moment);
        QCOMPARE(disk.desktop.notifier.posted.size(), 1);
        disk.clock.moment = disk.clock.moment.addSecs(21600);
        disk.check();
        QCOMPARE(disk.desktop.notifier.posted.size(), 2);
    }

    void bodyLeavesOutAGroupThatIsNot()
    {
        FakeServices fake;
        fake.volumes.answer = { .available = gibibyte, .total = 500 * gibibyte };
        AppModel model(fake.services);
        Background background(fake.services);
        model.watch().configureWatcher(background);
        model.watch().watcher().check(true);
        QCoreApplication::processEvents();
        const QList<std::pair<QString, QString>> expected{ { u"0 B can be reclaimed"_s,
            u"1.0 GB free · nothing safe left to reclaim"_s } };
        QCOMPARE(fake.desktop.notifier.posted, expected);
    }

    void unworthyObservationIsNotPosted()
    {
        FullDisk disk;
        disk.volumes.answer->available = 100 * gibibyte;
        disk.model.watch().setWatching(true);
        disk.check();
        QCOMPARE(disk.model.watch().lastWatch()->headline, u"100 GB free"_s);
        QVERIFY(disk.desktop.notifier.posted.isEmpty());
    }

    void nothingIsPostedToWhoDoesNotWantIt()
    {
        FullDisk disk;
        disk.background.setNotificationsWanted(false);
        disk.model.watch().setWatching(true);
        disk.check();
        QVERIFY(disk.model.watch().lastWatch()->shouldNotify);
        QVERIFY(disk.desktop.notifier.posted.isEmpty());
        // It counted as a notice all the same.
        disk.background.setNotificationsWanted(true);
        disk.check();
        QVERIFY(disk.desktop.notifier.posted.isEmpty());
    }

    void noticeSurvivesTheWindowsScan()
    {
        FullDisk disk;
        disk.model.watch().setWatching(true);
        disk.check();
        const auto seen = disk.model.watch().lastWatch();
        disk.scan();
        QVERIFY(disk.model.watch().lastWatch() == seen);
    }

    void looksBesideAScanChangeNothingOfIt()
    {
        FullDisk disk;
        disk.scan();
        const auto tree = disk.model.scans().tree();
        const auto generation = disk.model.scans().treeGeneration();
        disk.model.watch().setWatching(true);
        disk.check();
        QCOMPARE(disk.model.scans().tree(), tree);
        QCOMPARE(disk.model.scans().treeGeneration(), generation);
        QCOMPARE(disk.model.scans().phase().kind, Phase::Kind::ready);
    }
};

QUILLBROOK_SUITE(TestWatchDriver, QCoreApplication)
#include "tst_WatchDriver.moc"
