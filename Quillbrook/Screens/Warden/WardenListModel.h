#pragma once

// The lines of the screen "Free up space" as a list model. New lines of the same things in the same order
// only change their words, so that the list neither jumps nor loses the keyboard when a tick is set.

#include "Screens/Warden/WardenRow.h"

#include <QAbstractListModel>
#include <QList>
#include <QtQmlIntegration>

namespace Quillbrook {

class WardenListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ANONYMOUS

public:
    enum class Role {
        /// What the line is, one of `WardenLines`.
        kind = Qt::UserRole,
        /// The line's words, a `WardenRow`.
        row,
    };

    using QAbstractListModel::QAbstractListModel;

    void setRows(const QList<WardenRow> &rows);
    [[nodiscard]] const QList<WardenRow> &rows() const { return m_rows; }
    /// Absent outside the list.
    [[nodiscard]] const WardenRow *at(int row) const;
    /// Whether the keyboard stops at a line.
    Q_INVOKABLE [[nodiscard]] bool takesKeyboard(int row) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    QList<WardenRow> m_rows;
};

} // namespace Quillbrook
