#pragma once

// What the small window that drops from the tray shows and does: the disk at a glance, the watcher's switches
// and the ways back to the main window. Every switch shows what is true, whatever was asked for. Main thread
// only; what it is made from outlives it.

#include <QObject>
#include <QString>
#include <QTimer>
#include <QtQmlIntegration>

#include <optional>

namespace Quillbrook {

class AppModel;
class Background;
class FolderAccess;

class MenuBarPanelState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// The figure that the tray shows too.
    Q_PROPERTY(QString freeText READ freeText NOTIFY changed FINAL)
    /// What can be reclaimed, in words.
    Q_PROPERTY(QString summary READ summary NOTIFY changed FINAL)
    /// The summary names something to reclaim.
    Q_PROPERTY(bool isReclaimable READ isReclaimable NOTIFY changed FINAL)

    Q_PROPERTY(bool watching READ watching NOTIFY changed FINAL)
    /// What watching would mean or, while on, when the watcher last looked.
    Q_PROPERTY(QString watchingLine READ watchingLine NOTIFY changed FINAL)
    Q_PROPERTY(bool notificationsWanted READ notificationsWanted NOTIFY changed FINAL)
    Q_PROPERTY(QString notificationsLine READ notificationsLine NOTIFY changed FINAL)
    /// The desktop keeps notifications back, and its settings can change that.
    Q_PROPERTY(bool offersSettings READ offersSettings NOTIFY changed FINAL)
    /// Stands in place of that button where the desktop has no page that is known; empty otherwise.
    Q_PROPERTY(QString settingsHint READ settingsHint NOTIFY changed FINAL)
    Q_PROPERTY(bool launchesAtLogin READ launchesAtLogin NOTIFY changed FINAL)
    Q_PROPERTY(QString loginLine READ loginLine NOTIFY changed FINAL)
    /// What quitting means now.
    Q_PROPERTY(QString quitHelp READ quitHelp NOTIFY changed FINAL)

public:
    MenuBarPanelState(
        AppModel &model, Background &background, FolderAccess &access, QObject *parent = nullptr);

    /// The words for so many bytes; absent before any measurement.
    [[nodiscard]] static QString summaryOf(const std::optional<qint64> &reclaimable);

    /// The panel has come up: brings everything up to date, and starts the first scan where none has been.
    Q_INVOKABLE void appear();
    /// It has gone: nothing has to be kept up to date by the minute.
    Q_INVOKABLE void disappear();

    Q_INVOKABLE void setWatching(bool watching);
    Q_INVOKABLE void setNotificationsWanted(bool wanted);
    /// May take until the person has answered the desktop; until then the switch stays.
    Q_INVOKABLE void setLaunchAtLogin(bool launches);
    /// Opens the desktop's page of notification settings.
    Q_INVOKABLE void openSettings();

    /// One check by the watcher, which the panel waits for; kept on the main thread on purpose.
    Q_INVOKABLE void checkNow();
    Q_INVOKABLE void open();
    Q_INVOKABLE void quit();

    /// Bytes by the watcher's latest check, else by the report; absent before either.
    [[nodiscard]] std::optional<qint64> reclaimableNow() const;

    [[nodiscard]] QString freeText() const;
    [[nodiscard]] QString summary() const;
    [[nodiscard]] bool isReclaimable() const;
    [[nodiscard]] bool watching() const;
    [[nodiscard]] QString watchingLine() const;
    [[nodiscard]] bool notificationsWanted() const;
    [[nodiscard]] QString notificationsLine() const;
    [[nodiscard]] bool offersSettings() const;
    [[nodiscard]] QString settingsHint() const;
    [[nodiscard]] bool launchesAtLogin() const;
    [[nodiscard]] QString loginLine() const;
    [[nodiscard]] QString quitHelp() const;

Q_SIGNALS:
    /// Also when all is as it was, so that a switch that was pressed in vain goes back.
    void changed();
    /// The main window is wanted.
    void openRequested();
    /// The program is to end.
    void quitRequested();

private:
    [[nodiscard]] bool isDenied() const;
    [[nodiscard]] bool isMeasuring() const;

    AppModel &m_model;
    Background &m_background;
    FolderAccess &m_access;
    /// Ages grow while the panel is looked at.
    QTimer m_ageClock;
};

} // namespace Quillbrook
