#pragma once

// What the map knows: the tiles of the present layout, what the pointer and the keyboard stand on, and what
// a click or a key does. It neither paints nor receives events; `TreemapItem` does both with it. Main thread
// only; the model outlives it.

#include "Screens/Map/TreemapGeometry.h"
#include "Screens/Map/TreemapLayoutKey.h"
#include "Screens/PaneState.h"

#include <QPointF>
#include <QtQmlIntegration>

#include <optional>
#include <vector>

namespace Quillbrook {

class AppModel;

class MapState : public PaneState
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// The panel that names what is under the pointer.
    Q_PROPERTY(bool tooltipVisible READ tooltipVisible NOTIFY tooltipChanged FINAL)
    Q_PROPERTY(QString tooltipName READ tooltipName NOTIFY tooltipChanged FINAL)
    Q_PROPERTY(QString tooltipSize READ tooltipSize NOTIFY tooltipChanged FINAL)
    Q_PROPERTY(QString tooltipPath READ tooltipPath NOTIFY tooltipChanged FINAL)
    /// Its top left corner in the view.
    Q_PROPERTY(QPointF tooltipPosition READ tooltipPosition NOTIFY tooltipChanged FINAL)

public:
    explicit MapState(AppModel &model, QObject *parent = nullptr);

    // Layout.
    [[nodiscard]] QSizeF size() const { return m_size; }
    void setSize(QSizeF size);
    /// Lays out anew exactly when the layout key has changed. Every operation below does this first, so that
    /// none ever works on the tiles of another tree.
    void layoutIfNeeded();
    [[nodiscard]] TreemapGeometry::Tiles tiles() const { return m_tiles; }
    /// Raised with every change of `tiles`, so that what was kept of them is known to be old.
    [[nodiscard]] quint64 revision() const { return m_revision; }
    /// How many times a layout was computed; a map that can show nothing computes none.
    [[nodiscard]] quint64 layoutCount() const { return m_layoutCount; }
    /// The sentence of a map without tiles.
    [[nodiscard]] QString emptyText() const;

    // Pointer.
    /// The node of the innermost tile at a point; -1 where no tile is.
    [[nodiscard]] qint32 hitTest(QPointF point);
    void hoverAt(QPointF point);
    void hoverLeft();
    /// Selects the tile under the pointer; where no tile is the selection is cleared.
    void clickAt(QPointF point);
    /// Goes into the folder or selects the file that the first click of the pair met.
    void doubleClickAt(QPointF point);

    // Keyboard.
    /// Steps to the nearest tile in a direction; without a present tile, to the selected or first one.
    void walk(TreemapGeometry::Direction direction);
    void enterWalk();
    /// Puts the keyboard on a tile.
    void standOn(size_t position);
    void activateCurrent();
    void selectCurrent();
    /// Goes to the enclosing folder and stands on the one just left. False at the top.
    bool goUp();
    /// Goes into the folder or selects the file of a tile.
    void activate(size_t position);
    void select(size_t position);

    [[nodiscard]] qint32 hover() const { return m_hover; }
    [[nodiscard]] QPointF hoverPoint() const { return m_hoverPoint; }
    /// Where the keyboard stands: a node, -1 for none.
    [[nodiscard]] qint32 current() const { return m_current; }
    /// The node of the selection if it lies in the present tree; -1 otherwise.
    [[nodiscard]] qint32 selected() const;

    [[nodiscard]] bool tooltipVisible() const;
    [[nodiscard]] QString tooltipName() const;
    [[nodiscard]] QString tooltipSize() const;
    [[nodiscard]] QString tooltipPath() const;
    [[nodiscard]] QPointF tooltipPosition() const;

Q_SIGNALS:
    /// The layout key may have changed; a layout is due before the next frame.
    void layoutDue();
    void tilesChanged();
    /// What is hovered, selected or current has changed: a redraw, no layout.
    void marksChanged();
    void currentChanged();
    void tooltipChanged();

private:
    struct Click
    {
        qint32 node = FileTree::noNode;
        quint64 revision = 0;
        quint64 generation = 0;
    };

    [[nodiscard]] TreemapLayoutKey presentKey() const;
    [[nodiscard]] bool canLayOut(const TreemapLayoutKey &key) const;
    [[nodiscard]] const Treemap::Tile *hoveredTile() const;
    void setHover(qint32 node);
    void setCurrent(qint32 node);

    AppModel &m_model;
    QSizeF m_size;
    std::optional<TreemapLayoutKey> m_key;
    std::vector<Treemap::Tile> m_tiles;
    quint64 m_revision = 0;
    quint64 m_layoutCount = 0;
    qint32 m_hover = FileTree::noNode;
    QPointF m_hoverPoint;
    bool m_pointerInside = false;
    qint32 m_current = FileTree::noNode;
    std::optional<Click> m_lastClick;
};

} // namespace Quillbrook
