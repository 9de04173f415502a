#include "Screens/Symbols/Symbol.h"

#include "Screens/Symbols/SymbolPaths.h"
#include "Screens/Theme.h"

#include <QPainter>

#include <algorithm>

namespace Quillbrook {

Symbol::Symbol(QQuickItem *parent)
    : QQuickPaintedItem(parent)
    , m_color(Theme::label())
{
    setAntialiasing(true);
    setImplicitSize(SymbolPaths::gridSide, SymbolPaths::gridSide);
}

void Symbol::setName(const QString &name)
{
    if (m_name == name)
        return;
    m_name = name;
    update();
    Q_EMIT nameChanged();
}

void Symbol::setColor(const QColor &color)
{
    if (m_color == color)
        return;
    m_color = color;
    update();
    Q_EMIT colorChanged();
}

void Symbol::paint(QPainter *painter)
{
    const auto &outline = SymbolPaths::outline(m_name);
    const auto scale = std::min(width(), height()) / SymbolPaths::gridSide;
    painter->setRenderHint(QPainter::Antialiasing);
    painter->translate(
        (width() - SymbolPaths::gridSide * scale) / 2, (height() - SymbolPaths::gridSide * scale) / 2);
    painter->scale(scale, scale);
    painter->strokePath(
        outline.stroked, QPen(m_color, SymbolPaths::strokeWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->fillPath(outline.filled, m_color);
}

} // namespace Quillbrook
