#include "Platform/Linux/Tray/TrayMenuTypes.h"

#include <QDBusMetaType>

namespace Quillbrook {

QDBusArgument &operator<<(QDBusArgument &argument, const MenuEntryProperties &entry)
{
    argument.beginStructure();
    argument << entry.id << entry.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, MenuEntryProperties &entry)
{
    argument.beginStructure();
    argument >> entry.id >> entry.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const MenuEntryLosses &entry)
{
    argument.beginStructure();
    argument << entry.id << entry.names;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, MenuEntryLosses &entry)
{
    argument.beginStructure();
    argument >> entry.id >> entry.names;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const MenuLayout &layout)
{
    argument.beginStructure();
    argument << layout.id << layout.properties;
    // The format can't name itself, and so has variants there.
    argument.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const auto &child : layout.children)
        argument << QDBusVariant(QVariant::fromValue(child));
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, MenuLayout &layout)
{
    layout.children.clear();
    argument.beginStructure();
    argument >> layout.id >> layout.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        layout.children.append(qdbus_cast<MenuLayout>(child.variant()));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const MenuEvent &event)
{
    argument.beginStructure();
    argument << event.id << event.name << event.data << event.timestamp;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, MenuEvent &event)
{
    argument.beginStructure();
    argument >> event.id >> event.name >> event.data >> event.timestamp;
    argument.endStructure();
    return argument;
}

void registerTrayMenuTypes()
{
    qDBusRegisterMetaType<MenuEntryProperties>();
    qDBusRegisterMetaType<QList<MenuEntryProperties>>();
    qDBusRegisterMetaType<MenuEntryLosses>();
    qDBusRegisterMetaType<QList<MenuEntryLosses>>();
    qDBusRegisterMetaType<MenuLayout>();
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<QList<MenuEvent>>();
    qDBusRegisterMetaType<QList<int>>();
}

} // namespace Quillbrook
