// The windows and the tray's item together, over a made-up machine, with small windows of the test's own.

#include "AppDelegate.h"
#include "Core/AppModel.h"
#include "Core/Background.h"
#include "PanelPlacement.h"
#include "Support/FakeAppInstance.h"
#include "Support/FakeServices.h"
#include "Support/FakeTrayItem.h"

#include <QGuiApplication>
#include <QQmlEngine>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class AppDelegateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void backgroundIsAskedForByArgument_data();
    void backgroundIsAskedForByArgument();
    void startOpensTheWindow();
    void startInBackgroundOpensNone();
    void windowThatCanNotBeMadeIsTold();
    void closingKeepsTheProgram();
    void closedWindowIsLetGoAndMadeAgain();
    void secondOpeningRaisesTheSame();
    void minimisedWindowComesBack();
    void otherStartBringsTheWindow();
    void tokenIsThereForTheWindowOnly();
    void pressTogglesThePanel();
    void panelStandsBesideTheItem_data();
    void panelStandsBesideTheItem();
    void panelGoesWhenItLosesTheKeyboard();
    void pressThatTookTheKeyboardClosesThePanel();
    void panelTakesTheTokenOfThePress();
    void openingTheWindowHidesThePanel();
    void panelThatCanNotBeMadeIsTold();
    void checkingLooksAtOnce();
    void quitEndsTheLoopWhateverAWindowSays();
    void trayShowsTheVolume_data();
    void trayShowsTheVolume();
    void trayFollowsTheModel();
    void windowsGoWithTheDelegate();

private:
    [[nodiscard]] QUrl file(const QString &name, const QByteArray &text);
    void make(const AppDelegate::Windows &windows);
    void press(const std::optional<QPoint> &place = {}) { Q_EMIT m_tray->activated(place); }
    [[nodiscard]] qsizetype windowCount() const { return QGuiApplication::allWindows().size(); }

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

void AppDelegateTest::init()
{
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

void AppDelegateTest::cleanup()
{
    m_delegate.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_engine.reset();
    m_background.reset();
    m_model.reset();
    QCOMPARE(windowCount(), 0);
}

QUrl AppDelegateTest::file(const QString &name, const QByteArray &text)
{
    QFile file(m_folder->filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        return {};
    return QUrl::fromLocalFile(file.fileName());
}

void AppDelegateTest::make(const AppDelegate::Windows &windows)
{
    m_delegate.reset();
    m_delegate = std::make_unique<AppDelegate>(AppDelegate::Parts{ .model = *m_model,
                                                   .background = *m_background,
                                                   .tray = *m_tray,
                                                   .instance = *m_instance,
                                                   .engine = *m_engine },
        windows);
}

void AppDelegateTest::backgroundIsAskedForByArgument_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("expected");
    QTest::newRow("none") << QStringList{ u"quillbrook"_s } << false;
    QTest::newRow("login") << QStringList{ u"quillbrook"_s, u"--background"_s } << true;
    QTest::newRow("another") << QStringList{ u"quillbrook"_s, u"--backgrounds"_s } << false;
}

void AppDelegateTest::backgroundIsAskedForByArgument()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, expected);
    QCOMPARE(AppDelegate::startsInBackground(arguments), expected);
}

void AppDelegateTest::startOpensTheWindow()
{
    QVERIFY(m_delegate->start(false));
    QVERIFY(m_delegate->mainWindow());
    QVERIFY(m_delegate->mainWindow()->isVisible());
    QCOMPARE(m_delegate->mainWindow()->title(), u"main window"_s);
    QVERIFY(QTest::qWaitForWindowActive(m_delegate->mainWindow()));
    QCOMPARE(m_tray->appearances.size(), 1);
    QVERIFY(!m_delegate->panel());
}

