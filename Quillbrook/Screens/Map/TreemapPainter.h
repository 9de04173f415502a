#pragma once

// Draws a laid-out map. Pure drawing: what is hovered, selected or focused is told by the caller, and the
// tiles never change between two layouts, so they can be painted once and kept as a picture.

#include "Screens/Map/TreemapGeometry.h"

class QImage;
class QPainter;

namespace Quillbrook::TreemapPainter {

enum class Outline { hovered, selected, focused };

/// The text after a name's last dot; empty without one, for a leading dot and for a trailing one.
[[nodiscard]] QString pathExtension(const QString &name);

/// Whether a tile is large enough for its name, and for its size below that.
[[nodiscard]] bool showsName(const Treemap::Tile &tile);
[[nodiscard]] bool showsSize(const Treemap::Tile &tile);

/// Grounds, hairlines and labels of all tiles, in list order, over what is in `picture`, at its own scale.
/// Labels are elided to their tile. REQUIRES: the format ARGB32 premultiplied.
void paintTiles(QImage &picture, TreemapGeometry::Tiles tiles);
/// The mark of one tile, over everything else.
void paintOutline(QPainter &painter, const QRectF &tile, Outline outline);
/// How far an outline reaches beyond its tile's rectangle, in points.
inline constexpr double outlineReach = 2.0;
/// The sentence of a map without tiles, in its middle.
void paintNotice(QPainter &painter, const QRectF &area, const QString &text);

} // namespace Quillbrook::TreemapPainter
