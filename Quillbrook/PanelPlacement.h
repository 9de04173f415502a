#pragma once

// Where the small window of the tray's item goes, on window systems where a program may say so.

#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>

namespace Quillbrook {

struct PanelPlacement
{
    QSize panel{};
    /// Where the item was pressed; absent where the desktop does not tell.
    std::optional<QPoint> place{};
    /// Of the screen that the item is on.
    QRect screen{};
    /// The part of the screen that no bar of the desktop takes.
    QRect available{};

    /// The panel's corner: beside the item, else in the corner where the desktop's tray usually is, and never
    /// under a bar or off the screen as long as the panel is not larger than that.
    [[nodiscard]] QPoint position() const;
};

} // namespace Quillbrook
