#pragma once

// What a layout of the map was made for. A change of any field causes a new layout, and nothing else does.

#include "Core/Phase.h"

#include <QSizeF>
#include <QtGlobal>

namespace Quillbrook {

struct TreemapLayoutKey
{
    /// Of the view, in points.
    QSizeF size{};
    /// The node whose contents are shown; -1 when there is none.
    qint32 focus = -1;
    Phase phase{};
    quint64 generation = 0;

    // QSizeF compares with a tolerance of 1e-12, far below anything that can be seen.
    bool operator==(const TreemapLayoutKey &) const = default;
};

} // namespace Quillbrook
