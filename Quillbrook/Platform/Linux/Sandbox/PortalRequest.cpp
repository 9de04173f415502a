#include "Platform/Linux/Sandbox/PortalRequest.h"

#include "Platform/Linux/Bus/BusCall.h"

#include <QDBusError>
#include <QDBusObjectPath>
#include <QPromise>
#include <QTimer>
#include <QUuid>

#include <algorithm>
#include <limits>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto service = u"org.freedesktop.portal.Desktop"_s;
const auto portalPath = u"/org/freedesktop/portal/desktop"_s;
const auto requestInterface = u"org.freedesktop.portal.Request"_s;

// The handle that a portal makes of the caller's name and its token.
QString expectedHandle(const QDBusConnection &bus, const QString &token)
{
    auto sender = bus.baseService();
    sender.remove(u':').replace(u'.', u'_');
    return portalPath + u"/request/"_s + sender + u'/' + token;
}

int wholeMilliseconds(std::chrono::milliseconds time)
{
    return static_cast<int>(
        std::clamp<std::chrono::milliseconds::rep>(time.count(), 0, std::numeric_limits<int>::max()));
}

} // namespace

/// One question under way. It ends itself when it has its answer.
class PortalQuestion final : public QObject
{
    Q_OBJECT

public:
    PortalQuestion(const QDBusConnection &bus, QObject *parent)
        : QObject(parent)
        , m_bus(bus)
    {
        m_promise.start();
    }
    ~PortalQuestion() override
    {
        if (!m_isOver)
            takeBack();
        unsubscribe();
    }

    QFuture<std::optional<PortalRequest::Response>> future() const { return m_promise.future(); }

    void ask(QDBusMessage message, std::chrono::milliseconds timeout)
    {
        const auto token = u"quillbrook_"_s + QUuid::createUuid().toString(QUuid::Id128);
        auto arguments = message.arguments();
        auto options = arguments.takeLast().toMap();
        options.insert(u"handle_token"_s, token);
        message.setArguments(arguments << options);
        // Before the call: the answer may be there sooner than the handle.
        subscribe(expectedHandle(m_bus, token));
        const int milliseconds = wholeMilliseconds(timeout);
        QTimer::singleShot(milliseconds, this, [this] {
            takeBack();
            finish({});
        });
        BusCall::ask(m_bus, message, std::chrono::milliseconds(milliseconds), this,
            [this](const QDBusMessage &reply) { takeHandle(reply); });
    }

private Q_SLOTS:
    void answer(uint code, const QVariantMap &results)
    {
        finish(PortalRequest::Response{ .code = code, .results = results });
    }

private:
    void subscribe(const QString &handle)
    {
        unsubscribe();
        m_handle = handle;
        m_bus.connect(
            service, m_handle, requestInterface, u"Response"_s, this, SLOT(answer(uint, QVariantMap)));
    }

    void unsubscribe()
    {
        if (!m_handle.isEmpty())
            m_bus.disconnect(
                service, m_handle, requestInterface, u"Response"_s, this, SLOT(answer(uint, QVariantMap)));
        m_handle.clear();
    }

    void takeHandle(const QDBusMessage &reply)
    {
        if (m_isOver)
            return;
        if (QDBusError(reply).type() == QDBusError::NoReply)
            takeBack();
        if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != u"o"_s) {
            finish({});
            return;
        }
        // Portals from before the tokens name their handles as they like.
        const auto handle = reply.arguments().constFirst().value<QDBusObjectPath>().path();
        if (handle != m_handle)
            subscribe(handle);
    }

    void takeBack()
    {
        if (m_isOver || m_handle.isEmpty() || !m_bus.isConnected())
            return;
        m_bus.send(QDBusMessage::createMethodCall(service, m_handle, requestInterface, u"Close"_s));
    }

    void finish(const std::optional<PortalRequest::Response> &response)
    {
        if (m_isOver)
            return;
        m_isOver = true;
        unsubscribe();
        deleteLater();
        m_promise.addResult(response);
        m_promise.finish();
    }

    QDBusConnection m_bus;
    QPromise<std::optional<PortalRequest::Response>> m_promise;
    QString m_handle;
    bool m_isOver = false;
};

PortalRequest::PortalRequest(const QDBusConnection &sessionBus)
    : m_bus(sessionBus)
{
}

QFuture<std::optional<PortalRequest::Response>> PortalRequest::call(
    const QDBusMessage &message, std::chrono::milliseconds timeout)
{
    if (message.arguments().isEmpty())
        return QtFuture::makeReadyFuture(std::optional<Response>());
    auto *question = new PortalQuestion(m_bus, this);
    auto future = question->future();
    question->ask(message, timeout);
    return future;
}

QDBusMessage PortalRequest::method(const QString &interface, const QString &name)
{
    return QDBusMessage::createMethodCall(service, portalPath, interface, name);
}

} // namespace Quillbrook

#include "PortalRequest.moc"
