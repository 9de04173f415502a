#include "Scan/Treemap.h"

#include "Fatal.h"
#include "RawText.h"

#include <algorithm>
#include <deque>
#include <limits>
#include <string>

namespace Quillbrook::Treemap {

namespace {

constexpr size_t expectedTiles = 2048;
/// Strip for the title of a folder directly in the laid-out node, in points.
constexpr double titleStrip = 14.0;
/// Distance of a folder's contents from its tile's edges, in points.
constexpr double inset = 1.5;
constexpr double worstPossible = std::numeric_limits<double>::max();

struct Child
{
    qint32 node;
    qint64 size;
};

struct Row
{
    size_t end = 0;
    double area = 0;
};

// One row of `children` from `first` on: it takes items in as long as its worst aspect ratio does not grow.
// Smallest and largest area are carried along, so that each child is read once, however many there are.
Row buildRow(const std::vector<Child> &children, size_t first, double scale, double side)
{
    const auto areaOf = [&](size_t i) { return scale * static_cast<double>(children[i].size); };
    const auto t = side * side;
    Row row{ .end = first };
    auto lastWorst = worstPossible;
    auto smallest = worstPossible;
    auto largest = 0.0;
    for (; row.end < children.size(); ++row.end) {
        const auto area = areaOf(row.end);
        const auto candidate = row.area + area;
        smallest = std::min(smallest, area);
        largest = std::max(largest, area);
        auto worst = worstPossible;
        if (candidate > 0) {
            const auto s = candidate * candidate;
            worst = std::max(t * largest / s, s / (t * smallest));
        }
        if (lastWorst < worst)
            break;
        row.area = candidate;
        lastWorst = worst;
    }
    if (row.end == first)
        row = { .end = first + 1, .area = areaOf(first) };
    return row;
}

class Layout
{
public:
    explicit Layout(const Request &request)
        : m_request(request)
        , m_tree(request.tree)
    {
        m_tiles.reserve(expectedTiles);
    }

    std::vector<Tile> run()
    {
        auto path = m_tree.rawPath(m_request.node);
        step(m_request.node, m_request.in, 0, path);
        return std::move(m_tiles);
    }

private:
    [[nodiscard]] bool isShown(double width, double height) const
    {
        return width > m_request.minimumTileSide && height > m_request.minimumTileSide;
    }

    void collectVisibleChildren(qint32 node, std::vector<Child> &children) const;
    void step(qint32 node, const QRectF &area, qint32 depth, std::string &path);
    void place(const Child &child, const QRectF &rect, qint32 depth, std::string &path);

    const Request &m_request;
    const FileTree &m_tree;
    std::vector<Tile> m_tiles;
    /// Scratch, one list for each folder that is being laid out at the same time. Its lists stay where they
    /// are when it grows.
    std::deque<std::vector<Child>> m_childrenByDepth;
};

void Layout::collectVisibleChildren(qint32 node, std::vector<Child> &children) const
{
    const auto sizes = m_tree.totalSize();
    const auto nextSibling = m_tree.nextSibling();
    children.clear();
    for (auto child = m_tree.firstChild()[static_cast<size_t>(node)]; child != FileTree::noNode;
         child = nextSibling[static_cast<size_t>(child)]) {
        if (const auto size = sizes[static_cast<size_t>(child)]; size >= 1)
            children.push_back({ child, size });
    }
}

// `path` is the raw path of `node`; it is lengthened for each child and cut back, so that no tile costs a
// walk up the tree.
void Layout::step(qint32 node, const QRectF &area, qint32 depth, std::string &path)
{
    if (!m_tree.isValid(node) || depth >= m_request.maximumDepth || !isShown(area.width(), area.height()))
        return;
    const auto level = static_cast<size_t>(depth);
    if (level == m_childrenByDepth.size())
        m_childrenByDepth.emplace_back();
    auto &children = m_childrenByDepth[level];
    collectVisibleChildren(node, children);
    qint64 sum = 0;
    for (const auto &child : children) {
        if (__builtin_add_overflow(sum, child.size, &sum))
            fatal("the sizes in one folder add up to more than 2^63 bytes");
    }
    if (sum <= 0)
        return;

    const auto scale = area.width() * area.height() / static_cast<double>(sum);
    auto left = area.x();
    auto top = area.y();
    auto width = area.width();
    auto height = area.height();
    for (size_t i = 0; i < children.size();) {
        const auto side = std::min(width, height);
        if (!(side > m_request.minimumTileSide))
            break;
        const auto row = buildRow(children, i, scale, side);
        const auto thickness = row.area / side;
        const bool wide = !(height > width);
        auto position = wide ? top : left;
        for (; i < row.end; ++i) {
            const auto share = scale * static_cast<double>(children[i].size) / row.area;
            const auto length = row.area > 0 ? side * share : 0.0;
            place(children[i],
                wide ? QRectF(left, position, thickness, length) : QRectF(position, top, length, thickness),
                depth, path);
            position += length;
        }
        (wide ? left : top) += thickness;
        (wide ? width : height) -= thickness;
    }
}

void Layout::place(const Child &child, const QRectF &rect, qint32 depth, std::string &path)
{
    if (!isShown(rect.width(), rect.height()))
        return;
    const auto parentLength = path.size();
    if (path != "/")
        path += '/';
    path += m_tree.rawName(child.node);
    const bool isDirectory = m_tree.isDirectory(child.node);
    m_tiles.push_back({ .id = child.node,
        .rect = rect,
        .depth = depth,
        .bytes = child.size,
        .name = m_tree.name(child.node),
        .isDirectory = isDirectory,
        .path = repairedText(path) });
    if (isDirectory) {
        const auto header = depth == 0 ? titleStrip : 0.0;
        const QRectF inner(rect.x() + inset, rect.y() + inset + header, rect.width() - 2 * inset,
            rect.height() - 2 * inset - header);
        step(child.node, inner, depth + 1, path);
    }
    path.resize(parentLength);
}

} // namespace

std::vector<Tile> layout(const Request &request)
{
    return Layout(request).run();
}

} // namespace Quillbrook::Treemap