void AppDelegateTest::startInBackgroundOpensNone()
{
    const auto questions = m_machine->desktop.notifier.questions;
    QVERIFY(m_delegate->start(true));
    QCoreApplication::processEvents();
    QVERIFY(!m_delegate->mainWindow());
    QCOMPARE(windowCount(), 0);
    // What a window would have set going.
    QVERIFY(m_model->findChild<QTimer *>(u"volumeClock"_s)->isActive());
    QVERIFY(m_machine->desktop.notifier.questions > questions);
    QCOMPARE(m_tray->appearances.last(),
        (TrayItem::Appearance{ .title = m_model->menuBarTitle(), .usedShare = 0.75 }));
    QCOMPARE(m_model->menuBarTitle(), u"250 B"_s);
    QVERIFY(!m_model->lastWatch());
    m_model->watcher().check(false);
    QTRY_VERIFY(m_model->lastWatch());
}

void AppDelegateTest::windowThatCanNotBeMadeIsTold()
{
    auto windows = m_windows;
    windows.main = file(u"Broken.qml"_s, "import QtQuick\nWindow { width: }\n");
    make(windows);
    QTest::ignoreMessage(
        QtWarningMsg, QRegularExpression(u"^Quillbrook: could not make a window — .*Broken.qml"_s));
    QVERIFY(!m_delegate->start(false));

    windows.main = file(u"Item.qml"_s, "import QtQuick\nItem {}\n");
    windows.mainProperties.clear();
    make(windows);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Quillbrook: could not make a window"_s));
    QVERIFY(!m_delegate->start(false));
}

void AppDelegateTest::closingKeepsTheProgram()
{
    QVERIFY(m_delegate->start(false));
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

void AppDelegateTest::closedWindowIsLetGoAndMadeAgain()
{
    QVERIFY(m_delegate->start(false));
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

void AppDelegateTest::secondOpeningRaisesTheSame()
{
    QVERIFY(m_delegate->start(false));
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

void AppDelegateTest::minimisedWindowComesBack()
{
    QVERIFY(m_delegate->start(false));
    m_delegate->mainWindow()->showMinimized();
    QVERIFY(m_delegate->mainWindow());
    Q_EMIT m_tray->openChosen();
    QVERIFY(!m_delegate->mainWindow()->windowStates().testFlag(Qt::WindowMinimized));
    QTRY_VERIFY(m_delegate->mainWindow()->isActive());
}

void AppDelegateTest::otherStartBringsTheWindow()
{
    QVERIFY(m_delegate->start(true));
    Q_EMIT m_instance->activated({});
    QVERIFY(m_delegate->mainWindow());
    QVERIFY(QTest::qWaitForWindowActive(m_delegate->mainWindow()));
}

void AppDelegateTest::tokenIsThereForTheWindowOnly()
{
    QVERIFY(m_delegate->start(true));
    Q_EMIT m_instance->activated("abc");
    QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), QByteArray("abc"));
    QTRY_VERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
    m_tray->token = "def";
    Q_EMIT m_tray->openChosen();
    QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), QByteArray("def"));
    QTRY_VERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
    Q_EMIT m_tray->openChosen();
    QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

