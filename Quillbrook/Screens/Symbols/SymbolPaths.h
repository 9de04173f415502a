#pragma once

// The outlines of all symbols, on a grid of 16 x 16 with the origin at the top left. Each is two paths: one
// to be stroked with `strokeWidth`, round ends and corners, and one to be filled. Main thread only.

#include <QPainterPath>
#include <QString>
#include <QStringList>

namespace Quillbrook {

struct SymbolOutline
{
    QPainterPath stroked{};
    QPainterPath filled{};

    bool operator==(const SymbolOutline &) const = default;
};

namespace SymbolPaths {

inline constexpr qreal gridSide = 16;
inline constexpr qreal strokeWidth = 1.6;

/// The outline of that name; empty for a name that is not in the set.
[[nodiscard]] const SymbolOutline &outline(const QString &name);
/// All names of the set, sorted.
[[nodiscard]] QStringList names();

} // namespace SymbolPaths

} // namespace Quillbrook
