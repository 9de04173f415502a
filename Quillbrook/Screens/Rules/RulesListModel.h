#pragma once

// The lines of the screen "Automatic rules" as a list model. New lines of the same things in the same order
// only change their words, so that the list neither jumps nor loses the keyboard at a switch.

#include "Screens/Rules/RulesRow.h"

#include <QAbstractListModel>
#include <QList>
#include <QtQmlIntegration>

namespace Quillbrook {

class RulesListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ANONYMOUS

public:
    enum class Role {
        /// What the line is, one of `RulesLines`.
        kind = Qt::UserRole,
        /// The line's words, a `RulesRow`.
        row,
    };

    using QAbstractListModel::QAbstractListModel;

    void setRows(const QList<RulesRow> &rows);
    [[nodiscard]] const QList<RulesRow> &rows() const { return m_rows; }
    /// Null outside the list.
    [[nodiscard]] const RulesRow *at(int row) const;
    /// Whether the keyboard stops at a line.
    Q_INVOKABLE [[nodiscard]] bool takesKeyboard(int row) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    QList<RulesRow> m_rows;
};

} // namespace Quillbrook
