#include "Platform/Linux/Tray/StatusNotifierRegistration.h"

#include "Platform/Linux/Bus/BusCall.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusReply>
#include <QTimer>

#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto watcherName = u"org.kde.StatusNotifierWatcher"_s;
const auto watcherPath = u"/StatusNotifierWatcher"_s;

QDBusMessage registering(const QString &item)
{
    auto message = QDBusMessage::createMethodCall(
        watcherName, watcherPath, watcherName, u"RegisterStatusNotifierItem"_s);
    message.setAutoStartService(false);
    message << item;
    return message;
}

QDBusMessage panelQuestion()
{
    auto message = QDBusMessage::createMethodCall(
        watcherName, watcherPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    message.setAutoStartService(false);
    message << watcherName << u"IsStatusNotifierHostRegistered"_s;
    return message;
}

} // namespace

StatusNotifierRegistration::StatusNotifierRegistration(const QDBusConnection &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{
}

StatusNotifierRegistration::~StatusNotifierRegistration()
{
    if (m_ownsName)
        m_bus.unregisterService(m_name);
}

void StatusNotifierRegistration::start()
{
    if (!m_name.isEmpty() || !m_bus.isConnected())
        return;
    takeName();
    m_watch.setConnection(m_bus);
    m_watch.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    m_watch.addWatchedService(watcherName);
    connect(&m_watch, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString &, const QString &, const QString &owner) {
            startOver();
            m_returns = 0;
            if (!owner.isEmpty())
                enlist();
        });
    for (const auto &signal : { u"StatusNotifierHostRegistered"_s, u"StatusNotifierHostUnregistered"_s })
        m_bus.connect(watcherName, watcherPath, watcherName, signal, this, SLOT(askForPanel()));
    m_bus.connect(watcherName, watcherPath, watcherName, u"StatusNotifierItemUnregistered"_s, this,
        SLOT(comeBack(QString)));
    enlist();
}

void StatusNotifierRegistration::takeName()
{
    m_name = u"org.kde.StatusNotifierItem-%1-1"_s.arg(QCoreApplication::applicationPid());
    m_ownsName = m_bus.registerService(m_name);
    // Inside a sandbox the name may be refused. The connection's own serves as well.
    if (!m_ownsName)
        m_name = m_bus.baseService();
}

void StatusNotifierRegistration::enlist()
{
    BusCall::ask(m_bus, registering(m_name), patience, this,
        [this, generation = m_generation](const QDBusMessage &reply) {
            if (reply.type() != QDBusMessage::ReplyMessage || generation != m_generation)
                return;
            m_isKnown = true;
            askForPanel();
        });
}

void StatusNotifierRegistration::askForPanel()
{
    if (!m_isKnown)
        return;
    BusCall::ask(m_bus, panelQuestion(), patience, this,
        [this, generation = m_generation](const QDBusMessage &answer) {
            if (generation != m_generation)
                return;
            const QDBusReply<QVariant> reply = answer;
            // A watcher that took the item but can't tell of panels is itself one.
            setShown(!reply.isValid() || reply.value().toBool());
        });
}

void StatusNotifierRegistration::comeBack(const QString &item)
{
    // Watchers write the item's path behind its name, with one sign or another between, or leave it out.
    const auto isOwn = item == m_name || item.startsWith(m_name + u'/') || item.startsWith(m_name + u'@');
    if (!isOwn)
        return;
    startOver();
    if (m_returns == mostReturns)
        return;
    QTimer::singleShot(firstPause * (1 << m_returns++), this, [this, generation = m_generation] {
        if (generation == m_generation)
            enlist();
    });
}

void StatusNotifierRegistration::startOver()
{
    ++m_generation;
    m_isKnown = false;
    setShown(false);
}

void StatusNotifierRegistration::setShown(bool isShown)
{
    if (std::exchange(m_isShown, isShown) != m_isShown)
        Q_EMIT shownChanged();
}

} // namespace Quillbrook
