#include "Platform/Linux/Notifications/LinuxNotifier.h"

#include "Platform/Linux/Bus/BusCall.h"
#include "Platform/Linux/Notifications/NotificationSettingsPage.h"
#include "Platform/Linux/Notifications/NotificationSwitches.h"
#include "Platform/UserDefaults.h"
#include "WhenAnswered.h"

#include <QDBusArgument>
#include <QProcess>
#include <QPromise>
#include <QUuid>
#include <QVariantMap>
#include <QtConcurrent>

#include <memory>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto application = u"com.tarnwick.Quillbrook"_s;
const auto askedKey = u"Quillbrook.notificationsAsked"_s;
const auto serverName = u"org.freedesktop.Notifications"_s;
const auto portalName = u"org.freedesktop.portal.Desktop"_s;
constexpr uchar normalUrgency = 1;

QDBusMessage serverCall(const QString &method)
{
    return QDBusMessage::createMethodCall(
        serverName, u"/org/freedesktop/Notifications"_s, serverName, method);
}

QDBusMessage busCall(const QString &method)
{
    const auto bus = u"org.freedesktop.DBus"_s;
    return QDBusMessage::createMethodCall(bus, u"/org/freedesktop/DBus"_s, bus, method);
}

// As the server would show it where it takes the body for markup.
QString escaped(QString body)
{
    return body.replace(u'&', u"&amp;"_s).replace(u'<', u"&lt;"_s).replace(u'>', u"&gt;"_s);
}

QDBusMessage notification(const QString &title, const QString &body)
{
    auto message = serverCall(u"Notify"_s);
    message << u"Quillbrook"_s << uint(0) << application << title << body << QStringList()
            << QVariantMap{
                   { u"desktop-entry"_s, application },
                   { u"suppress-sound"_s, true },
                   { u"urgency"_s, QVariant::fromValue(normalUrgency) },
               }
            << -1;
    return message;
}

// The store's own words for the applications: of each, what it is granted.
bool isKeptBack(const QDBusMessage &reply, const QString &name)
{
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != u"a{sas}v"_s)
        return false;
    const auto permissions = qdbus_cast<QMap<QString, QStringList>>(reply.arguments().constFirst());
    return permissions.value(name) == QStringList(u"no"_s);
}

} // namespace

LinuxNotifier::LinuxNotifier(
    const Services &services, const QDBusConnection &sessionBus, std::chrono::milliseconds timeout)
    : m_services(services)
    , m_bus(sessionBus)
    , m_timeout(timeout)
{
    m_worker.setMaxThreadCount(1);
    if (!m_services.start)
        m_services.start = [](const QString &program, const QStringList &arguments) {
            QProcess::startDetached(program, arguments);
        };
}

void LinuxNotifier::post(const QString &title, const QString &body)
{
    rememberAsking();
    if (isSandboxed())
        postToPortal(title, body);
    else
        postToServer(title, body);
}

QFuture<void> LinuxNotifier::requestAuthorisation()
{
    rememberAsking();
    if (isSandboxed() || !m_bus.isConnected())
        return QtFuture::makeReadyFuture();
    // Any question starts the server, so that `state` finds it.
    const auto promise = std::make_shared<QPromise<void>>();
    promise->start();
    ask(serverCall(u"GetCapabilities"_s), [promise](const QDBusMessage &) { promise->finish(); });
    return promise->future();
}

QFuture<NotificationState> LinuxNotifier::state()
{
    const auto promise = std::make_shared<QPromise<NotificationState>>();
    promise->start();
    const Answer answer = [promise](NotificationState state) {
        promise->addResult(state);
        promise->finish();
    };
    lookForService(isSandboxed() ? portalName : serverName, [this, answer](bool isThere) {
        if (!isThere)
            answer(NotificationState::denied);
        else if (isSandboxed())
            askPermissionStore(answer);
        else
            askSwitches(answer);
    });
    return promise->future();
}

bool LinuxNotifier::hasSettings() const
{
    return NotificationSettingsPage::of(m_services.session).has_value();
}

void LinuxNotifier::openSettings()
{
    if (const auto page = NotificationSettingsPage::of(m_services.session))
        m_services.start(page->program, page->arguments);
}

void LinuxNotifier::postToPortal(const QString &title, const QString &body)
{
    auto message = QDBusMessage::createMethodCall(portalName, u"/org/freedesktop/portal/desktop"_s,
        u"org.freedesktop.portal.Notification"_s, u"AddNotification"_s);
    message << QUuid::createUuid().toString(QUuid::WithoutBraces)
            << QVariantMap{ { u"title"_s, title }, { u"body"_s, body } };
    ask(message, [](const QDBusMessage &) {});
}

void LinuxNotifier::postToServer(const QString &title, const QString &body)
{
    // Asked each time, as the server may have become another one.
    ask(serverCall(u"GetCapabilities"_s), [this, title, body](const QDBusMessage &reply) {
        const bool isKnown = reply.type() == QDBusMessage::ReplyMessage;
        const bool takesMarkup
            = !isKnown || reply.arguments().value(0).toStringList().contains(u"body-markup"_s);
        ask(notification(title, takesMarkup ? escaped(body) : body), [](const QDBusMessage &) {});
    });
}

void LinuxNotifier::ask(const QDBusMessage &question, std::function<void(const QDBusMessage &)> take)
{
    BusCall::ask(m_bus, question, m_timeout, this, std::move(take));
}

// A service is there that runs, or that the bus would start.
void LinuxNotifier::lookForService(const QString &name, std::function<void(bool)> take)
{
    ask(busCall(u"NameHasOwner"_s) << name, [this, name, take = std::move(take)](const QDBusMessage &owner) {
        if (owner.arguments().value(0) == QVariant(true)) {
            take(true);
            return;
        }
        ask(busCall(u"ListActivatableNames"_s), [name, take](const QDBusMessage &names) {
            take(names.type() == QDBusMessage::ReplyMessage
                && names.arguments().value(0).toStringList().contains(name));
        });
    });
}

void LinuxNotifier::askPermissionStore(const Answer &answer)
{
    // Most sandboxes can't see the store; then it keeps nothing back.
    auto question = QDBusMessage::createMethodCall(u"org.freedesktop.impl.portal.PermissionStore"_s,
        u"/org/freedesktop/impl/portal/PermissionStore"_s, u"org.freedesktop.impl.portal.PermissionStore"_s,
        u"Lookup"_s);
    question << u"notifications"_s << u"notification"_s;
    ask(question, [this, answer](const QDBusMessage &reply) {
        answer(isKeptBack(reply, m_services.session.sandbox.application) ? NotificationState::denied
                                                                         : stateByMemory());
    });
}

void LinuxNotifier::askSwitches(const Answer &answer)
{
    const auto question
        = [session = m_services.session, processes = &m_services.processes, reading = &m_services.reading] {
              return NotificationSwitches::areOff(session, *processes, *reading);
          };
    whenAnswered(QtConcurrent::run(&m_worker, question), this,
        [this, answer](bool areOff) { answer(areOff ? NotificationState::denied : stateByMemory()); });
}

NotificationState LinuxNotifier::stateByMemory() const
{
    return m_services.defaults.boolean(askedKey).value_or(false) ? NotificationState::allowed
                                                                 : NotificationState::notAsked;
}

void LinuxNotifier::rememberAsking()
{
    if (!m_services.defaults.boolean(askedKey).value_or(false))
        m_services.defaults.setBoolean(askedKey, true);
}

} // namespace Quillbrook
