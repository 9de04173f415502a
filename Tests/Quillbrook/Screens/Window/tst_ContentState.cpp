#include "Support/FakeServices.h"
#include "Support/FolderHold.h"
#include "Support/Suite.h"
#include "Support/WindowContent.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const auto bookmarkKey = u"Quillbrook.homeBookmark"_s;
const auto gate = ContentState::gateFile();
const auto scanning = ContentState::scanningFile();
const auto notice = ContentState::noticeFile();

QList<Pane> allPanes()
{
    QList<Pane> panes;
    for (const auto &row : paneTable)
        panes.append(row.pane);
    return panes;
}

struct Sandbox : FakeServices
{
    Sandbox()
    {
        home.home = u"/home/someone/.var/app/com.tarnwick.Quillbrook"_s;
        directories.folder("/home/someone", { FakeDirectories::aFile("a", 4096) });
    }

    void keep(const char *path) { defaults.values.insert(bookmarkKey, QByteArray(path)); }
    [[nodiscard]] int questions() const { return int(desktop.folderPicker.requests.size()); }
};

} // namespace

class TestContentState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gateGoesBeforeEverything()
    {
        const ContentState::Shown expected{ .file = gate };
        for (const auto kind :
            { Phase::Kind::idle, Phase::Kind::scanning, Phase::Kind::ready, Phase::Kind::failed })
            for (const auto pane : allPanes())
                QVERIFY(ContentState::shownFor(
                            { .isGated = true, .phase = phaseOf(kind, u"gone"_s), .pane = pane })
                    == expected);
    }

    void noticeTellsWhyThereIsNothing_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("payload");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("message");
        QTest::newRow("failed") << int(Phase::Kind::failed) << "The disk went away."
                                << "Scan failed"
                                << "The disk went away.";
        QTest::newRow("idle") << int(Phase::Kind::idle) << ""
                              << "Nothing scanned yet"
                              << "Press Rescan to look at this Mac.";
    }

    void noticeTellsWhyThereIsNothing()
    {
        QFETCH(int, kind);
        QFETCH(QString, payload);
        QFETCH(QString, title);
        QFETCH(QString, message);
        const ContentState::Shown expected{ .file = notice, .title = title, .message = message };
        for (const auto pane : allPanes())
            QVERIFY(ContentState::shownFor({ .phase = phaseOf(Phase::Kind(kind), payload), .pane = pane })
                == expected);
    }

    void startsAtWardenWithNothingScanned()
    {
        FakeServices machine;
        AppModel model(machine.services);
        WindowContent window(model);
        const auto &content = window.content;
        QCOMPARE(content.pane(), Pane::warden);
        QVERIFY(!content.didStart());
        QCOMPARE(content.file(), notice);
        QCOMPARE(content.shown().title, u"Nothing scanned yet"_s);
        QCOMPARE(machine.directories.sessionsMade(), 0);
    }

    void appearingStartsTheScanOfTheHomeFolder()
    {
        FakeServices machine;
        machine.volumes.answer = VolumeCapacity{ .available = 25, .total = 100 };
        AppModel model(machine.services);
        model.scans().setScanRoot("/somewhere/else");
        WindowContent window(model);
        auto &content = window.content;

        content.appear();
        QVERIFY(content.didStart());
        QCOMPARE(model.volume().liveFree(), 25);
        QCOMPARE(model.scans().scanRoot(), u"/home/someone"_s);
        QVERIFY(model.scans().scope() == Scope::quiet);
        QCOMPARE(content.file(), scanning);
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(machine.directories.sessionsMade(), 1);
    }

    void appearingAgainStartsNothing()
    {
        FakeServices machine;
        AppModel model(machine.services);
        WindowContent window(model);
        auto &content = window.content;
        content.appear();
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);

        content.appear();
        QVERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(machine.directories.sessionsMade(), 1);
    }

    void appearingAfterTheUserScannedStartsNothing()
    {
        FakeServices machine;
        AppModel model(machine.services);
        WindowContent window(model);
        auto &content = window.content;
        model.scans().scan({ .scope = Scope::complete });
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);

        content.appear();
        QVERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QVERIFY(model.scans().scope() == Scope::complete);
    }

    void appearingAsksWhatHoldsWithoutAWindow()
    {
        FakeServices machine;
        AppModel model(machine.services);
        WindowContent window(model);
        const auto before = machine.desktop.notifier.questions;
        window.content.appear();
        QCOMPARE(machine.desktop.notifier.questions, before + 1);
        QCOMPARE(machine.desktop.http.requests.size(), 1);

        machine.desktop.loginItem.enabled = true;
        window.content.appear();
        QCOMPARE(machine.desktop.notifier.questions, before + 2);
        QVERIFY(window.background.launchesAtLogin());
        QCOMPARE(machine.desktop.http.requests.size(), 1);
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
    }

    void windowAfterAStartInTheBackgroundAsksNothingTwice()
    {
        FakeServices machine;
        AppModel model(machine.services);
        WindowContent window(model);
        model.start(window.background);
        QTRY_VERIFY(model.reclaims().safetyNet());
        QSignalSpy nets(&model.reclaims(), &ReclaimDriver::safetyNetChanged);
        // A day later another window would ask for a newer version.
        machine.clock.moment = machine.clock.moment.addDays(2);
        machine.volumes.answer = VolumeCapacity{ .available = 25, .total = 100 };
        window.content.appear();
        QCOMPARE(model.volume().liveFree(), 25);
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(machine.desktop.http.requests.size(), 1);
        QCOMPARE(nets.count(), 0);
    }

    void startActionGoesInItsOrder()
    {
        FakeServices machine;
        machine.volumes.answer = VolumeCapacity{ .available = 25, .total = 100 };
        AppModel model(machine.services);
        model.scans().setScanRoot("/somewhere/else");
        FolderAccess access(machine.services);
        Background background(machine.services);
        machine.desktop.loginItem.enabled = true;
        ContentState content(model, access, background);
        // At each step, whether the version had been asked for by then.
        QStringList steps;
        const auto note = [&](const char *step) {
            steps.append(QString::fromLatin1(step) + QString::number(machine.desktop.http.requests.size()));
        };
        connect(&background, &Background::launchesAtLoginChanged, this, [&] { note("background "); });
        connect(&model.volume(), &VolumeFigures::volumeChanged, this, [&] { note("volume "); });
        connect(&model.scans(), &ScanDriver::scanRootChanged, this, [&] { note("root "); });
        connect(&model.scans(), &ScanDriver::phaseChanged, this, [&] { note("scan "); });
        const auto *clock = model.findChild<QTimer *>(u"volumeClock"_s);
        QVERIFY(!clock->isActive());
        content.appear();
        QVERIFY(clock->isActive());
        QCOMPARE(steps, QStringList({ u"background 0"_s, u"volume 1"_s, u"root 1"_s, u"scan 1"_s }));
        QTRY_VERIFY(model.reclaims().safetyNet());
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
    }

    void gateStandsAndNothingIsScanned()
    {
        Sandbox machine;
        machine.volumes.answer = VolumeCapacity{ .available = 25, .total = 100 };
        AppModel model(machine.services);
        WindowContent window(model);
        QCOMPARE(window.content.file(), gate);
        window.content.appear();
        QVERIFY(window.content.didStart());
        QCOMPARE(model.volume().liveFree(), 25);
        QTRY_VERIFY(model.reclaims().safetyNet());
        QCOMPARE(window.content.file(), gate);
        QVERIFY(model.scans().phase().kind == Phase::Kind::idle);
        QCOMPARE(machine.directories.sessionsMade(), 0);
        QCOMPARE(machine.questions(), 0);

        for (const auto pane : allPanes()) {
            window.content.setPane(pane);
            QCOMPARE(window.content.file(), gate);
        }
    }

    void keptGrantIsScannedByItself()
    {
        Sandbox machine;
        machine.keep("/home/someone");
        AppModel model(machine.services);
        WindowContent window(model);
        QCOMPARE(window.content.file(), notice);
        window.content.appear();
        QCOMPARE(window.content.file(), scanning);
        QCOMPARE(model.scans().scanRoot(), u"/home/someone"_s);
        QVERIFY(model.scans().scope() == Scope::quiet);
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(machine.questions(), 0);
        QCOMPARE(machine.desktop.folderGrants.started.size(), 1U);
    }

    void refusedFolderIsScannedAllTheSame()
    {
        Sandbox machine;
        machine.keep("/home/gone");
        machine.desktop.folderGrants.grants = false;
        AppModel model(machine.services);
        WindowContent window(model);
        window.content.appear();
        QCOMPARE(model.scans().scanRoot(), u"/home/gone"_s);
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(machine.directories.sessionsMade(), 1);
        QCOMPARE(model.scans().scannedFileCount(), 0);
    }

    void gateLetsTheHomeFolderBeChosen()
    {
        Sandbox machine;
        machine.desktop.folderPicker.answer = "/home/someone";
        AppModel model(machine.services);
        WindowContent window(model);
        window.content.appear();
        QSignalSpy views(&window.content, &ContentState::shownChanged);
        window.content.chooseHomeFolder();
        // The press comes to its end before the desktop's window opens.
        QCOMPARE(machine.questions(), 0);
        QTRY_COMPARE(machine.questions(), 1);
        QTRY_COMPARE(window.content.file(), scanning);
        QVERIFY(views.count() > 0);
        QVERIFY(model.scans().scope() == Scope::quiet);
        QCOMPARE(model.scans().scanRoot(), u"/home/someone"_s);
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(window.content.file(), u"Warden/WardenPane.qml"_s);
        QCOMPARE(machine.directories.sessionsMade(), 1);
        QCOMPARE(model.scans().scannedFileCount(), 1);
    }

    void gateStaysWhenTheChoiceIsCancelled()
    {
        Sandbox machine;
        AppModel model(machine.services);
        WindowContent window(model);
        window.content.appear();
        for (int times = 1; times <= 2; ++times) {
            window.content.chooseHomeFolder();
            QTRY_COMPARE(machine.questions(), times);
            QCOMPARE(window.content.file(), gate);
        }
        QVERIFY(model.scans().phase().kind == Phase::Kind::idle);
        QCOMPARE(machine.directories.sessionsMade(), 0);
    }

    void folderOnAnotherVolumeIsScanned()
    {
        Sandbox machine;
        machine.directories.folder("/Volumes/Backup/someone", { FakeDirectories::aFile("a", 4096) });
        machine.desktop.folderPicker.answer = "/Volumes/Backup/someone";
        AppModel model(machine.services);
        WindowContent window(model);
        window.content.appear();
        window.content.chooseHomeFolder();
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(model.scans().scanRoot(), u"/Volumes/Backup/someone"_s);
        QCOMPARE(model.scans().scannedFileCount(), 1);
        QVERIFY(window.access.grantedIsWrongVolume());
    }

    void folderIsMeasuredWhenAnEarlierOneWasTakenBack()
    {
        Sandbox machine;
        machine.keep("/home/someone");
        machine.directories.folder("/home/another", {});
        AppModel model(machine.services);
        WindowContent window(model);
        window.content.appear();
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        window.access.revoke();
        QCOMPARE(window.content.file(), gate);

        machine.desktop.folderPicker.answer = "/home/another";
        window.content.chooseHomeFolder();
        QTRY_COMPARE(window.content.file(), scanning);
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(machine.directories.sessionsMade(), 2);
        QCOMPARE(model.scans().scannedFileCount(), 0);
    }

    void gateNeverStandsOutsideASandbox()
    {
        FakeServices machine;
        machine.defaults.values.insert(bookmarkKey, QByteArray("/kept/from/elsewhere"));
        machine.desktop.folderGrants.canResolve = false;
        AppModel model(machine.services);
        WindowContent window(model);
        QCOMPARE(window.content.file(), notice);
        window.content.appear();
        QCOMPARE(window.content.file(), scanning);
        QCOMPARE(model.scans().scanRoot(), u"/home/someone"_s);
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QVERIFY(machine.desktop.folderGrants.started.empty());
        QCOMPARE(
            machine.defaults.values.value(bookmarkKey).toByteArray(), QByteArray("/kept/from/elsewhere"));
    }

    void rescanTakesThePresentScopeAndFolder()
    {
        Sandbox machine;
        machine.keep("/home/someone");
        AppModel model(machine.services);
        WindowContent window(model);
        model.scans().scan({ .scope = Scope::complete });
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        window.content.rescan();
        QVERIFY(model.scans().phase().kind == Phase::Kind::scanning);
        QVERIFY(model.scans().scope() == Scope::complete);
        QCOMPARE(model.scans().scanRoot(), u"/home/someone"_s);
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(machine.directories.sessionsMade(), 2);
    }

    void paneChangesDuringAScanButNotWhatIsShown()
    {
        FakeServices machine;
        machine.directories.folder("/home/someone", {});
        FolderHold hold(machine.directories, "/home/someone");
        AppModel model(machine.services);
        WindowContent window(model);
        auto &content = window.content;
        content.appear();
        QTRY_VERIFY(hold.isHolding());

        QSignalSpy panes(&content, &ContentState::paneChanged);
        QSignalSpy views(&content, &ContentState::shownChanged);
        for (const auto pane : allPanes()) {
            content.setPane(pane);
            QCOMPARE(content.pane(), pane);
            QCOMPARE(content.file(), scanning);
        }
        QCOMPARE(panes.count(), 9);
        QCOMPARE(views.count(), 0);

        hold.release();
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(content.file(), u"Advisor/AdvisorPane.qml"_s);
    }

    void requestedPaneIsChosenAndThenCleared()
    {
        FakeServices machine;
        AppModel model(machine.services);
        WindowContent window(model);
        auto &content = window.content;
        model.navigation().setRequestedPane(Pane::map);
        QCOMPARE(content.pane(), Pane::map);
        QCOMPARE(model.navigation().requestedPane(), Pane::map);
        QTRY_VERIFY(!model.navigation().requestedPane());
        QCOMPARE(content.pane(), Pane::map);
    }

    void requestForThePresentPaneIsClearedToo()
    {
        FakeServices machine;
        AppModel model(machine.services);
        WindowContent window(model);
        auto &content = window.content;
        QSignalSpy panes(&content, &ContentState::paneChanged);
        model.navigation().setRequestedPane(Pane::warden);
        QTRY_VERIFY(!model.navigation().requestedPane());
        QCOMPARE(content.pane(), Pane::warden);
        QCOMPARE(panes.count(), 0);
    }

    void requestMadeBeforeTheWindowIsFollowed()
    {
        FakeServices machine;
        AppModel model(machine.services);
        model.navigation().setRequestedPane(Pane::search);
        WindowContent window(model);
        auto &content = window.content;
        QCOMPARE(content.pane(), Pane::search);
        QTRY_VERIFY(!model.navigation().requestedPane());
    }

    void questionFieldStandsUnderEveryPaneButTheConversation()
    {
        FakeServices machine;
        AppModel model(machine.services);
        WindowContent window(model);
        auto &content = window.content;
        for (const auto pane : allPanes()) {
            content.setPane(pane);
            QCOMPARE(content.asksBelow(), pane != Pane::advisor);
        }
    }

private:
    static Phase phaseOf(Phase::Kind kind, const QString &message = {}) { return { kind, message }; }
};

QUILLBROOK_SUITE(TestContentState, QCoreApplication)
#include "tst_ContentState.moc"
