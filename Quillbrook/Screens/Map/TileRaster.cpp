#include "Screens/Map/TileRaster.h"

#include <algorithm>
#include <cmath>

namespace Quillbrook::TileRaster {

namespace {

constexpr quint32 opaque = 255;

constexpr quint32 alphaOf(quint32 pixel)
{
    return pixel >> 24;
}

// All four channels of a premultiplied pixel times `share`/255, two channels at a time, rounded.
constexpr quint32 scaled(quint32 pixel, quint32 share)
{
    constexpr quint32 pair = 0x00FF00FF;
    constexpr quint32 half = 0x00800080;
    auto low = (pixel & pair) * share;
    low = ((low + ((low >> 8) & pair) + half) >> 8) & pair;
    auto high = ((pixel >> 8) & pair) * share;
    high = (high + ((high >> 8) & pair) + half) & ~pair;
    return high | low;
}

constexpr quint32 over(quint32 below, quint32 above)
{
    return above + scaled(below, opaque - alphaOf(above));
}

quint32 share(double coverage)
{
    return static_cast<quint32>(qRound(std::clamp(coverage, 0.0, 1.0) * opaque));
}

// A shape in pixels. A pixel's cover follows from the distance of its middle to the outline, negative inside.
class Outline
{
public:
    Outline(const Shape &shape, double scale)
        : m_halfWidth(shape.rect.width() / 2 * scale)
        , m_halfHeight(shape.rect.height() / 2 * scale)
        , m_centreX(shape.rect.center().x() * scale)
        , m_centreY(shape.rect.center().y() * scale)
        , m_radius(shape.radius * scale)
        , m_halfLine(shape.lineWidth / 2 * scale)
        , m_ground(qPremultiply(shape.ground.rgba()))
        , m_line(qPremultiply(shape.line.rgba()))
    {
    }

    [[nodiscard]] int left() const { return static_cast<int>(std::floor(m_centreX - m_halfWidth - reach())); }
    [[nodiscard]] int right() const { return static_cast<int>(std::ceil(m_centreX + m_halfWidth + reach())); }
    [[nodiscard]] int top() const { return static_cast<int>(std::floor(m_centreY - m_halfHeight - reach())); }
    [[nodiscard]] int bottom() const
    {
        return static_cast<int>(std::ceil(m_centreY + m_halfHeight + reach()));
    }
    /// Pixels from any side beyond which only the straight edges are left, and beyond which nothing of the
    /// edge is left.
    [[nodiscard]] int cornerBand() const
    {
        return static_cast<int>(std::ceil(std::max(m_radius, m_halfLine) + reach() + 1));
    }
    [[nodiscard]] int edgeBand() const { return static_cast<int>(std::ceil(2 * reach() + 1)); }

    /// What to lay over the pixel at (x, y).
    [[nodiscard]] quint32 inkAt(int x, int y) const
    {
        const auto dx = std::abs(x + 0.5 - m_centreX) - (m_halfWidth - m_radius);
        const auto dy = std::abs(y + 0.5 - m_centreY) - (m_halfHeight - m_radius);
        const auto corner = dx > 0 && dy > 0 ? std::sqrt(dx * dx + dy * dy) : std::max(dx, dy);
        return inkAtDistance(corner - m_radius);
    }
    /// The same away from the corners: what row y looks like, and what column x looks like.
    [[nodiscard]] quint32 inkOfRow(int y) const
    {
        return inkAtDistance(std::abs(y + 0.5 - m_centreY) - m_halfHeight);
    }
    [[nodiscard]] quint32 inkOfColumn(int x) const
    {
        return inkAtDistance(std::abs(x + 0.5 - m_centreX) - m_halfWidth);
    }

private:
    [[nodiscard]] double reach() const { return m_halfLine + 0.5; }
    [[nodiscard]] quint32 inkAtDistance(double distance) const
    {
        const auto ground = scaled(m_ground, share(0.5 - distance));
        const auto line = std::min(distance + 0.5, m_halfLine) - std::max(distance - 0.5, -m_halfLine);
        return over(ground, scaled(m_line, share(line)));
    }

    double m_halfWidth;
    double m_halfHeight;
    double m_centreX;
    double m_centreY;
    double m_radius;
    double m_halfLine;
    quint32 m_ground;
    quint32 m_line;
};

// Half-open ranges of columns and rows.
struct Range
{
    int from;
    int to;
};

Range clipped(Range range, Range to)
{
    const auto from = std::clamp(range.from, to.from, to.to);
    return { from, std::clamp(range.to, from, to.to) };
}

void fill(quint32 *row, Range columns, quint32 ink)
{
    const auto from = row + columns.from;
    const auto to = row + columns.to;
    if (alphaOf(ink) == opaque)
        std::fill(from, to, ink);
    else if (ink != 0)
        std::transform(from, to, from, [ink](quint32 below) { return over(below, ink); });
}

class Canvas
{
public:
    Canvas(QImage &picture, const Outline &outline)
        : m_pixels(reinterpret_cast<quint32 *>(picture.bits()))
        , m_stride(picture.bytesPerLine() / qsizetype(sizeof(quint32)))
        , m_outline(outline)
        , m_columns(clipped({ outline.left(), outline.right() }, { 0, picture.width() }))
        , m_rows(clipped({ outline.top(), outline.bottom() }, { 0, picture.height() }))
    {
    }

    void draw()
    {
        const auto band = m_outline.cornerBand();
        const auto straight = clipped({ m_outline.top() + band, m_outline.bottom() - band }, m_rows);
        drawCornerRows({ m_rows.from, straight.from });
        drawStraightRows(straight);
        drawCornerRows({ straight.to, m_rows.to });
    }

private:
    [[nodiscard]] quint32 *row(int y) const { return m_pixels + y * m_stride; }
    [[nodiscard]] Range middle(int band) const
    {
        return clipped({ m_outline.left() + band, m_outline.right() - band }, m_columns);
    }

    void drawCornerRows(Range rows)
    {
        const auto same = middle(m_outline.cornerBand());
        for (auto y = rows.from; y < rows.to; ++y) {
            auto *pixels = row(y);
            for (auto x = m_columns.from; x < same.from; ++x)
                pixels[x] = over(pixels[x], m_outline.inkAt(x, y));
            fill(pixels, same, m_outline.inkOfRow(y));
            for (auto x = same.to; x < m_columns.to; ++x)
                pixels[x] = over(pixels[x], m_outline.inkAt(x, y));
        }
    }

    void drawStraightRows(Range rows)
    {
        const auto same = middle(m_outline.edgeBand());
        drawColumns({ m_columns.from, same.from }, rows);
        drawColumns({ same.to, m_columns.to }, rows);
        const auto inside = m_outline.inkOfColumn((same.from + same.to) / 2);
        for (auto y = rows.from; y < rows.to; ++y)
            fill(row(y), same, inside);
    }

    void drawColumns(Range columns, Range rows)
    {
        for (auto x = columns.from; x < columns.to; ++x) {
            const auto ink = m_outline.inkOfColumn(x);
            auto *pixel = row(rows.from) + x;
            for (auto y = rows.from; y < rows.to && ink != 0; ++y, pixel += m_stride)
                *pixel = over(*pixel, ink);
        }
    }

    quint32 *m_pixels;
    qsizetype m_stride;
    const Outline &m_outline;
    Range m_columns;
    Range m_rows;
};

} // namespace

void draw(QImage &picture, const Shape &shape)
{
    const Outline outline(shape, picture.devicePixelRatio());
    Canvas(picture, outline).draw();
}

} // namespace Quillbrook::TileRaster
