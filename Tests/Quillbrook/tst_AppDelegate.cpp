// The windows and the tray's item together, over a made-up machine, with small windows of the test's own.

#include "AppDelegate.h"
#include "Core/AppModel.h"
#include "Core/Background.h"
#include "PanelPlacement.h"
#include "Support/FakeAppInstance.h"
#include "Support/FakeServices.h"
#include "Support/FakeTrayItem.h"
#include "Support/Suite.h"

#include <QGuiApplication>
#include <QQmlEngine>
#include <QScreen>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <QTimer>

#include <memory>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestAppDelegate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_copyPatience = std::chrono::minutes(1);
        m_folder = std::make_unique<QTemporaryDir>();
        m_machine = std::make_unique<FakeServices>();
        m_machine->volumes.answer = VolumeCapacity{ .available = 250, .total = 1000 };
        m_model = std::make_unique<AppModel>(m_machine->services);
        m_background = std::make_unique<Background>(m_machine->services);
        m_tray = std::make_unique<FakeTrayItem>();
        m_instance = std::make_unique<FakeAppInstance>();
        m_engine = std::make_unique<QQmlEngine>();
        m_windows = { .main = file(u"Main.qml"_s,
                          "import QtQuick\nWindow { required property string name; title: name\n"
                          "width: 300; height: 200; visible: true }\n"),
            .mainProperties = { { u"name"_s, u"main window"_s } },
            .panel = file(u"Panel.qml"_s,
                "import QtQuick\nWindow { required property string name; title: name\n"
                "flags: Qt.Tool | Qt.FramelessWindowHint; width: 100; height: 150 }\n"),
            .panelProperties = { { u"name"_s, u"panel"_s } } };
        make(m_windows);
    }

    void cleanup()
    {
        m_delegate.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_engine.reset();
        m_background.reset();
        m_model.reset();
        QCOMPARE(windowCount(), 0);
    }

    void backgroundIsAskedForByArgument_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<AppInstance::Start>("expected");
        QTest::newRow("none") << QStringList{ u"quillbrook"_s } << withWindow;
        QTest::newRow("login") << QStringList{ u"quillbrook"_s, u"--background"_s } << inBackground;
        QTest::newRow("another") << QStringList{ u"quillbrook"_s, u"--backgrounds"_s } << withWindow;
    }

    void backgroundIsAskedForByArgument()
    {
        QFETCH(QStringList, arguments);
        QFETCH(AppInstance::Start, expected);
        QCOMPARE(AppDelegate::startOf(arguments), expected);
    }

    void startOpensTheWindow()
    {
        QVERIFY(m_delegate->start(withWindow));
        QVERIFY(m_delegate->mainWindow());
        QVERIFY(m_delegate->mainWindow()->isVisible());
        QCOMPARE(m_delegate->mainWindow()->title(), u"main window"_s);
        QVERIFY(QTest::qWaitForWindowActive(m_delegate->mainWindow()));
        QCOMPARE(m_tray->appearances.size(), 1);
        QVERIFY(!m_delegate->panel());
    }

    void startInBackgroundOpensNone()
    {
        const auto questions = m_machine->desktop.notifier.questions;
        QVERIFY(m_delegate->start(inBackground));
        QCoreApplication::processEvents();
        QVERIFY(!m_delegate->mainWindow());
        QCOMPARE(windowCount(), 0);
        // What a window would have set going, but for the first scan.
        QCOMPARE(m_machine->desktop.http.requests.size(), 1);
        QTRY_VERIFY(m_model->reclaims().safetyNet());
        QCOMPARE(m_model->scans().phase().kind, Phase::Kind::idle);
        QVERIFY(m_model->findChild<QTimer *>(u"volumeClock"_s)->isActive());
        QVERIFY(m_machine->desktop.notifier.questions > questions);
        QCOMPARE(m_tray->appearances.last(),
            (TrayItem::Appearance{ .title = m_model->volume().menuBarTitle(), .usedShare = 0.75 }));
        QCOMPARE(m_model->volume().menuBarTitle(), u"250 B"_s);
        QVERIFY(!m_model->watch().lastWatch());
        m_model->watch().watcher().check(false);
        QTRY_VERIFY(m_model->watch().lastWatch());
    }

    void windowThatCanNotBeMadeIsTold()
    {
        auto windows = m_windows;
        windows.main = file(u"Broken.qml"_s, "import QtQuick\nWindow { width: }\n");
        make(windows);
        QTest::ignoreMessage(
            QtWarningMsg, QRegularExpression(u"^Quillbrook: could not make a window — .*Broken.qml"_s));
        QVERIFY(!m_delegate->start(withWindow));

        windows.main = file(u"Item.qml"_s, "import QtQuick\nItem {}\n");
        windows.mainProperties.clear();
        make(windows);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Quillbrook: could not make a window"_s));
        QVERIFY(!m_delegate->start(withWindow));
    }

    void closingKeepsTheProgram()
    {
        QVERIFY(m_delegate->start(withWindow));
        // A loop that the last window's end would end.
        QTimer::singleShot(0, this, [this] { m_delegate->mainWindow()->close(); });
        auto lasted = false;
        QTimer::singleShot(100, this, [&lasted] {
            lasted = true;
            QCoreApplication::exit(7);
        });
        QCOMPARE(QCoreApplication::exec(), 7);
        QVERIFY(lasted);
        QVERIFY(!m_delegate->mainWindow());
    }

    void closedWindowIsLetGoAndMadeAgain()
    {
        QVERIFY(m_delegate->start(withWindow));
        const QPointer<QQuickWindow> first = m_delegate->mainWindow();
        first->close();
        QTRY_VERIFY(!first);
        QCOMPARE(windowCount(), 0);
        QVERIFY(!m_delegate->mainWindow());

        Q_EMIT m_tray->openChosen();
        QVERIFY(m_delegate->mainWindow());
        QVERIFY(m_delegate->mainWindow()->isVisible());
        QCOMPARE(m_delegate->mainWindow()->title(), u"main window"_s);
        // Closed and opened in one go, as by a person in a hurry.
        m_delegate->mainWindow()->close();
        Q_EMIT m_tray->openChosen();
        QTRY_COMPARE(windowCount(), 1);
        QVERIFY(m_delegate->mainWindow()->isVisible());
    }

    void secondOpeningRaisesTheSame()
    {
        QVERIFY(m_delegate->start(withWindow));
        const auto *window = m_delegate->mainWindow();
        QWindow other;
        other.show();
        other.requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        Q_EMIT m_tray->openChosen();
        QTRY_VERIFY(window->isActive());
        QCOMPARE(m_delegate->mainWindow(), window);
        QCOMPARE(windowCount(), 2);
    }

    void minimisedWindowComesBack()
    {
        QVERIFY(m_delegate->start(withWindow));
        m_delegate->mainWindow()->showMinimized();
        QVERIFY(m_delegate->mainWindow());
        Q_EMIT m_tray->openChosen();
        QVERIFY(!m_delegate->mainWindow()->windowStates().testFlag(Qt::WindowMinimized));
        QTRY_VERIFY(m_delegate->mainWindow()->isActive());
    }

    void otherStartBringsTheWindow()
    {
        QVERIFY(m_delegate->start(inBackground));
        Q_EMIT m_instance->activated({});
        QVERIFY(m_delegate->mainWindow());
        QVERIFY(QTest::qWaitForWindowActive(m_delegate->mainWindow()));
    }

    void tokenGoesToTheWindowSystem()
    {
        QVERIFY(m_delegate->start(inBackground));
        Q_EMIT m_instance->activated("of a start");
        m_tray->token = "of the menu";
        Q_EMIT m_tray->openChosen();
        Q_EMIT m_tray->openChosen();
        m_tray->token = "of the item";
        press();
        QCOMPARE(m_instance->tokens, QList<QByteArray>({ "of a start", "of the menu", "of the item" }));
    }

    void newerVersionIsAskedForDaily_data()
    {
        QTest::addColumn<AppInstance::Start>("start");
        QTest::addColumn<bool>("hasNotice");
        QTest::newRow("in the background") << inBackground << false;
        QTest::newRow("in the background, with a notice") << inBackground << true;
        QTest::newRow("with a window") << withWindow << false;
    }

    void newerVersionIsAskedForDaily()
    {
        QFETCH(AppInstance::Start, start);
        QFETCH(bool, hasNotice);
        if (hasNotice)
            m_machine->desktop.http.answer
                = HttpAnswer{ .status = 200, .body = R"({"version":"9","url":"https:\/\/updates.test/"})" };
        QVERIFY(m_delegate->start(start));
        // As the window's content does it.
        if (start == withWindow)
            m_model->updates().checkForUpdate();
        QTRY_VERIFY(m_machine->defaults.values.contains(u"Quillbrook.updateCheckedAt"_s));
        QCOMPARE(m_model->updates().update().has_value(), hasNotice);
        auto *clock = m_delegate->findChild<QTimer *>(u"updateClock"_s);
        QVERIFY(clock->isActive());
        const auto begin = m_machine->clock.moment;
        for (int hour = 1; hour <= 50; ++hour) {
            m_machine->clock.moment = begin.addSecs(hour * 3600);
            Q_EMIT clock->timeout({});
            QCoreApplication::processEvents();
            QCOMPARE(m_machine->desktop.http.requests.size(), 1 + hour / 24);
        }
    }

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

    void endingWaitsForTheEntryThatGoes()
    {
        QVERIFY(m_delegate->start(inBackground));
        QSemaphore go;
        bool hasStopped = false;
        m_model->removals().enqueue({ .work = [&](const RemovalQueue::Watch &watch) {
            go.acquire();
            hasStopped = watch.stop.stop_requested();
        } });
        QTimer::singleShot(0, this, [&] {
            m_delegate->quitNow();
            go.release();
        });
        QTimer::singleShot(20'000, this, [] { QCoreApplication::exit(7); });
        QCOMPARE(QCoreApplication::exec(), 0);
        QVERIFY(hasStopped);
        QVERIFY(!m_model->removals().isBusy());
    }

    void endingDoesNotWaitForEverForACopy()
    {
        m_copyPatience = std::chrono::milliseconds(50);
        make(m_windows);
        QVERIFY(m_delegate->start(inBackground));
        QThreadPool copies;
        QSemaphore go;
        m_model->removals().enqueue(
            { .copying = &copies, .work = [&](const auto & /*watch*/) { go.acquire(); } });
        QTimer::singleShot(0, m_delegate.get(), &AppDelegate::quitNow);
        QTimer::singleShot(20'000, this, [] { QCoreApplication::exit(7); });
        QCOMPARE(QCoreApplication::exec(), 0);
        QVERIFY(m_model->removals().isBusy());
        go.release();
        QTRY_VERIFY(!m_model->removals().isBusy());
    }

    void quitAsksInTheWindowWhereThereIsSomethingToAsk()
    {
        m_windows.asksBeforeQuitting = [] { return true; };
        make(m_windows);
        QVERIFY(m_delegate->start(inBackground));
        m_delegate->quit();
        QVERIFY(m_delegate->mainWindow());
        QTimer::singleShot(0, m_delegate.get(), &AppDelegate::quitNow);
        QCOMPARE(QCoreApplication::exec(), 0);
    }

    void quitEndsTheLoopWhateverAWindowSays()
    {
        auto windows = m_windows;
        windows.main = file(u"Stubborn.qml"_s,
            "import QtQuick\nWindow { visible: true; onClosing: close => { close.accepted = false } }\n");
        windows.mainProperties.clear();
        make(windows);
        QVERIFY(m_delegate->start(withWindow));
        QTimer::singleShot(0, this, [this] { Q_EMIT m_tray->quitChosen(); });
        QTimer late;
        late.setSingleShot(true);
        connect(&late, &QTimer::timeout, this, [] { QCoreApplication::exit(7); });
        late.start(5000);
        QCOMPARE(QCoreApplication::exec(), 0);
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

    void windowsGoWithTheDelegate()
    {
        QVERIFY(m_delegate->start(withWindow));
        press();
        QCOMPARE(windowCount(), 2);
        m_delegate.reset();
        QCOMPARE(windowCount(), 0);
    }

private:
    static constexpr auto withWindow = AppInstance::Start::withWindow;
    static constexpr auto inBackground = AppInstance::Start::inBackground;

    [[nodiscard]] QUrl file(const QString &name, const QByteArray &text)
    {
        QFile file(m_folder->filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            return {};
        return QUrl::fromLocalFile(file.fileName());
    }

    void make(const AppDelegate::Windows &windows)
    {
        m_delegate.reset();
        m_delegate = std::make_unique<AppDelegate>(AppDelegate::Services{ .model = *m_model,
                                                       .background = *m_background,
                                                       .tray = *m_tray,
                                                       .instance = *m_instance,
                                                       .engine = *m_engine,
                                                       .copyPatience = m_copyPatience },
            windows);
    }

    void press(const std::optional<QPoint> &place = {}) { Q_EMIT m_tray->activated(place); }
    [[nodiscard]] qsizetype windowCount() const { return QGuiApplication::allWindows().size(); }

    std::chrono::milliseconds m_copyPatience = std::chrono::minutes(1);
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FakeServices> m_machine;
    std::unique_ptr<AppModel> m_model;
    std::unique_ptr<Background> m_background;
    std::unique_ptr<FakeTrayItem> m_tray;
    std::unique_ptr<FakeAppInstance> m_instance;
    std::unique_ptr<QQmlEngine> m_engine;
    AppDelegate::Windows m_windows;
    std::unique_ptr<AppDelegate> m_delegate;
};

QUILLBROOK_SUITE(TestAppDelegate, QGuiApplication)
#include "tst_AppDelegate.moc"
