#pragma once

// One running program by a lock beside the stores that it writes, and by its name on the session bus, where a
// second start, a launcher and a notification find it. Without a bus a second start can't bring the first one
// forward, and says so.

#include "Platform/AppInstance.h"
#include "Platform/Linux/Files/FileDescriptor.h"

#include <QDBusConnection>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <chrono>
#include <string>

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
        /// Where the lock lies, in raw bytes: beside the stores, so that it holds for all who would write
        /// them, from whatever session. Made when it is not there.
        std::string lockFolder{};
        /// How long the one that runs has to answer.
        std::chrono::milliseconds patience{ 5000 };
    };

    [[nodiscard]] static QString name() { return QStringLiteral("com.tarnwick.Quillbrook"); }
    [[nodiscard]] static QString objectPath() { return QStringLiteral("/com/tarnwick/Quillbrook"); }

    explicit LinuxAppInstance(const Options &options);
    ~LinuxAppInstance() override;

    [[nodiscard]] bool claim(Start start) override;
    void useActivationToken(const QByteArray &token) override;

public Q_SLOTS:
    Q_SCRIPTABLE void Activate(const QVariantMap &platformData);
    /// There is nothing that the program would open, so that it comes forward only.
    Q_SCRIPTABLE void Open(const QStringList &uris, const QVariantMap &platformData);
    /// The one action is "open"; others are passed over.
    Q_SCRIPTABLE void ActivateAction(
        const QString &action, const QVariantList &parameters, const QVariantMap &platformData);

private:
    enum class Answer { done, gone, silent };
    enum class Name { owned, ownedByAnother, unavailable };

    [[nodiscard]] Name claimName(Start start);
    void giveUpName();
    [[nodiscard]] bool claimLock();
    [[nodiscard]] Answer activateOwner() const;

    Options m_options;
    FileDescriptor m_lock;
    bool m_ownsName = false;
};

} // namespace Quillbrook
