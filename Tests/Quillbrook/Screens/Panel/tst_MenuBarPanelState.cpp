#include "Core/Background.h"
#include "Core/FolderAccess.h"
#include "Screens/Panel/MenuBarPanelState.h"
#include "Support/FolderHold.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 gibi = qint64{ 1024 } * 1024 * 1024;

// A home folder that nobody has measured yet, with 30 MiB in it that are safe to take.
struct Fixture : ScannedHome
{
    Fixture()
    {
        addPlace(".gradle/daemon", 30);
        model.watch().configureWatcher(background);
        haveFree(50 * gibi);
    }

    void haveFree(qint64 bytes)
    {
        volumes.answer
            = VolumeCapacity{ .available = bytes, .availableForImportantUsage = bytes, .total = 200 * gibi };
    }
    /// The watcher checks once, by the button, and has told what it saw.
    void check()
    {
        QSignalSpy checks(&model.watch(), &WatchDriver::lastWatchChanged);
        panel.checkNow();
        QTRY_COMPARE(checks.count(), 1);
    }
    void isTold(NotificationState state)
    {
        desktop.notifier.current = state;
        background.refresh();
        QTRY_COMPARE(background.notificationState(), state);
    }

    Background background{ services };
    FolderAccess access{ services };
    MenuBarPanelState panel{ model, background, access };
};

} // namespace

