#pragma once

// The values of an exported menu as they go over the bus.

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace Quillbrook {

/// An entry with some of its properties.
struct MenuEntryProperties
{
    int id = 0;
    QVariantMap properties{};
};

/// An entry that lost properties.
struct MenuEntryLosses
{
    int id = 0;
    QStringList names{};
};

/// An entry with what is below it.
struct MenuLayout
{
    int id = 0;
    QVariantMap properties{};
    QList<MenuLayout> children{};
};

/// Something that happened to an entry.
struct MenuEvent
{
    int id = 0;
    QString name{};
    QDBusVariant data{};
    uint timestamp = 0;
};

QDBusArgument &operator<<(QDBusArgument &argument, const MenuEntryProperties &entry);
const QDBusArgument &operator>>(const QDBusArgument &argument, MenuEntryProperties &entry);
QDBusArgument &operator<<(QDBusArgument &argument, const MenuEntryLosses &entry);
const QDBusArgument &operator>>(const QDBusArgument &argument, MenuEntryLosses &entry);
QDBusArgument &operator<<(QDBusArgument &argument, const MenuLayout &layout);
const QDBusArgument &operator>>(const QDBusArgument &argument, MenuLayout &layout);
QDBusArgument &operator<<(QDBusArgument &argument, const MenuEvent &event);
const QDBusArgument &operator>>(const QDBusArgument &argument, MenuEvent &event);

/// Makes them known to the bus; again does nothing.
void registerTrayMenuTypes();

} // namespace Quillbrook

Q_DECLARE_METATYPE(Quillbrook::MenuEntryProperties)
Q_DECLARE_METATYPE(Quillbrook::MenuEntryLosses)
Q_DECLARE_METATYPE(Quillbrook::MenuLayout)
Q_DECLARE_METATYPE(Quillbrook::MenuEvent)
