#pragma once

// Looking at a Qt Quick scene as a person does: what is visible, what it is called, what role it has.

#include <QAccessible>
#include <QList>
#include <QPoint>
#include <QQuickItem>
#include <QString>

namespace Quillbrook {

/// All visible items below `item`, parents before children, in the order they stand in the tree.
[[nodiscard]] inline QList<QQuickItem *> visibleItemsBelow(const QQuickItem &item)
{
    QList<QQuickItem *> result;
    for (auto *child : item.childItems()) {
        if (!child->isVisible())
            continue;
        result.append(child);
        result.append(visibleItemsBelow(*child));
    }
    return result;
}

[[nodiscard]] inline QAccessible::Role accessibleRole(QQuickItem *item)
{
    const auto *face = QAccessible::queryAccessibleInterface(item);
    return face ? face->role() : QAccessible::NoRole;
}

/// Empty for an item that is not in the accessibility tree.
[[nodiscard]] inline QString accessibleName(QQuickItem *item)
{
    const auto *face = QAccessible::queryAccessibleInterface(item);
    return face ? face->text(QAccessible::Name) : QString();
}

/// Does what pressing it does for someone who uses the accessibility tree.
inline void pressAccessibly(QQuickItem *item)
{
    QAccessible::queryAccessibleInterface(item)->actionInterface()->doAction(
        QAccessibleActionInterface::pressAction());
}

/// The visible item with this role and name, or nothing.
[[nodiscard]] inline QQuickItem *findAccessible(
    const QQuickItem &root, QAccessible::Role role, const QString &name)
{
    for (auto *item : visibleItemsBelow(root))
        if (accessibleRole(item) == role && accessibleName(item) == name)
            return item;
    return nullptr;
}

[[nodiscard]] inline QPoint centreOf(const QQuickItem &item)
{
    return item.mapToScene(QPointF(item.width() / 2, item.height() / 2)).toPoint();
}

} // namespace Quillbrook
