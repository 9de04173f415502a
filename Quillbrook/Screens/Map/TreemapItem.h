#pragma once

// The map as one item of the scene: paints the tiles of a `MapState`, tells it what the pointer and the
// keyboard do, and shows the tiles to assistive technology. The tiles are painted once for each layout into
// a picture; hovering, selecting and walking only draw that picture and their marks again.

#include "Screens/Map/MapState.h"
#include "Screens/Map/TreemapPainter.h"

#include <QImage>
#include <QPointer>
#include <QQuickPaintedItem>
#include <QTimer>

namespace Quillbrook {

class TreemapItem : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(Quillbrook::MapState *map READ map WRITE setMap NOTIFY mapChanged REQUIRED FINAL)

public:
    explicit TreemapItem(QQuickItem *parent = nullptr);

    [[nodiscard]] MapState *map() const { return m_map; }
    void setMap(MapState *map);

    void paint(QPainter *painter) override;

    /// Where the keyboard's ring stands, if it shows.
    [[nodiscard]] std::optional<size_t> focusedTile() const;

Q_SIGNALS:
    void mapChanged();

protected:
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void updatePolish() override;
    void hoverEnterEvent(QHoverEvent *event) override;
    void hoverMoveEvent(QHoverEvent *event) override;
    void hoverLeaveEvent(QHoverEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseUngrabEvent() override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    struct Mark
    {
        QRectF tile;
        TreemapPainter::Outline outline;

        bool operator==(const Mark &) const = default;
    };

    [[nodiscard]] QList<Mark> presentMarks() const;
    void showTiles();
    void showMarks();
    void repaintAround(const QList<Mark> &marks);
    void announceTiles();
    void announceCurrent();
    [[nodiscard]] const QImage &picture(double scale);
    bool handleKey(int key);

    QPointer<MapState> m_map;
    QImage m_picture;
    QList<Mark> m_marks;
    bool m_pressed = false;
    QTimer m_announcement;
};

} // namespace Quillbrook