class TestMenuBarPanelState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void freeSpaceIsTheFigureOfTheTray()
    {
        Fixture fixture;
        QSignalSpy changes(&fixture.panel, &MenuBarPanelState::changed);
        QCOMPARE(fixture.panel.freeText(), u"—"_s);
        fixture.scan();
        QCOMPARE(fixture.panel.freeText(), u"50.0 GB"_s);

        // What is live goes before the report.
        changes.clear();
        fixture.haveFree(40 * gibi);
        fixture.model.volume().refreshVolume();
        QCOMPARE(changes.count(), 1);
        QCOMPARE(fixture.panel.freeText(), u"40.0 GB"_s);
        QCOMPARE(fixture.panel.freeText(), fixture.model.volume().menuBarTitle());
        QCOMPARE(fixture.model.volume().volumeFree(), 50 * gibi);
    }

    void reclaimableIsToldInWords_data()
    {
        QTest::addColumn<std::optional<qint64>>("bytes");
        QTest::addColumn<QString>("words");
        QTest::newRow("absent") << std::optional<qint64>() << u"Not measured yet"_s;
        QTest::newRow("nothing") << std::optional<qint64>(0) << u"Nothing safe left to reclaim"_s;
        QTest::newRow("one byte") << std::optional<qint64>(1) << u"1 B can be reclaimed safely"_s;
        QTest::newRow("much") << std::optional<qint64>(12'904'189'133)
                              << u"12.0 GB can be reclaimed safely"_s;
    }

    void reclaimableIsToldInWords()
    {
        QFETCH(std::optional<qint64>, bytes);
        QTEST(MenuBarPanelState::summaryOf(bytes), "words");
    }

    void nothingIsKnownAtFirst()
    {
        const Fixture fixture;
        QVERIFY(!fixture.panel.reclaimableNow());
        QCOMPARE(fixture.panel.summary(), u"Not measured yet"_s);
        QVERIFY(!fixture.panel.isReclaimable());
    }

    void reportTellsWhatIsSafe()
    {
        Fixture fixture;
        fixture.scan();
        QCOMPARE(fixture.panel.summary(), u"30.0 MB can be reclaimed safely"_s);
        QVERIFY(fixture.panel.isReclaimable());

        ScannedHome bare;
        Background background(bare.services);
        FolderAccess access(bare.services);
        const MenuBarPanelState panel(bare.model, background, access);
        bare.scan();
        QCOMPARE(panel.summary(), u"Nothing safe left to reclaim"_s);
        QVERIFY(!panel.isReclaimable());
    }

    void readingGoesBeforeANewerReport()
    {
        Fixture fixture;
        fixture.scan();
        fixture.addFile(".gradle/daemon/more", 20);
        fixture.check();
        QCOMPARE(fixture.panel.summary(), u"50.0 MB can be reclaimed safely"_s);

        fixture.addFile(".gradle/daemon/still more", 10);
        fixture.scan();
        QCOMPARE(fixture.model.scans().report()->bytes(Safety::safe), qint64{ 60 } * 1024 * 1024);
        QCOMPARE(fixture.panel.summary(), u"50.0 MB can be reclaimed safely"_s);
    }

    void measuringHidesAKnownSize()
    {
        Fixture fixture;
        fixture.check();
        QVERIFY(fixture.panel.isReclaimable());

        FolderHold hold(fixture.directories, fixture.path());
        QSignalSpy changes(&fixture.panel, &MenuBarPanelState::changed);
        fixture.model.scans().scan({ .scope = Scope::complete });
        QCOMPARE(fixture.panel.summary(), u"Measuring…"_s);
        QVERIFY(!fixture.panel.isReclaimable());
        QVERIFY(fixture.panel.reclaimableNow());
        QVERIFY(changes.count() > 0);
        QTRY_VERIFY(hold.isHolding());
        // The report of the quick stage is there, and hides nothing.
        QVERIFY(fixture.model.scans().report());
        QCOMPARE(fixture.panel.summary(), u"Measuring…"_s);

        hold.release();
        QTRY_COMPARE(fixture.panel.summary(), u"30.0 MB can be reclaimed safely"_s);
    }

    void offTellsWhatWatchingMeans()
    {
        Fixture fixture;
        const auto words
            = u"It checks every half hour and tells you before the disk fills up. It never removes "
              u"anything on its "
              u"own, and it only runs while Quillbrook is in the menu bar."_s;
        QVERIFY(!fixture.panel.watching());
        QCOMPARE(fixture.panel.watchingLine(), words);
        QCOMPARE(fixture.panel.quitHelp(), u"Quit Quillbrook."_s);
        // Also with a reading on hand.
        fixture.check();
        QCOMPARE(fixture.panel.watchingLine(), words);
    }

    void watchingBeginsWithALookSoon()
    {
        Fixture fixture;
        QSignalSpy changes(&fixture.panel, &MenuBarPanelState::changed);
        fixture.panel.setWatching(true);
        QVERIFY(changes.count() > 0);
        QVERIFY(fixture.panel.watching());
        QVERIFY(fixture.desktop.utility.timer);
        QCOMPARE(fixture.panel.watchingLine(), u"Checking shortly…"_s);
        QCOMPARE(fixture.panel.quitHelp(), u"Quitting stops Quillbrook watching this Mac."_s);
        QCOMPARE(fixture.desktop.notifier.requests, 1);

        fixture.desktop.utility.run();
        QTRY_COMPARE(fixture.panel.watchingLine(), u"Last checked today · checks every 30 minutes"_s);
        QCOMPARE(fixture.panel.summary(), u"30.0 MB can be reclaimed safely"_s);
    }

    void watchingTellsWhenItLooked()
    {
        Fixture fixture;
        fixture.panel.setWatching(true);
        fixture.check();
        QCOMPARE(fixture.panel.watchingLine(), u"Last checked today · checks every 30 minutes"_s);
        fixture.clock.moment = fixture.clock.moment.addDays(1);
        QCOMPARE(fixture.panel.watchingLine(), u"Last checked yesterday · checks every 30 minutes"_s);
        fixture.clock.moment = fixture.clock.moment.addDays(2);
        QCOMPARE(fixture.panel.watchingLine(), u"Last checked 3 days ago · checks every 30 minutes"_s);
    }

    void switchingOffStopsTheTimer()
    {
        Fixture fixture;
        fixture.panel.setWatching(true);
        fixture.panel.setWatching(false);
        QVERIFY(!fixture.panel.watching());
        QVERIFY(!fixture.desktop.utility.timer);
        QCOMPARE(fixture.panel.quitHelp(), u"Quit Quillbrook."_s);
    }

    void notificationsAreToldByState_data()
    {
        QTest::addColumn<NotificationState>("state");
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("offersSettings");
        QTest::newRow("not asked")
            << NotificationState::notAsked
            << u"Quillbrook will ask permission the first time it needs to tell you something."_s << false;
        QTest::newRow("allowed") << NotificationState::allowed << u"Alerts are on."_s << false;
        QTest::newRow("denied") << NotificationState::denied
                                << u"Alerts are blocked in System Settings, so Quillbrook can only show the "
                                   u"number in the menu bar."_s
                                << true;
    }

    void notificationsAreToldByState()
    {
        QFETCH(NotificationState, state);
        Fixture fixture;
        fixture.isTold(state);
        QTEST(fixture.panel.notificationsLine(), "line");
        QTEST(fixture.panel.offersSettings(), "offersSettings");
    }

    void wishForNotificationsIsKept()
    {
        Fixture fixture;
        QVERIFY(fixture.panel.notificationsWanted());
        QSignalSpy changes(&fixture.panel, &MenuBarPanelState::changed);
        fixture.panel.setNotificationsWanted(false);
        QVERIFY(changes.count() > 0);
        QVERIFY(!fixture.panel.notificationsWanted());
        QCOMPARE(fixture.defaults.boolean(u"Quillbrook.notificationsWanted"_s), std::optional(false));
    }

    void aSentenceStandsWhereNoSettingsCanBeOpened()
    {
        Fixture fixture;
        fixture.isTold(NotificationState::denied);
        QCOMPARE(fixture.panel.settingsHint(), QString());
        fixture.desktop.notifier.settingsPage = false;
        QVERIFY(!fixture.panel.offersSettings());
        QCOMPARE(fixture.panel.settingsHint(),
            u"Alerts can be allowed again where this desktop keeps its settings for notifications."_s);
        fixture.isTold(NotificationState::allowed);
        QCOMPARE(fixture.panel.settingsHint(), QString());
    }

    void deniedNotificationsCanStillBeSwitched()
    {
        Fixture fixture;
        fixture.isTold(NotificationState::denied);
        const auto line = fixture.panel.notificationsLine();
        for (const bool wanted : { false, true }) {
            fixture.panel.setNotificationsWanted(wanted);
            QCOMPARE(fixture.panel.notificationsWanted(), wanted);
            QCOMPARE(fixture.panel.notificationsLine(), line);
            QVERIFY(fixture.panel.offersSettings());
        }
    }

    void settingsAreOpened()
    {
        Fixture fixture;
        fixture.panel.openSettings();
        QCOMPARE(fixture.desktop.notifier.settingsOpened, 1);
    }

    void loginSwitchShowsWhatIsTrue()
    {
        Fixture fixture;
        QVERIFY(!fixture.panel.launchesAtLogin());
        QCOMPARE(fixture.panel.loginLine(), u"Without this, nothing watches after a restart."_s);

        fixture.panel.setLaunchAtLogin(true);
        QTRY_VERIFY(fixture.panel.launchesAtLogin());
        QCOMPARE(fixture.panel.loginLine(), u"Quillbrook starts with your Mac and sits in the menu bar."_s);
        QVERIFY(fixture.desktop.loginItem.enabled);

        fixture.panel.setLaunchAtLogin(false);
        QTRY_VERIFY(!fixture.panel.launchesAtLogin());
        QCOMPARE(fixture.desktop.loginItem.asked, QList({ true, false }));
    }

    void refusedLoginItemIsToldAgain()
    {
        Fixture fixture;
        fixture.desktop.loginItem.failure = u"no"_s;
        QTest::ignoreMessage(QtWarningMsg, "Quillbrook: login item change failed — no");
        fixture.desktop.loginItem.isSlow = true;
        fixture.panel.setLaunchAtLogin(true);
        // The switch stands where it was asked to until the answer is there, and has to be set back then.
        QSignalSpy changes(&fixture.panel, &MenuBarPanelState::changed);
        fixture.desktop.loginItem.release();
        QTRY_VERIFY(changes.count() > 0);
        QVERIFY(!fixture.panel.launchesAtLogin());
        QCOMPARE(fixture.panel.loginLine(), u"Without this, nothing watches after a restart."_s);
    }

    void buttonChecksAtOnceWithoutForce()
    {
        Fixture fixture;
        QVERIFY(!fixture.model.watch().watcher().lastObservation());
        fixture.panel.checkNow();
        // It has waited for the check; only the telling comes later.
        QVERIFY(fixture.model.watch().watcher().lastObservation());
        QVERIFY(!fixture.model.watch().watcher().lastObservation()->shouldNotify);
        QVERIFY(!fixture.model.watch().watcher().lastNotifiedAt());
        QVERIFY(fixture.desktop.utility.waiting.empty());
        QTRY_VERIFY(fixture.model.watch().lastWatch());
        QVERIFY(fixture.desktop.notifier.posted.isEmpty());
    }

    void openAndQuitAreAskedOfTheOwner()
    {
        Fixture fixture;
        QSignalSpy opens(&fixture.panel, &MenuBarPanelState::openRequested);
        QSignalSpy quits(&fixture.panel, &MenuBarPanelState::quitRequested);
        fixture.panel.open();
        QCOMPARE(opens.count(), 1);
        QCOMPARE(quits.count(), 0);
        fixture.panel.quit();
        QCOMPARE(opens.count(), 1);
        QCOMPARE(quits.count(), 1);
    }

    void appearingRefreshesWhatChangedOutside()
    {
        Fixture fixture;
        fixture.desktop.notifier.current = NotificationState::allowed;
        fixture.desktop.loginItem.enabled = true;
        QVERIFY(!fixture.panel.launchesAtLogin());
        fixture.panel.appear();
        QCOMPARE(fixture.panel.freeText(), u"50.0 GB"_s);
        QVERIFY(fixture.panel.launchesAtLogin());
        QTRY_COMPARE(fixture.panel.notificationsLine(), u"Alerts are on."_s);
    }

    void appearingStartsTheFirstScan()
    {
        Fixture fixture;
        fixture.panel.appear();
        QCOMPARE(fixture.model.scans().phase().kind, Phase::Kind::scanning);
        QCOMPARE(fixture.model.scans().scope(), Scope::quiet);
        QCOMPARE(fixture.panel.summary(), u"Measuring…"_s);
        QTRY_COMPARE(fixture.model.scans().phase().kind, Phase::Kind::ready);
    }

    void appearingScansNothingTwice()
    {
        Fixture fixture;
        fixture.scan();
        const auto generation = fixture.model.scans().treeGeneration();
        fixture.panel.appear();
        QCOMPARE(fixture.model.scans().phase().kind, Phase::Kind::ready);
        QCOMPARE(fixture.model.scans().treeGeneration(), generation);

        // A scan that was stopped was the one that starts by itself.
        Fixture stopped;
        stopped.panel.appear();
        stopped.model.scans().cancelScan();
        QVERIFY(!stopped.model.scans().report());
        stopped.panel.appear();
        QCOMPARE(stopped.model.scans().phase().kind, Phase::Kind::idle);
    }

    void nothingIsScannedBeforeTheGrant()
    {
        Fixture fixture;
        fixture.home.home = u"/home/someone/.var/app/com.tarnwick.Quillbrook"_s;
        fixture.panel.appear();
        QCOMPARE(fixture.model.scans().phase().kind, Phase::Kind::idle);
        QCOMPARE(fixture.panel.summary(), u"Not measured yet"_s);

        // The first scan is still to come, and then of what was handed over.
        fixture.desktop.folderPicker.answer = "/Volumes/Backup/someone";
        fixture.access.request();
        fixture.panel.appear();
        QCOMPARE(fixture.model.scans().phase().kind, Phase::Kind::scanning);
        QCOMPARE(fixture.model.scans().scanRoot(), u"/Volumes/Backup/someone"_s);
        QTRY_COMPARE(fixture.model.scans().phase().kind, Phase::Kind::ready);
    }

    void ageIsToldAgainEveryMinuteWhileVisible()
    {
        Fixture fixture;
        auto *clock = fixture.panel.findChild<QTimer *>(u"ageClock"_s);
        QVERIFY(clock);
        QVERIFY(!clock->isActive());
        fixture.panel.appear();
        QVERIFY(clock->isActive());
        QVERIFY(!clock->isSingleShot());
        QCOMPARE(clock->interval(), 60'000);

        QSignalSpy changes(&fixture.panel, &MenuBarPanelState::changed);
        QMetaObject::invokeMethod(clock, "timeout");
        QCOMPARE(changes.count(), 1);
        fixture.panel.disappear();
        QVERIFY(!clock->isActive());
        fixture.model.scans().cancelScan();
    }
};

QUILLBROOK_SUITE(TestMenuBarPanelState, QCoreApplication)
#include "tst_MenuBarPanelState.moc"
