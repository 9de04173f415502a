#pragma once

// Questions to the desktop portal that the person answers in their own time: the call itself only gives a
// handle, and the answer comes later as a signal of that handle. Main thread only.

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFuture>
#include <QObject>
#include <QVariantMap>

#include <chrono>
#include <optional>

namespace Quillbrook {

class PortalRequest final : public QObject
{
    Q_OBJECT

public:
    struct Response
    {
        enum Code : uint { granted = 0, cancelled = 1, ended = 2 };

        uint code = ended;
        /// What the portal's documentation of the method names; often empty unless granted.
        QVariantMap results{};
    };

    explicit PortalRequest(const QDBusConnection &sessionBus = QDBusConnection::sessionBus());

    /// Makes the call. Its last argument has to be the map of options, to which the handle's token is added.
    /// Absent where there is no bus or no such portal, where the portal refuses the call, and where nobody
    /// has answered within `timeout`; then the portal is told to take its question back. Several calls may be
    /// under way. A question still open when this object ends is taken back too, and its future is cancelled.
    [[nodiscard]] QFuture<std::optional<Response>> call(
        const QDBusMessage &message, std::chrono::milliseconds timeout);

    /// A call of a method of the desktop portal, to be given its arguments.
    [[nodiscard]] static QDBusMessage method(const QString &interface, const QString &name);

private:
    QDBusConnection m_bus;
};

} // namespace Quillbrook
