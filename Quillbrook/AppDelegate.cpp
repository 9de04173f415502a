#include "AppDelegate.h"

#include "Core/AppModel.h"
#include "Core/Background.h"
#include "PanelPlacement.h"
#include "Platform/AppServices.h"
#include "Platform/Clock.h"
#include "Platform/TrayItem.h"

#include <QDebug>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QScreen>

#include <chrono>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

constexpr double dangerShare = 0.9;

/// How often it is seen whether a day has gone by: not once a day, which a machine that sleeps would stretch.
constexpr auto updateClockInterval = 1h;
constexpr qint64 secondsOfADay = 86'400;

/// A press on the tray's item takes the keyboard from the panel before it is told: within this time it means
/// to close the panel, not to open it again.
constexpr auto samePress = 300ms;

/// A window on Wayland can't say where it goes. There the panel is a window as others are.
bool canPlaceWindows()
{
    return !QGuiApplication::platformName().startsWith(u"wayland"_s);
}

const QScreen *screenFor(const std::optional<QPoint> &place)
{
    const auto *screen = place ? QGuiApplication::screenAt(*place) : nullptr;
    return screen ? screen : QGuiApplication::primaryScreen();
}

void bringToFront(QWindow &window)
{
    if (window.windowStates().testFlag(Qt::WindowMinimized))
        window.setWindowStates(window.windowStates() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.requestActivate();
}

} // namespace

AppDelegate::AppDelegate(const Services &services, const Windows &windows, QObject *parent)
    : QObject(parent)
    , m_services(services)
    , m_windows(windows)
{
    QGuiApplication::setQuitOnLastWindowClosed(false);
    connect(&services.tray, &TrayItem::activated, this, &AppDelegate::togglePanel);
    connect(&services.tray, &TrayItem::openChosen, this,
        [this] { openWindow(m_services.tray.takeActivationToken()); });
    connect(&services.tray, &TrayItem::checkChosen, this, &AppDelegate::checkDisk);
    connect(&services.tray, &TrayItem::quitChosen, this, &AppDelegate::quit);
    connect(&services.instance, &AppInstance::activated, this, &AppDelegate::openWindow);
    connect(&services.model.volume(), &VolumeFigures::menuBarTitleChanged, this, &AppDelegate::showTray);
    connect(&services.model.volume(), &VolumeFigures::volumeChanged, this, &AppDelegate::showTray);
    m_updateClock.setObjectName(u"updateClock"_s);
    m_updateClock.setParent(this);
    m_updateClock.setInterval(updateClockInterval);
    connect(&m_updateClock, &QTimer::timeout, this, &AppDelegate::askForUpdate);
}

AppDelegate::~AppDelegate()
{
    for (auto *window : { m_panel.data(), m_main.data() }) {
        if (!window)
            continue;
        window->disconnect(this);
        delete window;
    }
}

AppInstance::Start AppDelegate::startOf(const QStringList &arguments)
{
    using enum AppInstance::Start;
    return arguments.contains(u"--background"_s) ? inBackground : withWindow;
}

bool AppDelegate::start(AppInstance::Start start)
{
    m_lastAskedForUpdate = m_services.model.services().kit.clock.now();
    m_updateClock.start();
    const bool isInBackground = start == AppInstance::Start::inBackground;
    if (isInBackground)
        m_services.model.start(m_services.background);
    showTray();
    return isInBackground || openWindow();
}

// The model itself asks once a day, but for a notice that it shows already: that it asks about every time.
void AppDelegate::askForUpdate()
{
    auto &model = m_services.model;
    const auto now = model.services().kit.clock.now();
    if (model.updates().update() && m_lastAskedForUpdate.secsTo(now) < secondsOfADay)
        return;
    m_lastAskedForUpdate = now;
    model.updates().checkForUpdate();
}

void AppDelegate::checkDisk()
{
    if (m_isChecking)
        return;
    m_isChecking = true;
    // On the main thread, as the panel's button does it.
    m_services.model.watch().watcher().check(false);
    // The presses that came meanwhile are delivered before this, and asked for the check that has just run.
    QMetaObject::invokeMethod(
        this, [this] { m_isChecking = false; }, Qt::QueuedConnection);
}

