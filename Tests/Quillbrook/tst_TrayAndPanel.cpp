// The tray's item, and the panel that a press on it brings.

#include "PanelPlacement.h"
#include "Support/AppDelegateSuite.h"
#include "Support/Suite.h"

#include <QScreen>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestTrayAndPanel : public AppDelegateSuite
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void pressTogglesThePanel()
    {
        QVERIFY(m_delegate->start(inBackground));
        press();
        QVERIFY(m_delegate->panel());
        QVERIFY(m_delegate->panel()->isVisible());
        QCOMPARE(m_delegate->panel()->title(), u"panel"_s);
        QVERIFY(QTest::qWaitForWindowActive(m_delegate->panel()));
        QVERIFY(!m_delegate->mainWindow());
        press();
        QVERIFY(!m_delegate->panel());
        QTRY_COMPARE(windowCount(), 0);
        press();
        QVERIFY(m_delegate->panel());
    }

    void panelStandsBesideTheItem_data()
    {
        QTest::addColumn<bool>("isTold");
        QTest::newRow("place told") << true;
        QTest::newRow("no place") << false;
    }

    void panelStandsBesideTheItem()
    {
        QFETCH(bool, isTold);
        QVERIFY(m_delegate->start(inBackground));
        const auto *screen = QGuiApplication::primaryScreen();
        const auto place = isTold ? std::optional(QPoint(400, 10)) : std::nullopt;
        press(place);
        const PanelPlacement placement{ .panel = QSize(100, 150),
            .place = place,
            .screen = screen->geometry(),
            .available = screen->availableGeometry() };
        QCOMPARE(m_delegate->panel()->position(), placement.position());
        QVERIFY(!m_delegate->panel()->position().isNull());
    }

    // One that stands above an item at the bottom of the screen would run over the bar otherwise.
    void panelStaysAtItsItemWhenItGrows()
    {
        QVERIFY(m_delegate->start(inBackground));
        const auto *screen = QGuiApplication::primaryScreen();
        press(QPoint(400, screen->geometry().bottom() - 10));
        const auto *panel = m_delegate->panel();
        const auto bottom = panel->geometry().bottom();
        for (const int height : { 250, 120 }) {
            m_delegate->panel()->setHeight(height);
            QTRY_COMPARE(panel->geometry().height(), height);
            QTRY_COMPARE(panel->geometry().bottom(), bottom);
        }
    }

    void panelGoesWhenItLosesTheKeyboard()
    {
        QVERIFY(m_delegate->start(inBackground));
        press();
        QVERIFY(QTest::qWaitForWindowActive(m_delegate->panel()));
        QWindow other;
        other.show();
        other.requestActivate();
        QTRY_VERIFY(!m_delegate->panel());
        QTRY_COMPARE(windowCount(), 1);
    }

    void pressThatTookTheKeyboardClosesThePanel()
    {
        QVERIFY(m_delegate->start(inBackground));
        press();
        QVERIFY(QTest::qWaitForWindowActive(m_delegate->panel()));
        QWindow tray;
        tray.show();
        tray.requestActivate();
        auto isOver = false;
        connect(
            m_delegate->panel(), &QWindow::visibleChanged, this,
            [this, &isOver] {
                press();
                isOver = true;
            },
            Qt::QueuedConnection);
        QTRY_VERIFY(isOver);
        QVERIFY(!m_delegate->panel());
        // The next press is one of its own.
        press();
        QVERIFY(m_delegate->panel());

        QVERIFY(QTest::qWaitForWindowActive(m_delegate->panel()));
        tray.requestActivate();
        QTRY_VERIFY(!m_delegate->panel());
        QTest::qWait(400);
        press();
        QVERIFY(m_delegate->panel());
    }

    void openingTheWindowHidesThePanel()
    {
        QVERIFY(m_delegate->start(inBackground));
        press();
        QVERIFY(QTest::qWaitForWindowActive(m_delegate->panel()));
        QVERIFY(m_delegate->openWindow());
        QVERIFY(!m_delegate->panel());
        QVERIFY(QTest::qWaitForWindowActive(m_delegate->mainWindow()));
        // The panel went with its work done, not by a press elsewhere.
        press();
        QVERIFY(m_delegate->panel());
    }

    void panelThatCanNotBeMadeIsTold()
    {
        auto windows = m_windows;
        windows.panel = QUrl::fromLocalFile(m_folder->filePath(u"not there.qml"_s));
        make(windows);
        QVERIFY(m_delegate->start(inBackground));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Quillbrook: could not make a window"_s));
        press();
        QVERIFY(!m_delegate->panel());
    }

    void checkingIsDoneAtOnce()
    {
        QVERIFY(m_delegate->start(inBackground));
        QVERIFY(!m_model->watch().watcher().lastObservation());
        Q_EMIT m_tray->checkChosen();
        QVERIFY(m_model->watch().watcher().lastObservation());
        // Presses that came while it checked are answered by that check; a later one is not.
        const auto checks = [this] { return m_machine->directories.sessionsMade(); };
        const auto one = checks();
        Q_EMIT m_tray->checkChosen();
        Q_EMIT m_tray->checkChosen();
        QCOMPARE(checks(), one);
        QCoreApplication::processEvents();
        Q_EMIT m_tray->checkChosen();
        QCOMPARE(checks(), 2 * one);
    }

    void trayShowsTheVolume_data()
    {
        QTest::addColumn<qint64>("free");
        QTest::addColumn<qint64>("total");
        QTest::addColumn<double>("usedShare");
        QTest::addColumn<bool>("isDanger");
        QTest::newRow("empty") << qint64(1000) << qint64(1000) << 0.0 << false;
        QTest::newRow("nine tenths") << qint64(100) << qint64(1000) << 0.9 << false;
        QTest::newRow("more than that") << qint64(99) << qint64(1000) << 0.901 << true;
        QTest::newRow("full") << qint64(0) << qint64(1000) << 1.0 << true;
        QTest::newRow("not known") << qint64(0) << qint64(0) << 0.0 << false;
    }

    void trayShowsTheVolume()
    {
        QFETCH(qint64, free);
        QFETCH(qint64, total);
        QFETCH(double, usedShare);
        QFETCH(bool, isDanger);
        m_machine->volumes.answer = VolumeCapacity{ .available = free, .total = total };
        QVERIFY(m_delegate->start(inBackground));
        QCOMPARE(m_tray->appearances.last().title, m_model->volume().menuBarTitle());
        QCOMPARE(m_tray->appearances.last().usedShare, usedShare);
        QCOMPARE(m_tray->appearances.last().isDanger, isDanger);
    }

    void trayFollowsTheModel()
    {
        QVERIFY(m_delegate->start(inBackground));
        m_machine->volumes.answer = VolumeCapacity{ .available = 20, .total = 1000 };
        m_model->volume().refreshVolume();
        QCOMPARE(m_tray->appearances.last(),
            (TrayItem::Appearance{ .title = u"20 B"_s, .usedShare = 0.98, .isDanger = true }));
        const auto count = m_tray->appearances.size();
        m_model->volume().refreshVolume();
        QCOMPARE(m_tray->appearances.size(), count);
    }
};

QUILLBROOK_SUITE(TestTrayAndPanel, QGuiApplication)
#include "tst_TrayAndPanel.moc"
