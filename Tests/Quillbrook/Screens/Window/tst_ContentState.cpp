#include "Support/FakeServices.h"
#include "Support/FolderHold.h"
#include "Support/Suite.h"
#include "Support/WindowContent.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using View = ContentState::View;

namespace {

const auto bookmarkKey = u"Quillbrook.homeBookmark"_s;

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
        const ContentState::Shown expected{ .view = View::Gate };
        for (const auto kind :
            { Phase::Kind::idle, Phase::Kind::scanning, Phase::Kind::ready, Phase::Kind::failed })
            for (const auto pane : allPanes)
                QVERIFY(ContentState::shownFor(
                            { .isGated = true, .phase = phaseOf(kind, u"gone"_s), .pane = pane })
                    == expected);
    }

    void scanningGoesBeforeEveryPane()
    {
        for (const auto pane : allPanes)
            QCOMPARE(ContentState::shownFor({ .phase = phaseOf(Phase::Kind::scanning), .pane = pane }).view,
                View::Scanning);
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
        const ContentState::Shown expected{ .view = View::Notice, .title = title, .message = message };
        for (const auto pane : allPanes)
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
        QCOMPARE(content.view(), View::Notice);
        QCOMPARE(content.noticeTitle(), u"Nothing scanned yet"_s);
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
        QCOMPARE(content.view(), View::Scanning);
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
        content.appear();
        QVERIFY(model.findChild<QTimer *>(u"volumeClock"_s)->isActive());
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
        QCOMPARE(window.content.view(), View::Gate);
        window.content.appear();
        QVERIFY(window.content.didStart());
        QCOMPARE(model.volume().liveFree(), 25);
        QTRY_VERIFY(model.reclaims().safetyNet());
        QCOMPARE(window.content.view(), View::Gate);
        QVERIFY(model.scans().phase().kind == Phase::Kind::idle);
        QCOMPARE(machine.directories.sessionsMade(), 0);
        QCOMPARE(machine.questions(), 0);

        for (const auto pane : allPanes) {
            window.content.setPane(pane);
            QCOMPARE(window.content.view(), View::Gate);
        }
    }

    void keptGrantIsScannedByItself()
    {
        Sandbox machine;
        machine.keep("/home/someone");
        AppModel model(machine.services);
        WindowContent window(model);
        QCOMPARE(window.content.view(), View::Notice);
        window.content.appear();
        QCOMPARE(window.content.view(), View::Scanning);
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
        QSignalSpy views(&window.content, &ContentState::viewChanged);
        window.content.chooseHomeFolder();
        // The press comes to its end before the desktop's window opens.
        QCOMPARE(machine.questions(), 0);
        QTRY_COMPARE(machine.questions(), 1);
        QTRY_COMPARE(window.content.view(), View::Scanning);
        QVERIFY(views.count() > 0);
        QVERIFY(model.scans().scope() == Scope::quiet);
        QCOMPARE(model.scans().scanRoot(), u"/home/someone"_s);
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(window.content.view(), View::Warden);
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
            QCOMPARE(window.content.view(), View::Gate);
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
        QCOMPARE(window.content.view(), View::Gate);

        machine.desktop.folderPicker.answer = "/home/another";
        window.content.chooseHomeFolder();
        QTRY_COMPARE(window.content.view(), View::Scanning);
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
        QCOMPARE(window.content.view(), View::Notice);
        window.content.appear();
        QCOMPARE(window.content.view(), View::Scanning);
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
        QSignalSpy views(&content, &ContentState::viewChanged);
        for (const auto pane : allPanes) {
            content.setPane(pane);
            QCOMPARE(content.pane(), pane);
            QCOMPARE(content.view(), View::Scanning);
        }
        QCOMPARE(panes.count(), 9);
        QCOMPARE(views.count(), 0);

        hold.release();
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(content.view(), View::Notice);
        QCOMPARE(content.noticeTitle(), u"Past answers"_s);
        QCOMPARE(content.noticeMessage(), u"Not here yet."_s);
    }

    void stoppingBeforeTheFirstTreeShowsTheNotice()
    {
        FakeServices machine;
        machine.directories.folder("/home/someone", {});
        FolderHold hold(machine.directories, "/home/someone");
        AppModel model(machine.services);
        WindowContent window(model);
        auto &content = window.content;
        content.appear();
        QTRY_VERIFY(hold.isHolding());

        model.scans().cancelScan();
        QCOMPARE(content.view(), View::Notice);
        QCOMPARE(content.noticeTitle(), u"Nothing scanned yet"_s);
        QCOMPARE(content.noticeMessage(), u"Press Rescan to look at this Mac."_s);
        hold.release();
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
        for (const auto pane : allPanes) {
            content.setPane(pane);
            QCOMPARE(content.asksBelow(), pane != Pane::advisor);
        }
    }

    void choosingTheSamePaneAgainTellsNobody()
    {
        FakeServices machine;
        AppModel model(machine.services);
        WindowContent window(model);
        auto &content = window.content;
        QSignalSpy panes(&content, &ContentState::paneChanged);
        content.setPane(Pane::warden);
        QCOMPARE(panes.count(), 0);
    }

private:
    static Phase phaseOf(Phase::Kind kind, const QString &message = {}) { return { kind, message }; }
};

QUILLBROOK_SUITE(TestContentState, QCoreApplication)
#include "tst_ContentState.moc"
