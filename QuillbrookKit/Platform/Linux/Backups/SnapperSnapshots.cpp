#include "Platform/Linux/Backups/SnapperSnapshots.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QStringList>
#include <QUuid>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

// A connection of this thread's own, so that nobody else's waits behind it.
class Bus
{
public:
    Bus(const QString &address, std::chrono::milliseconds timeLimit)
        : m_connection(address.isEmpty() ? QDBusConnection::connectToBus(QDBusConnection::SystemBus, m_name)
                                         : QDBusConnection::connectToBus(address, m_name))
        , m_deadline(timeLimit)
    {
    }
    Bus(const Bus &) = delete;
    Bus &operator=(const Bus &) = delete;
    ~Bus() { QDBusConnection::disconnectFromBus(m_name); }

    // The list that the service answers with; absent where it doesn't.
    [[nodiscard]] std::optional<QDBusArgument> ask(
        const QString &method, const QVariantList &arguments, const QString &signature) const
    {
        if (!m_connection.isConnected() || m_deadline.hasExpired())
            return std::nullopt;
        auto call = QDBusMessage::createMethodCall(
            u"org.opensuse.Snapper"_s, u"/org/opensuse/Snapper"_s, u"org.opensuse.Snapper"_s, method);
        call.setArguments(arguments);
        const auto reply
            = m_connection.call(call, QDBus::Block, static_cast<int>(m_deadline.remainingTime()));
        if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != signature)
            return std::nullopt;
        return reply.arguments().constFirst().value<QDBusArgument>();
    }

private:
    QString m_name = QUuid::createUuid().toString();
    QDBusConnection m_connection;
    QDeadlineTimer m_deadline;
};

QStringList configurationsOf(const Bus &bus, const QString &subvolume)
{
    QStringList names;
    const auto list = bus.ask(u"ListConfigs"_s, {}, u"a(ssa{ss})"_s);
    if (!list)
        return names;
    list->beginArray();
    while (!list->atEnd()) {
        QString name;
        QString path;
        QMap<QString, QString> settings;
        list->beginStructure();
        *list >> name >> path >> settings;
        list->endStructure();
        if (path == subvolume)
            names.append(name);
    }
    list->endArray();
    return names;
}

int countIn(const Bus &bus, const QString &configuration)
{
    const auto list = bus.ask(u"ListSnapshots"_s, { configuration }, u"a(uquxussa{ss})"_s);
    if (!list)
        return 0;
    int snapshots = 0;
    list->beginArray();
    while (!list->atEnd()) {
        uint number = 0;
        ushort kind = 0;
        uint before = 0;
        qlonglong moment = 0;
        uint user = 0;
        QString description;
        QString cleanup;
        QMap<QString, QString> data;
        list->beginStructure();
        *list >> number >> kind >> before >> moment >> user >> description >> cleanup >> data;
        list->endStructure();
        // Number 0 is the present state.
        if (number != 0)
            ++snapshots;
    }
    list->endArray();
    return snapshots;
}

} // namespace

int SnapperSnapshots::count(
    const QString &subvolume, const QString &busAddress, std::chrono::milliseconds timeLimit)
{
    const Bus bus(busAddress, timeLimit);
    int snapshots = 0;
    for (const auto &name : configurationsOf(bus, subvolume))
        snapshots += countIn(bus, name);
    return snapshots;
}

} // namespace Quillbrook
