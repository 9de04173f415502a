#include "Screens/Map/TreemapAccessible.h"

#include "Core/Pane.h"
#include "Scan/Format.h"
#include "Screens/Map/TreemapItem.h"
#include "Screens/SingleLine.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QAccessibleObject>
#include <QQuickWindow>

#include <unordered_map>

namespace Quillbrook::TreemapAccessible {

using namespace Qt::StringLiterals;

namespace {

QRect onScreen(const TreemapItem &item, const QRectF &rect)
{
    if (!item.window())
        return {};
    const auto inWindow = item.mapRectToScene(rect).toAlignedRect();
    return { item.window()->mapToGlobal(inWindow.topLeft()), inWindow.size() };
}

// One tile of one layout. It turns invalid when the map is laid out anew.
class TileInterface : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    TileInterface(TreemapItem *item, size_t position)
        : m_item(item)
        , m_position(position)
        , m_revision(item->map()->revision())
    {
    }

    [[nodiscard]] bool isValid() const override
    {
        return m_item && m_item->map() && m_item->map()->revision() == m_revision
            && m_position < m_item->map()->tiles().size();
    }
    [[nodiscard]] QObject *object() const override { return nullptr; }
    [[nodiscard]] QWindow *window() const override { return m_item ? m_item->window() : nullptr; }
    [[nodiscard]] QAccessibleInterface *parent() const override
    {
        return QAccessible::queryAccessibleInterface(m_item.data());
    }
    [[nodiscard]] QAccessibleInterface *child(int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::ListItem; }
    [[nodiscard]] QRect rect() const override { return isValid() ? onScreen(*m_item, tile().rect) : QRect(); }
    void setText(QAccessible::Text, const QString &) override { }
    [[nodiscard]] QString text(QAccessible::Text text) const override;
    [[nodiscard]] QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this)
                                                    : nullptr;
    }

    [[nodiscard]] QStringList actionNames() const override { return { pressAction(), setFocusAction() }; }
    void doAction(const QString &name) override;
    [[nodiscard]] QStringList keyBindingsForAction(const QString &) const override { return {}; }

    [[nodiscard]] size_t position() const { return m_position; }

private:
    [[nodiscard]] const Treemap::Tile &tile() const { return m_item->map()->tiles()[m_position]; }

    QPointer<TreemapItem> m_item;
    size_t m_position;
    quint64 m_revision;
};

QString TileInterface::text(QAccessible::Text text) const
{
    if (!isValid())
        return {};
    switch (text) {
    case QAccessible::Name:
        return u"%1, %2"_s.arg(singleLine(tile().name), Format::bytes(tile().bytes));
    case QAccessible::Description:
        return tile().path;
    default:
        return {};
    }
}

QAccessible::State TileInterface::state() const
{
    QAccessible::State state;
    if (!isValid()) {
        state.invalid = true;
        return state;
    }
    state.focusable = true;
    state.focused = m_item->focusedTile() == m_position;
    state.selectable = true;
    state.selected = m_item->map()->selected() == tile().id;
    return state;
}

void TileInterface::doAction(const QString &name)
{
    if (!isValid())
        return;
    if (name == pressAction()) {
        m_item->map()->activate(m_position);
    } else if (name == setFocusAction()) {
        m_item->map()->standOn(m_position);
        m_item->forceActiveFocus();
    }
}

// The map itself.
class MapInterface : public QAccessibleObject
{
public:
    explicit MapInterface(TreemapItem *item)
        : QAccessibleObject(item)
    {
    }
    ~MapInterface() override { dropChildren(); }

