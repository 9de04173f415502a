#include "Screens/Map/TreemapItem.h"

#include "Screens/Map/TreemapAccessible.h"

#include <QAccessible>
#include <QHoverEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <chrono>

namespace Quillbrook {

using namespace std::chrono_literals;
using TreemapGeometry::Direction;
using TreemapPainter::Outline;

TreemapItem::TreemapItem(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    TreemapAccessible::install();
    setAcceptedMouseButtons(Qt::LeftButton);
    setAcceptHoverEvents(true);
    setAntialiasing(true);
    // While a window is being resized there is a layout for every frame; one announcement is enough.
    m_announcement.setSingleShot(true);
    m_announcement.setInterval(200ms);
    connect(&m_announcement, &QTimer::timeout, this, &TreemapItem::announceTiles);
}

void TreemapItem::setMap(MapState *map)
{
    if (m_map == map)
        return;
    if (m_map)
        m_map->disconnect(this);
    m_map = map;
    if (m_map) {
        m_map->setSize(size());
        connect(m_map, &MapState::layoutDue, this, &QQuickItem::polish);
        connect(m_map, &MapState::tilesChanged, this, &TreemapItem::showTiles);
        connect(m_map, &MapState::marksChanged, this, &TreemapItem::showMarks);
        connect(m_map, &MapState::currentChanged, this, &TreemapItem::announceCurrent);
    }
    showTiles();
    polish();
    Q_EMIT mapChanged();
}

void TreemapItem::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
    if (m_map)
        m_map->setSize(newGeometry.size());
}

void TreemapItem::updatePolish()
{
    if (m_map)
        m_map->layoutIfNeeded();
}

void TreemapItem::showTiles()
{
    m_picture = {};
    m_marks = presentMarks();
    setActiveFocusOnTab(m_map && !m_map->tiles().empty());
    // Not without a rectangle: a later update of a part would then narrow this one.
    update(boundingRect().toAlignedRect());
    if (QAccessible::isActive())
        m_announcement.start();
}

QList<TreemapItem::Mark> TreemapItem::presentMarks() const
{
    QList<Mark> marks;
    if (!m_map)
        return marks;
    const auto tiles = m_map->tiles();
    const auto selected = TreemapGeometry::tileOf(tiles, m_map->selected());
    const auto hovered = TreemapGeometry::tileOf(tiles, m_map->hover());
    if (hovered && hovered != selected)
        marks.append({ tiles[*hovered].rect, Outline::hovered });
    if (selected)
        marks.append({ tiles[*selected].rect, Outline::selected });
    if (const auto focused = focusedTile())
        marks.append({ tiles[*focused].rect, Outline::focused });
    return marks;
}

std::optional<size_t> TreemapItem::focusedTile() const
{
    return m_map && hasActiveFocus() ? TreemapGeometry::tileOf(m_map->tiles(), m_map->current())
                                     : std::nullopt;
}

void TreemapItem::showMarks()
{
    const auto marks = presentMarks();
    if (marks == m_marks)
        return;
    repaintAround(m_marks);
    repaintAround(marks);
    m_marks = marks;
}

void TreemapItem::repaintAround(const QList<Mark> &marks)
{
    const auto reach = TreemapPainter::outlineReach;
    for (const auto &mark : marks)
        update(mark.tile.adjusted(-reach, -reach, reach, reach).toAlignedRect());
}

void TreemapItem::paint(QPainter *painter)
{
    if (!m_map)
        return;
    if (m_map->tiles().empty()) {
        TreemapPainter::paintNotice(*painter, boundingRect(), m_map->emptyText());
        return;
    }
    painter->drawImage(QPointF(0, 0), picture(painter->deviceTransform().m11()));
    for (const auto &mark : m_marks)
        TreemapPainter::paintOutline(*painter, mark.tile, mark.outline);
}

const QImage &TreemapItem::picture(double scale)
{
    const auto pixels = (size() * scale).toSize().expandedTo(QSize(1, 1));
    if (m_picture.size() != pixels || m_picture.devicePixelRatio() != scale) {
        m_picture = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
        m_picture.setDevicePixelRatio(scale);
        m_picture.fill(Qt::transparent);
        TreemapPainter::paintTiles(m_picture, m_map->tiles());
    }
    return m_picture;
}

void TreemapItem::hoverEnterEvent(QHoverEvent *event)
{
    if (m_map)
        m_map->hoverAt(event->position());
}

void TreemapItem::hoverMoveEvent(QHoverEvent *event)
{
    if (m_map)
        m_map->hoverAt(event->position());
}

void TreemapItem::hoverLeaveEvent(QHoverEvent *)
{
    if (m_map)
        m_map->hoverLeft();
}

void TreemapItem::mousePressEvent(QMouseEvent *event)
{
    forceActiveFocus(Qt::MouseFocusReason);
    m_pressed = true;
    event->accept();
}

void TreemapItem::mouseReleaseEvent(QMouseEvent *event)
{
    // A double click ends with a release too; by then `m_pressed` is false, so that it does not select as
    // well.
    if (m_map && m_pressed && contains(event->position()))
        m_map->clickAt(event->position());
    m_pressed = false;
}

void TreemapItem::mouseUngrabEvent()
{
    m_pressed = false;
}

void TreemapItem::mouseDoubleClickEvent(QMouseEvent *event)
{
    m_pressed = false;
    if (m_map)
        m_map->doubleClickAt(event->position());
}

void TreemapItem::keyPressEvent(QKeyEvent *event)
{
    const auto modifiers = event->modifiers() & ~Qt::KeypadModifier;
    event->setAccepted(m_map && modifiers == Qt::NoModifier && handleKey(event->key()));
}

bool TreemapItem::handleKey(int key)
{
    switch (key) {
    case Qt::Key_Left:
        m_map->walk(Direction::left);
        return true;
    case Qt::Key_Right:
        m_map->walk(Direction::right);
        return true;
    case Qt::Key_Up:
        m_map->walk(Direction::up);
        return true;
    case Qt::Key_Down:
        m_map->walk(Direction::down);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        m_map->activateCurrent();
        return true;
    case Qt::Key_Space:
        m_map->selectCurrent();
        return true;
    case Qt::Key_Escape:
    case Qt::Key_Backspace:
        return m_map->goUp();
    default:
        return false;
    }
}

void TreemapItem::focusInEvent(QFocusEvent *event)
{
    QQuickPaintedItem::focusInEvent(event);
    if (m_map && event->reason() != Qt::MouseFocusReason)
        m_map->enterWalk();
    showMarks();
    announceCurrent();
}

void TreemapItem::focusOutEvent(QFocusEvent *event)
{
    QQuickPaintedItem::focusOutEvent(event);
    showMarks();
}

void TreemapItem::announceTiles()
{
    QAccessibleEvent event(this, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&event);
}

void TreemapItem::announceCurrent()
{
    const auto focused = focusedTile();
    if (!focused || !QAccessible::isActive())
        return;
    auto *list = QAccessible::queryAccessibleInterface(this);
    if (auto *tile = list ? list->child(static_cast<int>(*focused)) : nullptr) {
        QAccessibleEvent event(tile, QAccessible::Focus);
        QAccessible::updateAccessibility(&event);
    }
}

} // namespace Quillbrook
