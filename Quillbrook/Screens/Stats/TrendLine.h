#pragma once

// A figure's last two minutes as a small line, from 0 to 100 percent, the newest at the right. Painted
// without shaders, like the symbols.

#include <QColor>
#include <QList>
#include <QQuickPaintedItem>
#include <QtQmlIntegration>

namespace Quillbrook {

class TrendLine : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT

    /// Percents, the oldest first.
    Q_PROPERTY(QList<double> values READ values WRITE setValues NOTIFY valuesChanged FINAL)

public:
    /// So many are shown, one a second.
    static constexpr qsizetype mostValues = 120;

    explicit TrendLine(QQuickItem *parent = nullptr);

    [[nodiscard]] const QList<double> &values() const { return m_values; }
    void setValues(const QList<double> &values);

    /// Where the line goes in an area of that size.
    [[nodiscard]] static QPolygonF line(const QList<double> &values, const QSizeF &size);

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void valuesChanged();

private:
    QList<double> m_values;
};

} // namespace Quillbrook
