#include "Screens/Map/TreemapGeometry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Quillbrook::TreemapGeometry {

namespace {

// Tiles that share an edge may overlap by what rounding leaves.
constexpr double edgeTolerance = 0.01;
// A step to the side weighs more than a step ahead, so that a walk keeps its row or column.
constexpr double sidewaysWeight = 2.0;

struct Range
{
    double from;
    double to;

    [[nodiscard]] double centre() const { return (from + to) / 2; }
    [[nodiscard]] double distanceTo(double value) const
    {
        return std::max({ from - value, value - to, 0.0 });
    }
};

// A rectangle seen along a direction: `along` grows the way the walk goes.
struct Oriented
{
    Range along;
    Range across;
};

Oriented oriented(const QRectF &rect, Direction direction)
{
    const Range x{ rect.left(), rect.right() };
    const Range y{ rect.top(), rect.bottom() };
    switch (direction) {
    case Direction::left:
        return { .along = { -x.to, -x.from }, .across = y };
    case Direction::right:
        return { .along = x, .across = y };
    case Direction::up:
        return { .along = { -y.to, -y.from }, .across = x };
    case Direction::down:
        break;
    }
    return { .along = y, .across = x };
}

bool hasVisibleChildren(Tiles tiles, size_t position)
{
    return position + 1 < tiles.size() && tiles[position + 1].depth > tiles[position].depth;
}

} // namespace

std::optional<size_t> tileAt(Tiles tiles, QPointF point)
{
    for (auto position = tiles.size(); position > 0; --position) {
        if (tiles[position - 1].rect.contains(point))
            return position - 1;
    }
    return std::nullopt;
}

std::optional<size_t> tileOf(Tiles tiles, qint32 node)
{
    const auto found = std::ranges::find(tiles, node, &Treemap::Tile::id);
    if (found == tiles.end())
        return std::nullopt;
    return static_cast<size_t>(found - tiles.begin());
}

QRectF ownArea(Tiles tiles, size_t position)
{
    auto area = tiles[position].rect;
    if (hasVisibleChildren(tiles, position))
        area.setBottom(tiles[position + 1].rect.top());
    return area;
}

std::optional<size_t> neighbour(Tiles tiles, size_t from, Direction direction)
{
    const auto start = oriented(ownArea(tiles, from), direction);
    std::optional<size_t> nearest;
    auto nearestCost = std::numeric_limits<double>::max();
    auto nearestOffset = nearestCost;
    for (size_t position = 0; position < tiles.size(); ++position) {
        const auto area = oriented(ownArea(tiles, position), direction);
        const auto ahead = area.along.from - start.along.to;
        if (position == from || ahead < -edgeTolerance)
            continue;
        const auto cost
            = std::max(ahead, 0.0) + sidewaysWeight * area.across.distanceTo(start.across.centre());
        const auto offset = std::abs(area.across.centre() - start.across.centre());
        if (cost < nearestCost || (cost == nearestCost && offset < nearestOffset)) {
            nearest = position;
            nearestCost = cost;
            nearestOffset = offset;
        }
    }
    return nearest;
}

} // namespace Quillbrook::TreemapGeometry
