#pragma once

// A message bus of a test's own, on which nothing answers but what the test puts there. It ends with the
// object.

#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QUuid>

namespace Quillbrook {

class PrivateBus
{
public:
    PrivateBus()
    {
        m_daemon.start(QStringLiteral("dbus-daemon"),
            { QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
                QStringLiteral("--print-address") });
        if (m_daemon.waitForStarted(5000) && m_daemon.waitForReadyRead(5000))
            m_address = QString::fromLatin1(m_daemon.readLine()).trimmed();
    }
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;
    ~PrivateBus()
    {
        for (const auto &name : m_connections)
            QDBusConnection::disconnectFromBus(name);
        m_daemon.kill();
        m_daemon.waitForFinished(5000);
    }

    /// A new connection, as another program would have; not connected when the bus could not be started.
    [[nodiscard]] QDBusConnection connection()
    {
        m_connections.append(QUuid::createUuid().toString());
        return QDBusConnection::connectToBus(m_address, m_connections.last());
    }

private:
    QProcess m_daemon;
    QString m_address;
    QStringList m_connections;
};

} // namespace Quillbrook