void AppDelegateTest::pressTogglesThePanel()
{
    QVERIFY(m_delegate->start(true));
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

void AppDelegateTest::panelStandsBesideTheItem_data()
{
    QTest::addColumn<bool>("isTold");
    QTest::newRow("place told") << true;
    QTest::newRow("no place") << false;
}

void AppDelegateTest::panelStandsBesideTheItem()
{
    QFETCH(bool, isTold);
    QVERIFY(m_delegate->start(true));
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

void AppDelegateTest::panelGoesWhenItLosesTheKeyboard()
{
    QVERIFY(m_delegate->start(true));
    press();
    QVERIFY(QTest::qWaitForWindowActive(m_delegate->panel()));
    QWindow other;
    other.show();
    other.requestActivate();
    QTRY_VERIFY(!m_delegate->panel());
    QTRY_COMPARE(windowCount(), 1);
}

void AppDelegateTest::pressThatTookTheKeyboardClosesThePanel()
{
    QVERIFY(m_delegate->start(true));
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

void AppDelegateTest::panelTakesTheTokenOfThePress()
{
    QVERIFY(m_delegate->start(true));
    m_tray->token = "abc";
    press();
    QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), QByteArray("abc"));
    QVERIFY(m_tray->token.isEmpty());
    QTRY_VERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

void AppDelegateTest::openingTheWindowHidesThePanel()
{
    QVERIFY(m_delegate->start(true));
    press();
    QVERIFY(QTest::qWaitForWindowActive(m_delegate->panel()));
    QVERIFY(m_delegate->openWindow());
    QVERIFY(!m_delegate->panel());
    QVERIFY(QTest::qWaitForWindowActive(m_delegate->mainWindow()));
    // The panel went with its work done, not by a press elsewhere.
    press();
    QVERIFY(m_delegate->panel());
}

void AppDelegateTest::panelThatCanNotBeMadeIsTold()
{
    auto windows = m_windows;
    windows.panel = QUrl::fromLocalFile(m_folder->filePath(u"not there.qml"_s));
    make(windows);
    QVERIFY(m_delegate->start(true));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Quillbrook: could not make a window"_s));
    press();
    QVERIFY(!m_delegate->panel());
}

void AppDelegateTest::checkingLooksAtOnce()
{
    QVERIFY(m_delegate->start(true));
    QVERIFY(!m_model->watcher().lastObservation());
    Q_EMIT m_tray->checkChosen();
    QVERIFY(m_model->watcher().lastObservation());
}

void AppDelegateTest::quitEndsTheLoopWhateverAWindowSays()
{
    auto windows = m_windows;
    windows.main = file(u"Stubborn.qml"_s,
        "import QtQuick\nWindow { visible: true; onClosing: close => { close.accepted = false } }\n");
    windows.mainProperties.clear();
    make(windows);
    QVERIFY(m_delegate->start(false));
    QTimer::singleShot(0, this, [this] { Q_EMIT m_tray->quitChosen(); });
    QTimer late;
    late.setSingleShot(true);
    connect(&late, &QTimer::timeout, this, [] { QCoreApplication::exit(7); });
    late.start(5000);
    QCOMPARE(QCoreApplication::exec(), 0);
}

void AppDelegateTest::trayShowsTheVolume_data()
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

void AppDelegateTest::trayShowsTheVolume()
{
    QFETCH(qint64, free);
    QFETCH(qint64, total);
    QFETCH(double, usedShare);
    QFETCH(bool, isDanger);
    m_machine->volumes.answer = VolumeCapacity{ .available = free, .total = total };
    QVERIFY(m_delegate->start(true));
    QCOMPARE(m_tray->appearances.last().title, m_model->menuBarTitle());
    QCOMPARE(m_tray->appearances.last().usedShare, usedShare);
    QCOMPARE(m_tray->appearances.last().isDanger, isDanger);
}

void AppDelegateTest::trayFollowsTheModel()
{
    QVERIFY(m_delegate->start(true));
    m_machine->volumes.answer = VolumeCapacity{ .available = 20, .total = 1000 };
    m_model->refreshVolume();
    QCOMPARE(m_tray->appearances.last(),
        (TrayItem::Appearance{ .title = u"20 B"_s, .usedShare = 0.98, .isDanger = true }));
    const auto count = m_tray->appearances.size();
    m_model->refreshVolume();
    QCOMPARE(m_tray->appearances.size(), count);
}

void AppDelegateTest::windowsGoWithTheDelegate()
{
    QVERIFY(m_delegate->start(false));
    press();
    QCOMPARE(windowCount(), 2);
    m_delegate.reset();
    QCOMPARE(windowCount(), 0);
}

QTEST_MAIN(AppDelegateTest)
#include "tst_AppDelegate.moc"
