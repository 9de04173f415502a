#pragma once

// The values of a tray item as they go over the bus.

#include <QByteArray>
#include <QDBusArgument>
#include <QImage>
#include <QList>
#include <QMetaType>
#include <QString>

namespace Quillbrook {

/// A picture: its rows from the top, each pixel as alpha, red, green, blue.
struct TrayPixmap
{
    int width = 0;
    int height = 0;
    QByteArray bytes{};

    bool operator==(const TrayPixmap &) const = default;
};

struct TrayToolTip
{
    QString iconName{};
    QList<TrayPixmap> pixmaps{};
    QString title{};
    QString text{};

    bool operator==(const TrayToolTip &) const = default;
};

QDBusArgument &operator<<(QDBusArgument &argument, const TrayPixmap &pixmap);
const QDBusArgument &operator>>(const QDBusArgument &argument, TrayPixmap &pixmap);
QDBusArgument &operator<<(QDBusArgument &argument, const TrayToolTip &toolTip);
const QDBusArgument &operator>>(const QDBusArgument &argument, TrayToolTip &toolTip);

[[nodiscard]] TrayPixmap trayPixmap(const QImage &image);

/// Makes them known to the bus; again does nothing.
void registerStatusNotifierTypes();

} // namespace Quillbrook

Q_DECLARE_METATYPE(Quillbrook::TrayPixmap)
Q_DECLARE_METATYPE(Quillbrook::TrayToolTip)