    [[nodiscard]] QWindow *window() const override { return item() ? item()->window() : nullptr; }
    [[nodiscard]] QAccessibleInterface *parent() const override;
    [[nodiscard]] QAccessibleInterface *child(int index) const override;
    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override;
    [[nodiscard]] QAccessibleInterface *focusChild() const override;
    [[nodiscard]] int childCount() const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override;
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::List; }
    [[nodiscard]] QRect rect() const override
    {
        return item() ? onScreen(*item(), item()->boundingRect()) : QRect();
    }
    [[nodiscard]] QString text(QAccessible::Text text) const override;
    [[nodiscard]] QAccessible::State state() const override;

private:
    [[nodiscard]] TreemapItem *item() const { return qobject_cast<TreemapItem *>(object()); }
    void dropChildren() const;

    // The framework owns the children by their ids; these are those made for one layout.
    mutable std::unordered_map<int, QAccessible::Id> m_children;
    mutable quint64 m_revision = 0;
};

QAccessibleInterface *MapInterface::parent() const
{
    if (!item())
        return nullptr;
    auto *root = item()->window() ? item()->window()->contentItem() : nullptr;
    for (auto *above = item()->parentItem(); above && above != root; above = above->parentItem()) {
        if (auto *interface = QAccessible::queryAccessibleInterface(above))
            return interface;
    }
    return QAccessible::queryAccessibleInterface(item()->window());
}

int MapInterface::childCount() const
{
    return item() && item()->map() ? static_cast<int>(item()->map()->tiles().size()) : 0;
}

QAccessibleInterface *MapInterface::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    if (m_revision != item()->map()->revision()) {
        dropChildren();
        m_revision = item()->map()->revision();
    }
    if (const auto known = m_children.find(index); known != m_children.end())
        return QAccessible::accessibleInterface(known->second);
    auto *tile = new TileInterface(item(), static_cast<size_t>(index));
    m_children.emplace(index, QAccessible::registerAccessibleInterface(tile));
    return tile;
}

void MapInterface::dropChildren() const
{
    for (const auto &[index, id] : m_children)
        QAccessible::deleteAccessibleInterface(id);
    m_children.clear();
}

QAccessibleInterface *MapInterface::childAt(int x, int y) const
{
    if (!item() || !item()->map() || !item()->window())
        return nullptr;
    const auto point = item()->mapFromScene(item()->window()->mapFromGlobal(QPoint(x, y)));
    const auto position = TreemapGeometry::tileAt(item()->map()->tiles(), point);
    return position ? child(static_cast<int>(*position)) : nullptr;
}

QAccessibleInterface *MapInterface::focusChild() const
{
    if (!item() || !item()->hasActiveFocus())
        return nullptr;
    const auto focused = item()->focusedTile();
    return focused ? child(static_cast<int>(*focused)) : const_cast<MapInterface *>(this);
}

int MapInterface::indexOfChild(const QAccessibleInterface *child) const
{
    const auto *tile = dynamic_cast<const TileInterface *>(child);
    return tile && tile->isValid() && tile->parent() == this ? static_cast<int>(tile->position()) : -1;
}

QString MapInterface::text(QAccessible::Text text) const
{
    if (!item() || !item()->map())
        return {};
    switch (text) {
    case QAccessible::Name:
        return title(Pane::map);
    case QAccessible::Description:
        return childCount() == 0 ? item()->map()->emptyText() : QString();
    default:
        return {};
    }
}

QAccessible::State MapInterface::state() const
{
    QAccessible::State state;
    if (!item() || !item()->window()) {
        state.invalid = true;
        return state;
    }
    state.invisible = !item()->isVisible();
    state.focusable = childCount() > 0;
    state.focused = item()->hasActiveFocus() && !item()->focusedTile();
    return state;
}

QAccessibleInterface *interfaceFor(const QString &, QObject *object)
{
    auto *item = qobject_cast<TreemapItem *>(object);
    return item ? new MapInterface(item) : nullptr;
}

} // namespace

void install()
{
    static const bool installed = [] {
        QAccessible::installFactory(interfaceFor);
        return true;
    }();
    Q_UNUSED(installed);
}

} // namespace Quillbrook::TreemapAccessible
