#include "Screens/Map/MapState.h"

#include "Core/AppModel.h"
#include "Platform/HomeFolder.h"
#include "Scan/Format.h"
#include "Screens/SingleLine.h"

#include <algorithm>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr double smallestView = 10.0;
constexpr int layoutDepth = 5;
constexpr double layoutMinimumSide = 3.0;

constexpr double tooltipRight = 14.0;
constexpr double tooltipMargin = 8.0;
constexpr double tooltipRoom = 330.0;
constexpr double tooltipBelow = 18.0;
constexpr double tooltipAbove = 78.0;
constexpr double bottomBand = 90.0;

NodeSnapshot snapshotOf(const Treemap::Tile &tile)
{
    return { .id = tile.id,
        .name = tile.name,
        .path = tile.path,
        .bytes = tile.bytes,
        .isDirectory = tile.isDirectory };
}

} // namespace

MapState::MapState(AppModel &model, QObject *parent)
    : PaneState(parent)
    , m_model(model)
{
    for (const auto signal :
        { &ScanDriver::phaseChanged, &ScanDriver::treeChanged, &ScanDriver::treeGenerationChanged })
        connect(&m_model.scans(), signal, this, &MapState::layoutDue);
    connect(&m_model.navigation(), &Navigation::focusChanged, this, &MapState::layoutDue);
    connect(&m_model.navigation(), &Navigation::selectionChanged, this, &MapState::marksChanged);
}

void MapState::setSize(QSizeF size)
{
    if (m_size == size)
        return;
    m_size = size;
    Q_EMIT layoutDue();
}

TreemapLayoutKey MapState::presentKey() const
{
    return { .size = m_size,
        .focus = m_model.navigation().focus(),
        .phase = m_model.scans().phase(),
        .generation = m_model.scans().treeGeneration() };
}

bool MapState::canLayOut(const TreemapLayoutKey &key) const
{
    return m_model.scans().tree() && key.focus >= 0 && key.size.width() > smallestView
        && key.size.height() > smallestView;
}

void MapState::layoutIfNeeded()
{
    const auto key = presentKey();
    if (m_key == key)
        return;
    m_key = key;
    m_tiles.clear();
    if (canLayOut(key)) {
        m_tiles = Treemap::layout({ .tree = *m_model.scans().tree(),
            .node = key.focus,
            .in = QRectF(QPointF(0, 0), key.size),
            .maximumDepth = layoutDepth,
            .minimumTileSide = layoutMinimumSide });
        ++m_layoutCount;
    }
    ++m_revision;
    Q_EMIT tilesChanged();
    if (!TreemapGeometry::tileOf(m_tiles, m_current))
        setCurrent(FileTree::noNode);
    // The tile under a pointer that rests is another one now.
    if (m_pointerInside)
        hoverAt(m_hoverPoint);
}

QString MapState::emptyText() const
{
    if (m_model.scans().phase().kind == Phase::Kind::scanning)
        return tr("Measuring…");
    return tr("Scan this Mac to see what is using it.");
}

qint32 MapState::hitTest(QPointF point)
{
    layoutIfNeeded();
    const auto position = TreemapGeometry::tileAt(m_tiles, point);
    return position ? m_tiles[*position].id : FileTree::noNode;
}

void MapState::hoverAt(QPointF point)
{
    m_hoverPoint = point;
    m_pointerInside = true;
    setHover(hitTest(point));
    Q_EMIT tooltipChanged();
}

void MapState::hoverLeft()
{
    m_pointerInside = false;
    setHover(FileTree::noNode);
    Q_EMIT tooltipChanged();
}

void MapState::setHover(qint32 node)
{
    if (m_hover == node)
        return;
    m_hover = node;
    Q_EMIT marksChanged();
}

void MapState::clickAt(QPointF point)
{
    layoutIfNeeded();
    const auto position = TreemapGeometry::tileAt(m_tiles, point);
    m_lastClick = Click{ .node = position ? m_tiles[*position].id : FileTree::noNode,
        .revision = m_revision,
        .generation = m_model.scans().treeGeneration() };
    if (position) {
        setCurrent(m_tiles[*position].id);
        m_model.navigation().setSelection(snapshotOf(m_tiles[*position]));
    } else {
        m_model.navigation().setSelection(std::nullopt);
    }
}

