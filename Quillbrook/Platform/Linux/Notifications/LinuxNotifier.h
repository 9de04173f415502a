#pragma once

// Notifications by the desktop's own D-Bus service; in a sandbox by the desktop portal. Neither asks the
// person for leave, so "asked" is what Quillbrook itself remembers: that it was switched on, or has posted
// before.

#include "Platform/Linux/Session/DesktopSession.h"
#include "Platform/Notifier.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QThreadPool>

#include <chrono>
#include <functional>

namespace Quillbrook {

class FileReading;
class ProcessRunner;
class UserDefaults;

class LinuxNotifier final : public QObject, public Notifier
{
    Q_OBJECT

public:
    /// How long each service has to answer.
    static constexpr std::chrono::milliseconds patience{ 5000 };

    struct Services
    {
        /// They outlive it.
        const ProcessRunner &processes;
        const FileReading &reading;
        UserDefaults &defaults;
        DesktopSession session{};
        /// Starts a program that goes on by itself; QProcess where it is empty.
        std::function<void(const QString &program, const QStringList &arguments)> start{};
    };

    explicit LinuxNotifier(const Services &services,
        const QDBusConnection &sessionBus = QDBusConnection::sessionBus(),
        std::chrono::milliseconds timeout = patience);

    void post(const QString &title, const QString &body) override;
    [[nodiscard]] QFuture<void> requestAuthorisation() override;
    [[nodiscard]] QFuture<NotificationState> state() override;
    [[nodiscard]] bool hasSettings() const override;
    void openSettings() override;

private:
    using Answer = std::function<void(NotificationState)>;

    [[nodiscard]] bool isSandboxed() const { return !m_services.session.sandbox.isNone(); }
    void postToPortal(const QString &title, const QString &body);
    void postToServer(const QString &title, const QString &body);
    /// `take` gets the reply or the error, unless this object has gone by then.
    void ask(const QDBusMessage &question, std::function<void(const QDBusMessage &reply)> take);
    void lookForService(const QString &name, std::function<void(bool isThere)> take);
    void askPermissionStore(const Answer &answer);
    void askSwitches(const Answer &answer);
    /// Of a desktop that keeps nothing back.
    [[nodiscard]] NotificationState stateByMemory() const;
    void rememberAsking();

    Services m_services;
    QDBusConnection m_bus;
    std::chrono::milliseconds m_timeout;
    /// For the programs that tell of switches. Its end waits for them.
    QThreadPool m_worker;
};

} // namespace Quillbrook
