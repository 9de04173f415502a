#pragma once

// Squarified treemap layout: from a node of a finished tree and a rectangle to the flat list of visible
// tiles. Pure computation; the y axis grows downward and rectangles are not rounded.

#include "Scan/FileTree.h"

#include <QRectF>
#include <QString>

#include <vector>

namespace Quillbrook::Treemap {

/// One file or folder large enough to be seen. `depth` is 0 directly in the laid-out node.
struct Tile
{
    qint32 id = FileTree::noNode;
    QRectF rect{};
    qint32 depth = 0;
    qint64 bytes = 0;
    QString name{};
    bool isDirectory = false;
    QString path{};

    bool operator==(const Tile &) const = default;
};

struct Request
{
    const FileTree &tree;
    qint32 node = FileTree::noNode;
    QRectF in{};
    int maximumDepth = 5;
    /// Points; a tile or area is kept only when both its sides are greater.
    double minimumTileSide = 3.0;
};

/// A folder's tile comes before its children's, so that painting in order puts children over parents and a
/// search from the end finds the innermost tile. Overflow of the children's sum ends the process.
[[nodiscard]] std::vector<Tile> layout(const Request &request);

} // namespace Quillbrook::Treemap
