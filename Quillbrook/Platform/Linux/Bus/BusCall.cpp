#include "Platform/Linux/Bus/BusCall.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusPendingCallWatcher>

#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

QDBusMessage noBus()
{
    return QDBusMessage::createError(QDBusError::Disconnected, u"There is no bus"_s);
}

} // namespace

void BusCall::ask(const QDBusConnection &bus, const QDBusMessage &question,
    std::chrono::milliseconds patience, QObject *context, std::function<void(const QDBusMessage &)> take)
{
    if (!bus.isConnected()) {
        take(noBus());
        return;
    }
    auto *call
        = new QDBusPendingCallWatcher(bus.asyncCall(question, static_cast<int>(patience.count())), context);
    QObject::connect(call, &QDBusPendingCallWatcher::finished, context, [call, take = std::move(take)] {
        call->deleteLater();
        take(call->reply());
    });
}

QDBusMessage BusCall::wait(
    const QDBusConnection &bus, const QDBusMessage &question, std::chrono::milliseconds patience)
{
    return bus.isConnected() ? bus.call(question, QDBus::Block, static_cast<int>(patience.count())) : noBus();
}

} // namespace Quillbrook
