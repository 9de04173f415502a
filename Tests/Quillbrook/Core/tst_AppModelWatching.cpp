#include "Core/AppModel.h"
#include "Core/Background.h"
#include "Support/FolderHold.h"
#include "Support/ScannedHome.h"

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
        model.configureWatcher(background);
    }

    /// One look by the timer. REQUIRES: the watching is on.
    void look()
    {
        desktop.utility.fire();
        QCoreApplication::processEvents();
    }

    Background background{ services };
};

} // namespace

class TestAppModelWatching : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isOffAtFirst();
    void switchingOnStartsTheTimerAndLooks();
    void switchingOnAsksToBeLetThrough();
    void switchingOnWithoutABackgroundAsksToo();
    void switchingOffEndsTheTimer();
    void switchingOffLetsALookReport();
    void switchTellsOnlyChanges();
    void otherSettingsStay();
    void observationIsKeptAndTold();
    void worthyObservationIsPosted();
    void secondObservationInTheQuietPeriodIsNotPosted();
    void bodyLeavesOutAGroupThatIsNot();
    void unworthyObservationIsNotPosted();
    void nothingIsPostedToWhoDoesNotWantIt();
    void noticeSurvivesTheWindowsScan();
    void looksBesideAScanChangeNothingOfIt();
};

void TestAppModelWatching::isOffAtFirst()
{
    FullDisk disk;
    QVERIFY(!disk.model.watching());
    QVERIFY(!disk.model.lastWatch());
    QVERIFY(!disk.desktop.utility.timer);
    QVERIFY(disk.desktop.utility.waiting.empty());
    QCOMPARE(disk.desktop.notifier.requests, 0);
}

void TestAppModelWatching::switchingOnStartsTheTimerAndLooks()
{
    FullDisk disk;
    disk.model.setWatching(true);
    QVERIFY(disk.model.watching());
    QVERIFY(disk.model.watcher().settings().enabled);
    QVERIFY(disk.desktop.utility.timer);
    QCOMPARE(disk.desktop.utility.timer->interval, std::chrono::milliseconds(1'800'000));
    QCOMPARE(disk.desktop.utility.waiting.size(), size_t(1));
    QVERIFY(!disk.model.lastWatch());
    disk.desktop.utility.run();
    QTRY_VERIFY(disk.model.lastWatch());
}

void TestAppModelWatching::switchingOnAsksToBeLetThrough()
{
    FullDisk disk;
    QTRY_COMPARE(disk.desktop.notifier.questions, 1);
    QCOMPARE(disk.background.notificationState(), NotificationState::notAsked);
    disk.model.setWatching(true);
    QCOMPARE(disk.desktop.notifier.requests, 1);
    QTRY_COMPARE(disk.background.notificationState(), NotificationState::allowed);
    disk.model.setWatching(false);
    QCoreApplication::processEvents();
    QCOMPARE(disk.desktop.notifier.requests, 1);
    QCOMPARE(disk.desktop.notifier.questions, 2);
}

void TestAppModelWatching::switchingOnWithoutABackgroundAsksToo()
{
    FakeServices fake;
    AppModel model(fake.services);
    model.setWatching(true);
    QCoreApplication::processEvents();
    QCOMPARE(fake.desktop.notifier.requests, 1);
    QCOMPARE(fake.desktop.utility.waiting.size(), size_t(1));
}

void TestAppModelWatching::switchingOffEndsTheTimer()
{
    FullDisk disk;
    disk.model.setWatching(true);
    disk.model.setWatching(false);
    QVERIFY(!disk.model.watching());
    QVERIFY(!disk.model.watcher().settings().enabled);
    QVERIFY(!disk.desktop.utility.timer);
    QCOMPARE(disk.desktop.utility.starts, 1);
}

