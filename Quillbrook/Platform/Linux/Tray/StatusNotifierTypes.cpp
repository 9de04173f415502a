#include "Platform/Linux/Tray/StatusNotifierTypes.h"

#include <QDBusMetaType>
#include <QtEndian>

namespace Quillbrook {

QDBusArgument &operator<<(QDBusArgument &argument, const TrayPixmap &pixmap)
{
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, TrayPixmap &pixmap)
{
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const TrayToolTip &toolTip)
{
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.pixmaps << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, TrayToolTip &toolTip)
{
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.pixmaps >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

TrayPixmap trayPixmap(const QImage &image)
{
    const auto pixels = image.convertToFormat(QImage::Format_ARGB32);
    TrayPixmap result{ .width = pixels.width(), .height = pixels.height() };
    result.bytes.resize(qsizetype(4) * pixels.width() * pixels.height());
    auto *target = result.bytes.data();
    for (int y = 0; y < pixels.height(); ++y) {
        qToBigEndian<quint32>(pixels.constScanLine(y), pixels.width(), target);
        target += qsizetype(4) * pixels.width();
    }
    return result;
}

void registerStatusNotifierTypes()
{
    qDBusRegisterMetaType<TrayPixmap>();
    qDBusRegisterMetaType<QList<TrayPixmap>>();
    qDBusRegisterMetaType<TrayToolTip>();
}

} // namespace Quillbrook
