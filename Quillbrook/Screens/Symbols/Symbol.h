#pragma once

// One symbol of the set, scaled to the item's smaller side and tinted. Painted without shaders, so that it
// looks the same with and without a graphics card, at the resolution of the screen it is on.

#include <QColor>
#include <QQuickPaintedItem>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class Symbol : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT

    /// Which of the set; a name that is not in it paints nothing.
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged FINAL)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)

public:
    explicit Symbol(QQuickItem *parent = nullptr);

    [[nodiscard]] const QString &name() const { return m_name; }
    void setName(const QString &name);
    [[nodiscard]] const QColor &color() const { return m_color; }
    void setColor(const QColor &color);

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void nameChanged();
    void colorChanged();

private:
    QString m_name;
    QColor m_color;
};

} // namespace Quillbrook