void TestAppModelWatching::switchingOffLetsALookReport()
{
    FullDisk disk;
    FolderHold hold(disk.directories, disk.path(".npm"));
    disk.model.setWatching(true);
    std::thread queue([&disk] { disk.desktop.utility.run(); });
    const bool isHeld = QTest::qWaitFor([&hold] { return hold.isHolding(); }, 20'000);
    disk.model.setWatching(false);
    hold.release();
    queue.join();
    QVERIFY(isHeld);
    QTRY_VERIFY(disk.model.lastWatch());
    QCOMPARE(disk.desktop.notifier.posted.size(), 1);
}

void TestAppModelWatching::switchTellsOnlyChanges()
{
    FullDisk disk;
    const QSignalSpy changes(&disk.model, &AppModel::watchingChanged);
    disk.model.setWatching(false);
    QCOMPARE(changes.count(), 0);
    disk.model.setWatching(true);
    disk.model.setWatching(true);
    QCOMPARE(changes.count(), 1);
    disk.model.setWatching(false);
    QCOMPARE(changes.count(), 2);
}

void TestAppModelWatching::otherSettingsStay()
{
    FullDisk disk;
    QVERIFY(disk.model.watcher().settings() == Watcher::Settings());
    disk.model.setWatching(true);
    QVERIFY(disk.model.watcher().settings() == (Watcher::Settings{ .enabled = true }));
    disk.model.setWatching(false);
    QVERIFY(disk.model.watcher().settings() == Watcher::Settings());
}

void TestAppModelWatching::observationIsKeptAndTold()
{
    FullDisk disk;
    disk.model.setWatching(true);
    const QSignalSpy changes(&disk.model, &AppModel::lastWatchChanged);
    disk.look();
    QCOMPARE(changes.count(), 1);
    QVERIFY(disk.model.lastWatch() == disk.model.watcher().lastObservation());
    QCOMPARE(disk.model.lastWatch()->reclaimableBytes, 4 * gibibyte);
    QCOMPARE(disk.model.lastWatch()->checkedAt, disk.clock.moment);
}

void TestAppModelWatching::worthyObservationIsPosted()
{
    FullDisk disk;
    disk.model.setWatching(true);
    disk.look();
    const QList<std::pair<QString, QString>> expected{ { u"4.0 GB can be reclaimed"_s,
        u"1.0 GB free · 4.0 GB can be reclaimed · mostly Downloaded code packages"_s } };
    QCOMPARE(disk.desktop.notifier.posted, expected);
}

void TestAppModelWatching::secondObservationInTheQuietPeriodIsNotPosted()
{
    FullDisk disk;
    disk.model.setWatching(true);
    disk.look();
    disk.clock.moment = disk.clock.moment.addSecs(1800);
    disk.look();
    QCOMPARE(disk.model.lastWatch()->checkedAt, disk.clock.moment);
    QCOMPARE(disk.desktop.notifier.posted.size(), 1);
    disk.clock.moment = disk.clock.moment.addSecs(21600);
    disk.look();
    QCOMPARE(disk.desktop.notifier.posted.size(), 2);
}

void TestAppModelWatching::bodyLeavesOutAGroupThatIsNot()
{
    FakeServices fake;
    fake.volumes.answer = { .available = gibibyte, .total = 500 * gibibyte };
    AppModel model(fake.services);
    Background background(fake.services);
    model.configureWatcher(background);
    model.watcher().check(true);
    QCoreApplication::processEvents();
    const QList<std::pair<QString, QString>> expected{ { u"0 B can be reclaimed"_s,
        u"1.0 GB free · nothing safe left to reclaim"_s } };
    QCOMPARE(fake.desktop.notifier.posted, expected);
}

void TestAppModelWatching::unworthyObservationIsNotPosted()
{
    FullDisk disk;
    disk.volumes.answer->available = 100 * gibibyte;
    disk.model.setWatching(true);
    disk.look();
    QCOMPARE(disk.model.lastWatch()->headline, u"100 GB free"_s);
    QVERIFY(disk.desktop.notifier.posted.isEmpty());
}

void TestAppModelWatching::nothingIsPostedToWhoDoesNotWantIt()
{
    FullDisk disk;
    disk.background.setNotificationsWanted(false);
    disk.model.setWatching(true);
    disk.look();
    QVERIFY(disk.model.lastWatch()->shouldNotify);
    QVERIFY(disk.desktop.notifier.posted.isEmpty());
    // It counted as a notice all the same.
    disk.background.setNotificationsWanted(true);
    disk.look();
    QVERIFY(disk.desktop.notifier.posted.isEmpty());
}

void TestAppModelWatching::noticeSurvivesTheWindowsScan()
{
    FullDisk disk;
    disk.model.setWatching(true);
    disk.look();
    const auto seen = disk.model.lastWatch();
    disk.scan();
    QVERIFY(disk.model.lastWatch() == seen);
}

void TestAppModelWatching::looksBesideAScanChangeNothingOfIt()
{
    FullDisk disk;
    disk.scan();
    const auto tree = disk.model.tree();
    const auto generation = disk.model.treeGeneration();
    disk.model.setWatching(true);
    disk.look();
    QCOMPARE(disk.model.tree(), tree);
    QCOMPARE(disk.model.treeGeneration(), generation);
    QCOMPARE(disk.model.phase().kind, Phase::Kind::ready);
}

QTEST_GUILESS_MAIN(TestAppModelWatching)
#include "tst_AppModelWatching.moc"