void MapState::doubleClickAt(QPointF point)
{
    auto node = hitTest(point);
    // The first click may have brought the selection bar, and with it a smaller map: what the person pressed
    // twice is what lay under the pointer the first time.
    if (m_lastClick && m_lastClick->revision != m_revision
        && m_lastClick->generation == m_model.scans().treeGeneration())
        node = m_lastClick->node;
    m_lastClick.reset();
    if (node != FileTree::noNode)
        m_model.navigation().drillInto(node);
}

void MapState::walk(TreemapGeometry::Direction direction)
{
    layoutIfNeeded();
    const auto position = TreemapGeometry::tileOf(m_tiles, m_current);
    if (!position) {
        enterWalk();
        return;
    }
    if (const auto next = TreemapGeometry::neighbour(m_tiles, *position, direction))
        setCurrent(m_tiles[*next].id);
}

void MapState::enterWalk()
{
    layoutIfNeeded();
    if (m_tiles.empty() || TreemapGeometry::tileOf(m_tiles, m_current))
        return;
    const auto position = TreemapGeometry::tileOf(m_tiles, selected());
    setCurrent(m_tiles[position.value_or(0)].id);
}

void MapState::standOn(size_t position)
{
    if (position < m_tiles.size())
        setCurrent(m_tiles[position].id);
}

void MapState::activateCurrent()
{
    layoutIfNeeded();
    if (const auto position = TreemapGeometry::tileOf(m_tiles, m_current))
        activate(*position);
}

void MapState::selectCurrent()
{
    layoutIfNeeded();
    if (const auto position = TreemapGeometry::tileOf(m_tiles, m_current))
        select(*position);
}

bool MapState::goUp()
{
    if (m_model.navigation().breadcrumb().size() < 2)
        return false;
    const auto left = m_model.navigation().focus();
    m_model.navigation().popTo(m_model.navigation().breadcrumb().size() - 2);
    layoutIfNeeded();
    if (TreemapGeometry::tileOf(m_tiles, left))
        setCurrent(left);
    return true;
}

void MapState::activate(size_t position)
{
    if (position < m_tiles.size())
        m_model.navigation().drillInto(m_tiles[position].id);
}

void MapState::select(size_t position)
{
    if (position < m_tiles.size())
        m_model.navigation().setSelection(snapshotOf(m_tiles[position]));
}

void MapState::setCurrent(qint32 node)
{
    if (m_current == node)
        return;
    m_current = node;
    Q_EMIT currentChanged();
    Q_EMIT marksChanged();
}

qint32 MapState::selected() const
{
    if (!m_model.navigation().selection())
        return FileTree::noNode;
    const auto position = TreemapGeometry::tileOf(m_tiles, m_model.navigation().selection()->id);
    const bool sameItem = position && m_tiles[*position].path == m_model.navigation().selection()->path;
    return sameItem ? m_model.navigation().selection()->id : FileTree::noNode;
}

const Treemap::Tile *MapState::hoveredTile() const
{
    const auto position = TreemapGeometry::tileOf(m_tiles, m_hover);
    return position ? &m_tiles[*position] : nullptr;
}

bool MapState::tooltipVisible() const
{
    return hoveredTile() != nullptr;
}

QString MapState::tooltipName() const
{
    const auto *tile = hoveredTile();
    return tile ? singleLine(tile->name) : QString();
}

QString MapState::tooltipSize() const
{
    const auto *tile = hoveredTile();
    return tile ? Format::bytes(tile->bytes) : QString();
}

QString MapState::tooltipPath() const
{
    const auto *tile = hoveredTile();
    if (!tile)
        return {};
    const auto home = m_model.services().kit.home.homeDirectory();
    return singleLine(Format::friendlyPath(tile->path, home));
}

QPointF MapState::tooltipPosition() const
{
    const auto rightmost = std::max(m_size.width() - tooltipRoom, tooltipMargin);
    const auto x = std::min(std::max(m_hoverPoint.x() + tooltipRight, tooltipMargin), rightmost);
    const bool nearBottom = m_hoverPoint.y() > m_size.height() - bottomBand;
    return { x, nearBottom ? m_hoverPoint.y() - tooltipAbove : m_hoverPoint.y() + tooltipBelow };
}

} // namespace Quillbrook
