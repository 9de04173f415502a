#include "Core/AppModel.h"
#include "Screens/ContentState.h"
#include "Support/FakeServices.h"
#include "Support/FolderHold.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using View = ContentState::View;

class ContentStateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void scanningGoesBeforeEveryPane();
    void noticeTellsWhyThereIsNothing_data();
    void noticeTellsWhyThereIsNothing();
    void startsAtWardenWithNothingScanned();
    void appearingStartsTheScanOfTheHomeFolder();
    void appearingAgainStartsNothing();
    void appearingAfterTheUserScannedStartsNothing();
    void homeIsTheRealOneInsideASandbox();
    void paneChangesDuringAScanButNotWhatIsShown();
    void stoppingBeforeTheFirstTreeShowsTheNotice();
    void requestedPaneIsChosenAndThenCleared();
    void requestForThePresentPaneIsClearedToo();
    void requestMadeBeforeTheWindowIsFollowed();
    void questionFieldStandsUnderEveryPaneButTheConversation();
    void choosingTheSamePaneAgainTellsNobody();

private:
    static Phase phaseOf(Phase::Kind kind, const QString &message = {}) { return { kind, message }; }
};

void ContentStateTest::scanningGoesBeforeEveryPane()
{
    for (const auto pane : allPanes)
        QCOMPARE(ContentState::shownFor(phaseOf(Phase::Kind::scanning), pane).view, View::Scanning);
}

void ContentStateTest::noticeTellsWhyThereIsNothing_data()
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

void ContentStateTest::noticeTellsWhyThereIsNothing()
{
    QFETCH(int, kind);
    QFETCH(QString, payload);
    QFETCH(QString, title);
    QFETCH(QString, message);
    const ContentState::Shown expected{ .view = View::Notice, .title = title, .message = message };
    for (const auto pane : allPanes)
        QVERIFY(ContentState::shownFor(phaseOf(Phase::Kind(kind), payload), pane) == expected);
}

void ContentStateTest::startsAtWardenWithNothingScanned()
{
    FakeServices machine;
    AppModel model(machine.services);
    const ContentState content(model);
    QCOMPARE(content.pane(), Pane::warden);
    QVERIFY(!content.didStart());
    QCOMPARE(content.view(), View::Notice);
    QCOMPARE(content.noticeTitle(), QStringLiteral("Nothing scanned yet"));
    QCOMPARE(machine.directories.sessionsMade(), 0);
}

void ContentStateTest::appearingStartsTheScanOfTheHomeFolder()
{
    FakeServices machine;
    machine.volumes.answer = VolumeCapacity{ .available = 25, .total = 100 };
    AppModel model(machine.services);
    model.setScanRoot(QStringLiteral("/somewhere/else"));
    ContentState content(model);

    content.appear();
    QVERIFY(content.didStart());
    QCOMPARE(model.liveFree(), 25);
    QCOMPARE(model.scanRoot(), QStringLiteral("/home/someone"));
    QVERIFY(model.scope() == Scope::quiet);
    QCOMPARE(content.view(), View::Scanning);
    QTRY_VERIFY(model.phase().kind == Phase::Kind::ready);
    QCOMPARE(machine.directories.sessionsMade(), 1);
}

void ContentStateTest::appearingAgainStartsNothing()
{
    FakeServices machine;
    AppModel model(machine.services);
    ContentState content(model);
    content.appear();
    QTRY_VERIFY(model.phase().kind == Phase::Kind::ready);

    content.appear();
    QVERIFY(model.phase().kind == Phase::Kind::ready);
    QCOMPARE(machine.directories.sessionsMade(), 1);
}

void ContentStateTest::appearingAfterTheUserScannedStartsNothing()
{
    FakeServices machine;
    AppModel model(machine.services);
    ContentState content(model);
    model.scan({ .scope = Scope::complete });
    QTRY_VERIFY(model.phase().kind == Phase::Kind::ready);

    content.appear();
    QVERIFY(model.phase().kind == Phase::Kind::ready);
    QVERIFY(model.scope() == Scope::complete);
}

void ContentStateTest::homeIsTheRealOneInsideASandbox()
{
    FakeServices machine;
    machine.home.home = QStringLiteral("/home/someone/.sandbox/data");
    AppModel model(machine.services);
    ContentState content(model);
    content.appear();
    QCOMPARE(model.scanRoot(), QStringLiteral("/home/someone"));
    QTRY_VERIFY(model.phase().kind == Phase::Kind::ready);
}

void ContentStateTest::paneChangesDuringAScanButNotWhatIsShown()
{
    FakeServices machine;
    machine.directories.folder("/home/someone", {});
    FolderHold hold(machine.directories, "/home/someone");
    AppModel model(machine.services);
    ContentState content(model);
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
    QTRY_VERIFY(model.phase().kind == Phase::Kind::ready);
    QCOMPARE(content.view(), View::Notice);
    QCOMPARE(content.noticeTitle(), QStringLiteral("Past answers"));
    QCOMPARE(content.noticeMessage(), QStringLiteral("Not here yet."));
}

void ContentStateTest::stoppingBeforeTheFirstTreeShowsTheNotice()
{
    FakeServices machine;
    machine.directories.folder("/home/someone", {});
    FolderHold hold(machine.directories, "/home/someone");
    AppModel model(machine.services);
    ContentState content(model);
    content.appear();
    QTRY_VERIFY(hold.isHolding());

    model.cancelScan();
    QCOMPARE(content.view(), View::Notice);
    QCOMPARE(content.noticeTitle(), QStringLiteral("Nothing scanned yet"));
    QCOMPARE(content.noticeMessage(), QStringLiteral("Press Rescan to look at this Mac."));
    hold.release();
}

void ContentStateTest::requestedPaneIsChosenAndThenCleared()
{
    FakeServices machine;
    AppModel model(machine.services);
    ContentState content(model);
    model.setRequestedPane(Pane::map);
    QCOMPARE(content.pane(), Pane::map);
    QCOMPARE(model.requestedPane(), Pane::map);
    QTRY_VERIFY(!model.requestedPane());
    QCOMPARE(content.pane(), Pane::map);
}

void ContentStateTest::requestForThePresentPaneIsClearedToo()
{
    FakeServices machine;
    AppModel model(machine.services);
    ContentState content(model);
    QSignalSpy panes(&content, &ContentState::paneChanged);
    model.setRequestedPane(Pane::warden);
    QTRY_VERIFY(!model.requestedPane());
    QCOMPARE(content.pane(), Pane::warden);
    QCOMPARE(panes.count(), 0);
}

void ContentStateTest::requestMadeBeforeTheWindowIsFollowed()
{
    FakeServices machine;
    AppModel model(machine.services);
    model.setRequestedPane(Pane::search);
    ContentState content(model);
    QCOMPARE(content.pane(), Pane::search);
    QTRY_VERIFY(!model.requestedPane());
}

void ContentStateTest::questionFieldStandsUnderEveryPaneButTheConversation()
{
    FakeServices machine;
    AppModel model(machine.services);
    ContentState content(model);
    for (const auto pane : allPanes) {
        content.setPane(pane);
        QCOMPARE(content.asksBelow(), pane != Pane::advisor);
    }
}

void ContentStateTest::choosingTheSamePaneAgainTellsNobody()
{
    FakeServices machine;
    AppModel model(machine.services);
    ContentState content(model);
    QSignalSpy panes(&content, &ContentState::paneChanged);
    content.setPane(Pane::warden);
    QCOMPARE(panes.count(), 0);
}

QTEST_GUILESS_MAIN(ContentStateTest)
#include "tst_ContentState.moc"
