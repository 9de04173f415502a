#pragma once

// One running program by its name on the session bus, where a second start, a launcher and a notification
// find it. Without a bus one by a lock: a second start then can't bring the first one forward, and says so.

#include "Platform/AppInstance.h"
#include "Platform/Linux/Files/FileDescriptor.h"

#include <QDBusConnection>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <chrono>

namespace Quillbrook {

class LinuxAppInstance final : public AppInstance
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// What the launcher gave this start so that its window may come to the front.
    struct StartTokens
    {
        QByteArray activationToken{};
        QByteArray startupId{};

        /// Qt takes them out of the environment: to be read before the application object is made.
        [[nodiscard]] static StartTokens ofEnvironment();
    };

    struct Options
    {
        QDBusConnection bus = QDBusConnection::sessionBus();
        StartTokens tokens{};
        /// Where the lock lies.
        QString runtimeFolder = usersRuntimeFolder();
        /// How long the one that runs has to answer.
        std::chrono::milliseconds patience{ 5000 };
    };

    /// Of the session; where there is none, a folder of the user's own among the temporary ones. Empty when
    /// not even that can be had.
    [[nodiscard]] static QString usersRuntimeFolder();
    [[nodiscard]] static QString name() { return QStringLiteral("com.tarnwick.Quillbrook"); }
    [[nodiscard]] static QString objectPath() { return QStringLiteral("/com/tarnwick/Quillbrook"); }

    explicit LinuxAppInstance(const Options &options);
    ~LinuxAppInstance() override;

    [[nodiscard]] bool claim() override;

public Q_SLOTS:
    Q_SCRIPTABLE void Activate(const QVariantMap &platformData);
    /// There is nothing that the program would open, so that it comes forward only.
    Q_SCRIPTABLE void Open(const QStringList &uris, const QVariantMap &platformData);
    /// The one action is "open"; others are passed over.
    Q_SCRIPTABLE void ActivateAction(
        const QString &action, const QVariantList &parameters, const QVariantMap &platformData);

private:
    enum class Answer { done, gone, silent };

    [[nodiscard]] bool claimName();
    [[nodiscard]] bool claimLock();
    [[nodiscard]] Answer activateOwner() const;

    Options m_options;
    FileDescriptor m_lock;
    bool m_ownsName = false;
};

} // namespace Quillbrook
