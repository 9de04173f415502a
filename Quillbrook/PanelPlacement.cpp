#include "PanelPlacement.h"

#include <algorithm>

namespace Quillbrook {

namespace {

/// Between the panel and what it stands beside, in pixels.
constexpr int gap = 8;

/// Where a length may begin between two ends; at the first where it is too long.
int within(int wanted, int length, int first, int end)
{
    return std::max(first, std::min(wanted, end - length));
}

} // namespace

QPoint PanelPlacement::position() const
{
    const auto right = available.x() + available.width();
    const auto bottom = available.y() + available.height();
    if (!place) {
        const auto hasBarOnTop = available.y() > screen.y();
        return { within(right - gap - panel.width(), panel.width(), available.x(), right),
            within(hasBarOnTop ? available.y() + gap : bottom - gap - panel.height(), panel.height(),
                available.y(), bottom) };
    }
    const auto isInUpperHalf = place->y() < screen.y() + screen.height() / 2;
    const auto below = std::max(place->y(), available.y()) + gap;
    const auto above = std::min(place->y(), bottom) - gap - panel.height();
    return { within(place->x() - panel.width() / 2, panel.width(), available.x(), right),
        within(isInUpperHalf ? below : above, panel.height(), available.y(), bottom) };
}

} // namespace Quillbrook
