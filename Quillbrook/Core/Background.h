#pragma once

// What holds while no window is open: whether the program starts with the session, and whether it may and
// shall tell the person something. Main thread only; the services outlive it.

#include "Platform/Notifier.h"

#include <QObject>

namespace Quillbrook {

class LoginItem;
class UserDefaults;
struct AppServices;

class Background : public QObject
{
    Q_OBJECT

public:
    explicit Background(const AppServices &services, QObject *parent = nullptr);

    /// Reads both again.
    void refresh();
    /// Asks for it, and then shows what is true and not what was asked for.
    void setLaunchAtLogin(bool launches);
    void setNotificationsWanted(bool wanted);

    [[nodiscard]] bool launchesAtLogin() const { return m_launchesAtLogin; }
    [[nodiscard]] NotificationState notificationState() const { return m_notificationState; }
    [[nodiscard]] bool notificationsWanted() const { return m_notificationsWanted; }

Q_SIGNALS:
    /// Also when it was asked to change and did not.
    void launchesAtLoginChanged();
    void notificationStateChanged();
    void notificationsWantedChanged();

private:
    Notifier &m_notifier;
    LoginItem &m_loginItem;
    UserDefaults &m_defaults;
    bool m_launchesAtLogin = false;
    NotificationState m_notificationState = NotificationState::notAsked;
    bool m_notificationsWanted = true;
    /// Counts the questions for the state of notifications.
    int m_lastQuestion = 0;
};

} // namespace Quillbrook
