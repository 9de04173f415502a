#include "Screens/Map/TreemapPainter.h"

#include "Scan/Format.h"
#include "Screens/Map/TileRaster.h"
#include "Screens/Theme.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

#include <algorithm>

namespace Quillbrook::TreemapPainter {

namespace {

constexpr double tileInset = 0.5;
constexpr double smallestSide = 0.5;
constexpr double largestRadius = 3.0;
constexpr double radiusShare = 0.25;
constexpr double nestedFolderOpacity = 0.55;
constexpr double hairlineOpacity = 0.85;
constexpr double hoverOpacity = 0.65;
constexpr double noticeOpacity = 0.5;

constexpr double ringWidth = 2.0;
constexpr double ringLine = 1.5;
constexpr double ringNeedsSide = 8.0;

constexpr double nameNeedsWidth = 52.0;
constexpr double nameNeedsHeight = 17.0;
constexpr double sizeNeedsHeight = 32.0;
constexpr double labelIndent = 6.0;
constexpr double labelMargin = 3.0;
constexpr double nameMiddle = 9.0;
constexpr double sizeMiddle = 23.0;

constexpr double nameFontSize = 11.0;
constexpr double sizeFontSize = 10.0;
constexpr double noticeFontSize = 13.0;

struct Label
{
    QFont font;
    QColor color;
    double middle;
};

QRectF inset(const QRectF &rect, double by)
{
    return rect.adjusted(by, by, -by, -by);
}

double cornerRadius(const QRectF &rect)
{
    return std::min(std::min(rect.width(), rect.height()) * radiusShare, largestRadius);
}

QColor ground(const Treemap::Tile &tile)
{
    const auto color = Theme::tileColor(pathExtension(tile.name), tile.isDirectory);
    return tile.isDirectory && tile.depth > 0 ? Theme::faded(color, nestedFolderOpacity) : color;
}

void paintGround(QImage &picture, const Treemap::Tile &tile, const QRectF &rect)
{
    TileRaster::draw(picture,
        { .rect = rect,
            .radius = cornerRadius(rect),
            .ground = ground(tile),
            .line = Theme::faded(Theme::hairline(), hairlineOpacity),
            .lineWidth = tile.depth == 0 ? 1.0 : 0.5 });
}

void paintText(QPainter &painter, const QRectF &rect, const QString &text, const Label &label)
{
    const QFontMetricsF metrics(label.font);
    const auto width = rect.width() - labelIndent - labelMargin;
    const auto shown = metrics.elidedText(text, Qt::ElideRight, width);
    const QRectF line(
        rect.left() + labelIndent, rect.top() + label.middle - metrics.height() / 2, width, metrics.height());
    painter.setFont(label.font);
    painter.setPen(label.color);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shown);
}

// Inside the tile and with a light line within, so that it can be told from the mark of the selection.
void paintRing(QPainter &painter, const QRectF &tile)
{
    const auto ring = inset(tile, ringWidth / 2 + tileInset);
    const auto line = inset(tile, ringWidth + tileInset + ringLine / 2);
    painter.setPen(QPen(Theme::accent(), ringWidth));
    painter.drawRoundedRect(ring, cornerRadius(ring), cornerRadius(ring));
    if (line.width() < ringNeedsSide || line.height() < ringNeedsSide)
        return;
    painter.setPen(QPen(Theme::surface(), ringLine));
    painter.drawRoundedRect(line, cornerRadius(line), cornerRadius(line));
}

} // namespace

QString pathExtension(const QString &name)
{
    const auto dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.sliced(dot + 1) : QString();
}

bool showsName(const Treemap::Tile &tile)
{
    return tile.rect.width() > nameNeedsWidth && tile.rect.height() > nameNeedsHeight;
}

bool showsSize(const Treemap::Tile &tile)
{
    return showsName(tile) && tile.rect.height() > sizeNeedsHeight;
}

void paintTiles(QImage &picture, TreemapGeometry::Tiles tiles)
{
    const Label fileName{ Theme::font(nameFontSize), Theme::strong(), nameMiddle };
    const Label folderName{ Theme::font(nameFontSize, QFont::DemiBold), Theme::strong(), nameMiddle };
    const Label size{ Theme::font(sizeFontSize), Theme::label(), sizeMiddle };
    QPainter painter(&picture);
    for (size_t position = 0; position < tiles.size(); ++position) {
        const auto &tile = tiles[position];
        const auto rect = inset(tile.rect, tileInset);
        if (rect.width() <= smallestSide || rect.height() <= smallestSide)
            continue;
        paintGround(picture, tile, rect);
        // Tiles inside a folder are painted over its label: only what they leave free is worth drawing, or
        // shreds of letters would show in the gaps between them.
        const auto room = TreemapGeometry::ownArea(tiles, position).height();
        if (showsName(tile) && room > nameMiddle)
            paintText(painter, rect, tile.name, tile.isDirectory ? folderName : fileName);
        if (showsSize(tile) && room > sizeMiddle)
            paintText(painter, rect, Format::bytes(tile.bytes), size);
    }
}

void paintOutline(QPainter &painter, const QRectF &tile, Outline outline)
{
    const auto rect = inset(tile, tileInset);
    const auto radius = cornerRadius(rect);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    switch (outline) {
    case Outline::hovered:
        painter.setPen(QPen(Theme::faded(Theme::accent(), hoverOpacity), 1.5));
        break;
    case Outline::selected:
        painter.setPen(QPen(Theme::accent(), 2.5));
        break;
    case Outline::focused:
        paintRing(painter, tile);
        return;
    }
    painter.drawRoundedRect(rect, radius, radius);
}

void paintNotice(QPainter &painter, const QRectF &area, const QString &text)
{
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setFont(Theme::font(noticeFontSize));
    painter.setPen(Theme::faded(Theme::body(), noticeOpacity));
    painter.drawText(area, Qt::AlignCenter | Qt::TextWordWrap, text);
}

} // namespace Quillbrook::TreemapPainter