bool AppDelegate::openWindow(const QByteArray &token)
{
    hidePanel();
    if (!m_main) {
        m_main = make(m_windows.main, m_windows.mainProperties);
        if (!m_main)
            return false;
        connect(m_main, &QWindow::visibleChanged, this, [this](bool isVisible) {
            if (!isVisible)
                release(m_main);
        });
    }
    m_services.instance.useActivationToken(token);
    bringToFront(*m_main);
    return true;
}

void AppDelegate::quit()
{
    if (m_windows.asksBeforeQuitting && m_windows.asksBeforeQuitting() && openWindow())
        return;
    quitNow();
}

void AppDelegate::quitNow()
{
    auto &removals = m_services.model.removals();
    removals.close();
    // Not by asking the windows: none of them may keep the program.
    if (!removals.isBusy())
        return QCoreApplication::exit(0);
    const auto exit = [] { QCoreApplication::exit(0); };
    connect(&removals, &RemovalQueue::busyChanged, this, exit);
    if (removals.isCopying())
        QTimer::singleShot(m_services.copyPatience, this, exit);
}

QQuickWindow *AppDelegate::make(const QUrl &file, const QVariantMap &properties)
{
    QQmlComponent component(&m_services.engine, file);
    auto *made = component.isReady() ? component.createWithInitialProperties(properties) : nullptr;
    auto *window = qobject_cast<QQuickWindow *>(made);
    if (!window) {
        qWarning("Quillbrook: could not make a window — %ls", qUtf16Printable(component.errorString()));
        delete made;
    }
    return window;
}

void AppDelegate::togglePanel(const std::optional<QPoint> &place)
{
    const auto justLeft = m_sincePanelLeft.isValid() && !m_sincePanelLeft.hasExpired(samePress.count());
    m_sincePanelLeft.invalidate();
    if (m_panel)
        hidePanel();
    else if (!justLeft)
        showPanel(place);
}

void AppDelegate::showPanel(const std::optional<QPoint> &place)
{
    m_panel = make(m_windows.panel, m_windows.panelProperties);
    if (!m_panel)
        return;
    m_panelPlace = place;
    if (!canPlaceWindows())
        m_panel->setFlags(Qt::Window);
    placePanel();
    connect(m_panel, &QWindow::heightChanged, this, &AppDelegate::placePanel);
    connect(m_panel, &QWindow::visibleChanged, this, [this](bool isVisible) {
        if (!isVisible)
            release(m_panel);
    });
    connect(m_panel, &QWindow::activeChanged, this, [this] {
        if (!m_panel || m_panel->isActive())
            return;
        m_sincePanelLeft.start();
        hidePanel();
    });
    m_services.instance.useActivationToken(m_services.tray.takeActivationToken());
    bringToFront(*m_panel);
}

// It grows and shrinks with what it shows, and stays at its item.
void AppDelegate::placePanel()
{
    const auto *screen = screenFor(m_panelPlace);
    if (!m_panel || !screen || !canPlaceWindows())
        return;
    m_panel->setPosition(PanelPlacement{ .panel = m_panel->size(),
        .place = m_panelPlace,
        .screen = screen->geometry(),
        .available = screen->availableGeometry() }
                             .position());
}

void AppDelegate::hidePanel()
{
    if (m_panel)
        m_panel->close();
}

void AppDelegate::release(QPointer<QQuickWindow> &window)
{
    const auto gone = std::exchange(window, nullptr);
    gone->disconnect(this);
    // Later: what closed it may be a handler of its own.
    gone->deleteLater();
    connect(
        gone, &QObject::destroyed, &m_services.engine,
        [&engine = m_services.engine] { engine.collectGarbage(); }, Qt::QueuedConnection);
}

void AppDelegate::showTray()
{
    const auto &model = m_services.model;
    const auto total = static_cast<double>(model.volume().liveTotal());
    const auto used = total > 0 ? (total - static_cast<double>(model.volume().liveFree())) / total : 0;
    m_services.tray.show(
        { .title = model.volume().menuBarTitle(), .usedShare = used, .isDanger = used > dangerShare });
}

} // namespace Quillbrook
