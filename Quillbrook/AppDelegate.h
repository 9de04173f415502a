#pragma once

// Holds the windows together: makes them when they are wanted and lets go of them when they are closed, while
// the program goes on in the tray until it is told to quit. What the screens show lives on without them. Main
// thread only.

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QQuickWindow>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

#include <optional>

class QPoint;
class QQmlEngine;

namespace Quillbrook {

class AppInstance;
class AppModel;
class Background;
class TrayItem;

class AppDelegate : public QObject
{
    Q_OBJECT

public:
    struct Parts
    {
        AppModel &model;
        Background &background;
        TrayItem &tray;
        AppInstance &instance;
        QQmlEngine &engine;
    };

    /// The windows' files, and the properties that each is made with.
    struct Windows
    {
        QUrl main{};
        QVariantMap mainProperties{};
        QUrl panel{};
        QVariantMap panelProperties{};
    };

    /// The parts outlive it. From here on the program does not end with its last window.
    AppDelegate(const Parts &parts, const Windows &windows, QObject *parent = nullptr);
    ~AppDelegate() override;

    /// The start at login asks for no window.
    [[nodiscard]] static bool startsInBackground(const QStringList &arguments);

    /// Shows the item in the tray, and the main window unless it starts in the background; the watcher is
    /// then set going here, since no window does it. False when the window could not be made.
    [[nodiscard]] bool start(bool inBackground);

    /// Brings the main window to the front, and makes it when there is none. The token lets it come there,
    /// where the desktop asks for one. False when it could not be made.
    bool openWindow(const QByteArray &token = {});
    /// Ends the event loop.
    void quit();

    /// Nothing while it is closed.
    [[nodiscard]] QQuickWindow *mainWindow() const { return m_main; }
    [[nodiscard]] QQuickWindow *panel() const { return m_panel; }

private:
    [[nodiscard]] QQuickWindow *make(const QUrl &file, const QVariantMap &properties);
    void togglePanel(const std::optional<QPoint> &place);
    void showPanel(const std::optional<QPoint> &place);
    void hidePanel();
    void release(QPointer<QQuickWindow> &window);
    void showTray();

    Parts m_parts;
    Windows m_windows;
    QPointer<QQuickWindow> m_main;
    QPointer<QQuickWindow> m_panel;
    /// Since the panel went because something else was pressed.
    QElapsedTimer m_sincePanelLeft;
};

} // namespace Quillbrook
