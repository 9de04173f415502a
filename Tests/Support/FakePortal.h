#pragma once

// A desktop portal that asks nobody: it answers every call as the test says, and remembers it.

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QList>
#include <QStringList>
#include <QVariantMap>

namespace Quillbrook {

class FakePortal final : public QDBusVirtualObject
{
public:
    enum class Answer {
        response,
        /// The response comes before the call has its handle.
        responseFirst,
        /// The handle is not made of the token.
        otherHandle,
        /// A call without a question: an empty reply.
        plainReply,
        handleOnly,
        none,
        error,
    };

    struct Call
    {
        QString interface {
        };
        QString method{};
        QVariantList arguments{};
        /// The last argument.
        QVariantMap options{};
    };

    /// Puts itself on the bus. False when that fails.
    [[nodiscard]] bool offer(QDBusConnection bus)
    {
        return bus.registerVirtualObject(
                   QStringLiteral("/org/freedesktop/portal/desktop"), this, QDBusConnection::SubPath)
            && bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
    }

    QString introspect(const QString & /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        if (message.member() == QStringLiteral("Close")) {
            closed.append(message.path());
            return connection.send(message.createReply());
        }
        calls.append({ .interface = message.interface(),
            .method = message.member(),
            .arguments = message.arguments(),
            .options = qdbus_cast<QVariantMap>(message.arguments().value(message.arguments().size() - 1)) });
        handles.append(handleOf(message));
        if (answer == Answer::error)
            return connection.send(message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("no")));
        if (answer == Answer::plainReply)
            return connection.send(message.createReply());
        if (answer == Answer::responseFirst)
            respond(connection);
        if (answer != Answer::none)
            connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(handles.last()))));
        if (answer == Answer::response)
            respond(connection);
        return true;
    }

    /// Answers the last call, as the person would at last.
    void respond(const QDBusConnection &connection) const
    {
        auto signal = QDBusMessage::createSignal(
            handles.last(), QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
        connection.send(signal << code << results);
    }

    Answer answer = Answer::response;
    uint code = 0;
    QVariantMap results;
    QList<Call> calls;
    /// Of each call.
    QStringList handles;
    /// The handles of questions that were taken back.
    QStringList closed;

private:
    QString handleOf(const QDBusMessage &message) const
    {
        const auto folder = QStringLiteral("/org/freedesktop/portal/desktop/request/");
        if (answer == Answer::otherHandle)
            return folder + QStringLiteral("old/") + QString::number(calls.size());
        const auto sender = message.service().remove(u':').replace(u'.', u'_');
        return folder + sender + u'/' + calls.last().options.value(QStringLiteral("handle_token")).toString();
    }
};

} // namespace Quillbrook
