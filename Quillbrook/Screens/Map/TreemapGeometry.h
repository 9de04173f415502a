#pragma once

// Where things are on a laid-out map: what lies under a point, and which tile comes next in a direction.
// Pure functions over the tiles of one layout.

#include "Scan/Treemap.h"

#include <QPointF>
#include <QRectF>

#include <optional>
#include <span>

namespace Quillbrook::TreemapGeometry {

using Tiles = std::span<const Treemap::Tile>;

enum class Direction { left, right, up, down };

/// Position in `tiles` of the innermost tile that contains `point`: the last one in the list, since children
/// come after their parents. Absent where no tile is.
[[nodiscard]] std::optional<size_t> tileAt(Tiles tiles, QPointF point);
/// Position of the tile of a node; absent when the node has no tile.
[[nodiscard]] std::optional<size_t> tileOf(Tiles tiles, qint32 node);

/// The part of a tile that its own children's tiles leave free at its top: the whole tile for a file or a
/// folder without visible children.
[[nodiscard]] QRectF ownArea(Tiles tiles, size_t position);
/// The tile nearest to the one at `from` in a direction, going by `ownArea`s, so that every tile can be
/// reached and a folder's comes before what is in it. Absent when nothing lies on that side.
[[nodiscard]] std::optional<size_t> neighbour(Tiles tiles, size_t from, Direction direction);

} // namespace Quillbrook::TreemapGeometry
