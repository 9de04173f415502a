#include "Platform/Linux/Tray/ScreenPoint.h"

#include <QGuiApplication>
#include <QPointF>
#include <QScreen>

namespace Quillbrook::ScreenPoint {

QList<Screen> screens()
{
    QList<Screen> result;
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return result;
    for (const auto *screen : QGuiApplication::screens())
        result.append({ .geometry = screen->geometry(), .scale = screen->devicePixelRatio() });
    return result;
}

QPoint fromNative(const QPoint &place, const QList<Screen> &screens)
{
    for (const auto &screen : screens) {
        const auto corner = screen.geometry.topLeft();
        const QRect native(corner, screen.geometry.size() * screen.scale);
        if (native.contains(place))
            return corner + (QPointF(place - corner) / screen.scale).toPoint();
    }
    return place;
}

} // namespace Quillbrook::ScreenPoint
