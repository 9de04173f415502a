#pragma once

// A message bus of a test's own, on which nothing answers but what the test puts there: no service of the
// machine is started on demand, only what a test's own folder of services names. It ends with the object.

#include <QDBusConnection>
#include <QFile>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <QUuid>

namespace Quillbrook {

class PrivateBus
{
public:
    explicit PrivateBus(const QString &serviceFolder = {})
        : m_services(serviceFolder)
    {
        QFile file(m_folder.filePath(QStringLiteral("bus.conf")));
        if (!file.open(QIODevice::WriteOnly) || file.write(configuration()) < 0)
            return;
        file.close();
        m_daemon.start(QStringLiteral("dbus-daemon"),
            { QStringLiteral("--config-file=") + file.fileName(), QStringLiteral("--nofork"),
                QStringLiteral("--nopidfile"), QStringLiteral("--print-address") });
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

    /// Where programs find it; empty when it could not be started.
    [[nodiscard]] const QString &address() const { return m_address; }

private:
    [[nodiscard]] QByteArray configuration() const
    {
        return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir=)"
            + m_folder.path().toUtf8() + "</listen>\n"
            + (m_services.isEmpty() ? QByteArray()
                                    : "  <servicedir>" + m_services.toUtf8() + "</servicedir>\n")
            + R"(  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";
    }

    QTemporaryDir m_folder;
    QString m_services;
    QProcess m_daemon;
    QString m_address;
    QStringList m_connections;
};

} // namespace Quillbrook
