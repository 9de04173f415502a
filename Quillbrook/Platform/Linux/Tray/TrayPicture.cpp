#include "Platform/Linux/Tray/TrayPicture.h"

#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <algorithm>
#include <cmath>

namespace Quillbrook::TrayPicture {

namespace {

// From these sizes on there is room for more than the level: rows of tiles, and the quill.
constexpr int leastWithRows = 22;
constexpr int leastWithQuill = 32;

QColor ground()
{
    return { 0xdf, 0xe7, 0xfb };
}

/// A lighter shade of the tone, for the tiles beside each other.
QColor paler(const QColor &tone)
{
    return tone.lighter(118);
}

/// The quill of the program's mark, in a square of 32 units.
QPainterPath quill()
{
    QPainterPath path({ 26, 4 });
    path.cubicTo(17, 4.5, 10, 10, 8.5, 18);
    path.lineTo(6, 27);
    path.lineTo(11, 22);
    path.cubicTo(17, 22.5, 21.5, 20, 23, 16);
    path.lineTo(20.5, 15.8);
    path.cubicTo(23.5, 14, 26, 9.5, 26, 4);
    path.closeSubpath();
    return path;
}

/// What is used, from the bottom up, as tiles with seams of the ground between them.
void fill(QPainter &painter, const QRectF &disk, const QColor &tone, double share, bool hasRows)
{
    const auto top = disk.bottom() - share * disk.height();
    const QRectF used(disk.left(), top, disk.width(), disk.bottom() - top);
    const auto seam = std::max(1.0, std::round(disk.width() / 32));
    const auto middle = std::round(disk.center().x() - seam / 2);
    painter.fillRect(used, tone);
    painter.fillRect(QRectF(disk.left(), top, middle - disk.left(), used.height()), paler(tone));
    painter.fillRect(QRectF(middle, top, seam, used.height()), ground());
    if (!hasRows)
        return;
    const auto right = middle + seam;
    const QRectF leftRow(disk.left(), std::round(disk.height() * 0.68), middle - disk.left(), seam);
    const QRectF rightRow(right, std::round(disk.height() * 0.45), disk.right() - right, seam);
    painter.fillRect(leftRow.intersected(used), ground());
    painter.fillRect(rightRow.intersected(used), ground());
}

} // namespace

Content contentOf(double usedShare, bool isDanger)
{
    const auto share = std::isnan(usedShare) ? 0.0 : std::clamp(usedShare, 0.0, 1.0);
    return { .step = static_cast<int>(std::lround(share * steps)), .isDanger = isDanger };
}

QColor tone(bool isDanger)
{
    return isDanger ? QColor(0xd1, 0x36, 0x29) : QColor(0x3f, 0x66, 0xd6);
}

QImage draw(const Content &content, int size)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto ring = std::max(1.0, size / 16.0);
    const QRectF disk(ring / 2, ring / 2, size - ring, size - ring);
    const auto colour = tone(content.isDanger);

    QPainterPath circle;
    circle.addEllipse(disk);
    painter.fillPath(circle, ground());
    painter.save();
    painter.setClipPath(circle);
    fill(painter, disk, colour, static_cast<double>(content.step) / steps, size >= leastWithRows);
    painter.restore();

    if (size >= leastWithQuill) {
        painter.save();
        // Small, in the middle of the upper half, so that the level is seen beside it.
        painter.translate(size * 0.27, size * 0.16);
        painter.scale(size / 64.0, size / 64.0);
        const auto shape = quill();
        painter.strokePath(shape, QPen(colour, 7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.fillPath(shape, Qt::white);
        painter.restore();
    }
    painter.strokePath(circle, QPen(colour, ring));
    painter.end();
    return image.convertToFormat(QImage::Format_ARGB32);
}

QList<QImage> drawAll(const Content &content)
{
    QList<QImage> images;
    for (const auto size : sizes)
        images.append(draw(content, size));
    return images;
}

} // namespace Quillbrook::TrayPicture
