#include "Screens/Stats/TrendLine.h"

#include "Screens/Theme.h"

#include <QPainter>

#include <algorithm>

namespace Quillbrook {

namespace {

constexpr qreal strokeWidth = 1.6;
constexpr qreal strokeOpacity = 0.6;
constexpr qreal baseWidth = 1;
constexpr double mostPercent = 100;

} // namespace

TrendLine::TrendLine(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
}

void TrendLine::setValues(const QList<double> &values)
{
    if (m_values == values)
        return;
    m_values = values;
    update();
    Q_EMIT valuesChanged();
}

QPolygonF TrendLine::line(const QList<double> &values, const QSizeF &size)
{
    QPolygonF points;
    const auto step = size.width() / static_cast<qreal>(mostValues - 1);
    // Half of the stroke stays inside at both ends.
    const auto top = strokeWidth / 2;
    const auto height = size.height() - baseWidth - strokeWidth;
    const auto first = std::max<qsizetype>(values.size() - mostValues, 0);
    for (auto i = first; i < values.size(); ++i) {
        const auto share = std::clamp(values[i] / mostPercent, 0.0, 1.0);
        points.append(
            { size.width() - static_cast<qreal>(values.size() - 1 - i) * step, top + (1 - share) * height });
    }
    return points;
}

void TrendLine::paint(QPainter *painter)
{
    painter->fillRect(QRectF(0, height() - baseWidth, width(), baseWidth), Theme::hairline());
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(Theme::faded(Theme::accent(), strokeOpacity), strokeWidth, Qt::SolidLine,
        Qt::RoundCap, Qt::RoundJoin));
    painter->drawPolyline(line(m_values, size()));
}

} // namespace Quillbrook
