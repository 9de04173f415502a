#pragma once

// Draws rounded rectangles straight into a picture. A map is thousands of them, and the general path filler
// takes many times longer for each than their pixels warrant: a new layout has to be on the screen within a
// frame.

#include <QColor>
#include <QImage>
#include <QRectF>

namespace Quillbrook::TileRaster {

/// One rectangle in points, with its hairline drawn over the edge of its ground.
struct Shape
{
    QRectF rect{};
    double radius = 0;
    QColor ground{};
    QColor line{};
    double lineWidth = 0;
};

/// Draws `shape` over what is in `picture`, smoothed, at the picture's own scale.
/// REQUIRES: the format ARGB32 premultiplied.
void draw(QImage &picture, const Shape &shape);

} // namespace Quillbrook::TileRaster
