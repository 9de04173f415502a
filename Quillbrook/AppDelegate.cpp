#include "AppDelegate.h"

#include "Core/AppModel.h"
#include "Core/Background.h"
#include "PanelPlacement.h"
#include "Platform/AppInstance.h"
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

/// The token reaches the window system by the environment, and must not reach programs started later.
void bringToFront(QWindow &window, const QByteArray &token)
{
    if (!token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", token);
    if (window.windowStates().testFlag(Qt::WindowMinimized))
        window.setWindowStates(window.windowStates() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.requestActivate();
    if (!token.isEmpty())
        QMetaObject::invokeMethod(
            qApp, [] { qunsetenv("XDG_ACTIVATION_TOKEN"); }, Qt::QueuedConnection);
}

} // namespace

AppDelegate::AppDelegate(const Parts &parts, const Windows &windows, QObject *parent)
    : QObject(parent)
    , m_parts(parts)
    , m_windows(windows)
{
    QGuiApplication::setQuitOnLastWindowClosed(false);
    connect(&parts.tray, &TrayItem::activated, this, &AppDelegate::togglePanel);
    connect(
        &parts.tray, &TrayItem::openChosen, this, [this] { openWindow(m_parts.tray.takeActivationToken()); });
    connect(&parts.tray, &TrayItem::checkChosen, this, [this] {
        // On the main thread, as the panel's button does it.
        m_parts.model.watcher().check(false);
    });
    connect(&parts.tray, &TrayItem::quitChosen, this, &AppDelegate::quit);
    connect(&parts.instance, &AppInstance::activated, this, &AppDelegate::openWindow);
    connect(&parts.model, &AppModel::menuBarTitleChanged, this, &AppDelegate::showTray);
    connect(&parts.model, &AppModel::volumeChanged, this, &AppDelegate::showTray);
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

bool AppDelegate::startsInBackground(const QStringList &arguments)
{
    return arguments.contains(u"--background"_s);
}

bool AppDelegate::start(bool inBackground)
{
    if (inBackground) {
        m_parts.model.startRuleClock();
        m_parts.model.configureWatcher(m_parts.background);
        m_parts.background.refresh();
        m_parts.model.refreshVolume();
    }
    showTray();
    return inBackground || openWindow();
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
    bringToFront(*m_main, token);
    return true;
}

void AppDelegate::quit()
{
    // Not by asking the windows: none of them may keep the program.
    QCoreApplication::exit(0);
}

QQuickWindow *AppDelegate::make(const QUrl &file, const QVariantMap &properties)
{
    QQmlComponent component(&m_parts.engine, file);
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
    if (!canPlaceWindows())
        m_panel->setFlags(Qt::Window);
    else if (const auto *screen = screenFor(place))
        m_panel->setPosition(PanelPlacement{ .panel = m_panel->size(),
            .place = place,
            .screen = screen->geometry(),
            .available = screen->availableGeometry() }
                                 .position());
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
    bringToFront(*m_panel, m_parts.tray.takeActivationToken());
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
        gone, &QObject::destroyed, &m_parts.engine, [&engine = m_parts.engine] { engine.collectGarbage(); },
        Qt::QueuedConnection);
}

void AppDelegate::showTray()
{
    const auto &model = m_parts.model;
    const auto total = static_cast<double>(model.liveTotal());
    const auto used = total > 0 ? (total - static_cast<double>(model.liveFree())) / total : 0;
    m_parts.tray.show({ .title = model.menuBarTitle(), .usedShare = used, .isDanger = used > dangerShare });
}

} // namespace Quillbrook
