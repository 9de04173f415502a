#pragma once

// A place on the screen as the window system counts it, and as the program does: on screens whose pixels are
// scaled these are not the same.

#include <QList>
#include <QPoint>
#include <QRect>

namespace Quillbrook::ScreenPoint {

struct Screen
{
    /// Its corner in the window system's pixels, its size in the program's.
    QRect geometry{};
    /// The window system's pixels for one of the program's.
    double scale = 1;
};

/// The screens there are.
[[nodiscard]] QList<Screen> screens();

/// A place that lies on none of the screens stays as it is.
[[nodiscard]] QPoint fromNative(const QPoint &place, const QList<Screen> &screens);

} // namespace Quillbrook::ScreenPoint
