#pragma once

// The tray of a desktop as it answers on a bus: the watcher that items tell of themselves, and panels that it
// may know. On a connection of its own, as in another program.

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>

namespace Quillbrook {

class FakeTrayPanel : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasPanel)

public:
    explicit FakeTrayPanel(const QDBusConnection &bus)
        : m_bus(bus)
    {
    }
    ~FakeTrayPanel() override { stop(); }

    void start()
    {
        m_bus.registerObject(path(), this,
            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties
                | QDBusConnection::ExportAllSignals);
        m_bus.registerService(name());
    }
    void stop()
    {
        m_bus.unregisterService(name());
        m_bus.unregisterObject(path());
    }
    /// Also tells those who listen.
    void setPanel(bool isThere)
    {
        isPanelThere = isThere;
        if (isThere)
            Q_EMIT StatusNotifierHostRegistered();
        else
            Q_EMIT StatusNotifierHostUnregistered();
    }

    /// Forgets an item, whether it is there or not.
    void drop(const QString &item) { Q_EMIT StatusNotifierItemUnregistered(item); }

    [[nodiscard]] static QString name() { return QStringLiteral("org.kde.StatusNotifierWatcher"); }
    [[nodiscard]] static QString path() { return QStringLiteral("/StatusNotifierWatcher"); }
    [[nodiscard]] bool hasPanel() const { return isPanelThere; }

    bool isPanelThere = true;
    /// It takes no item.
    bool refuses = false;
    /// The names that items gave, in the order they came.
    QStringList items;

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &service)
    {
        if (refuses)
            sendErrorReply(QDBusError::AccessDenied, QStringLiteral("no"));
        else
            items.append(service);
    }

Q_SIGNALS:
    void StatusNotifierHostRegistered();
    void StatusNotifierHostUnregistered();
    void StatusNotifierItemUnregistered(const QString &item);

private:
    QDBusConnection m_bus;
};

} // namespace Quillbrook
