#pragma once

// Holds the windows together: makes them when they are wanted and lets go of them when they are closed, while
// the program goes on in the tray until it is told to quit. What the screens show lives on without them. It
// also does what has to be done without any window: what a start in the background sets going, and the daily
// question for a newer version. Main thread only.

#include "Platform/AppInstance.h"

#include <QByteArray>
#include <QDateTime>
#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QQuickWindow>
#include <QStringList>
#include <QTimer>
#include <QUrl>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <optional>

class QPoint;
class QQmlEngine;

namespace Quillbrook {

class AppModel;
class Background;
class TrayItem;

class AppDelegate : public QObject
{
    Q_OBJECT

public:
    /// What it works on; all of it outlives this object.
    struct Services
    {
        AppModel &model;
        Background &background;
        TrayItem &tray;
        AppInstance &instance;
        QQmlEngine &engine;
        /// So long a copy that is being ended may take to take away what it made: its drive may not answer
        /// any more.
        std::chrono::milliseconds copyPatience = std::chrono::minutes(1);
    };

    /// The windows' files, and the properties that each is made with.
    struct Windows
    {
        QUrl main{};
        QVariantMap mainProperties{};
        QUrl panel{};
        QVariantMap panelProperties{};
        /// Asks the person in the main window whether the program may end; false where there is nothing to
        /// ask, and when it is empty.
        std::function<bool()> asksBeforeQuitting{};
    };

    /// From here on the program does not end with its last window.
    AppDelegate(const Services &services, const Windows &windows, QObject *parent = nullptr);
    ~AppDelegate() override;

    /// The start at login asks for no window.
    [[nodiscard]] static AppInstance::Start startOf(const QStringList &arguments);

    /// Shows the item in the tray, and the main window unless it starts in the background. The window's
    /// content starts the model when it appears; in the background this does. From now on a newer version is
    /// asked for daily. False when the window could not be made.
    [[nodiscard]] bool start(AppInstance::Start start);

    /// Brings the main window to the front, and makes it when there is none. The token lets it come there,
    /// where the desktop asks for one. False when it could not be made.
    bool openWindow(const QByteArray &token = {});
    /// Ends the program, or opens the window with the question that has to be answered before.
    void quit();
    /// Ends the event loop unasked, once what is being removed is done with its present entry, or what was
    /// copied to another drive is taken away.
    void quitNow();

    /// Nothing while it is closed.
    [[nodiscard]] QQuickWindow *mainWindow() const { return m_main; }
    [[nodiscard]] QQuickWindow *panel() const { return m_panel; }

private:
    [[nodiscard]] QQuickWindow *make(const QUrl &file, const QVariantMap &properties);
    void togglePanel(const std::optional<QPoint> &place);
    void showPanel(const std::optional<QPoint> &place);
    void placePanel();
    void hidePanel();
    void release(QPointer<QQuickWindow> &window);
    void showTray();
    void askForUpdate();
    void checkDisk();

    Services m_services;
    Windows m_windows;
    QPointer<QQuickWindow> m_main;
    QPointer<QQuickWindow> m_panel;
    /// Where the item was pressed that the panel belongs to.
    std::optional<QPoint> m_panelPlace;
    /// Since the panel went because something else was pressed.
    QElapsedTimer m_sincePanelLeft;
    QTimer m_updateClock;
    QDateTime m_lastAskedForUpdate;
    bool m_isChecking = false;
};

} // namespace Quillbrook
