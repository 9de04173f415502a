#pragma once

// A list model of plain values whose words are ready to be shown, one for each line of a screen. What all
// such lists have in common stands here; a screen's own model adds its name for QML and what only it knows.
//
// A row has an `id` and a `title`, and a `kind` where its list mixes several. Rows of the same kind and id
// are the same thing: new rows of the same things only change their words, and things that came or went are
// put in and taken out where they stand, so that the list neither jumps nor loses the keyboard.

#include <QAbstractListModel>
#include <QList>

#include <algorithm>

namespace Quillbrook {

template <typename Row>
class RowListModel : public QAbstractListModel
{
public:
    enum class Role {
        /// What the line is, a value of the row's `kind`; absent where there is none.
        kind = Qt::UserRole,
        /// The line itself.
        row,
    };

    using QAbstractListModel::QAbstractListModel;

    void setRows(const QList<Row> &rows)
    {
        replaceWhatDiffers(rows);
        for (int row = 0; row < rows.size(); ++row) {
            if (m_rows.at(row) == rows.at(row))
                continue;
            m_rows[row] = rows.at(row);
            Q_EMIT dataChanged(index(row), index(row));
        }
    }

    [[nodiscard]] const QList<Row> &rows() const { return m_rows; }
    /// Null outside the list.
    [[nodiscard]] const Row *at(int row) const
    {
        return row >= 0 && row < m_rows.size() ? &m_rows.at(row) : nullptr;
    }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
    }

    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override
    {
        const auto *line = index.isValid() ? at(index.row()) : nullptr;
        if (!line)
            return {};
        if constexpr (hasKind) {
            if (role == int(Role::kind))
                return int(line->kind);
        }
        if (role == int(Role::row))
            return QVariant::fromValue(*line);
        return role == Qt::DisplayRole ? QVariant(line->title) : QVariant();
    }

    [[nodiscard]] QHash<int, QByteArray> roleNames() const override
    {
        QHash<int, QByteArray> names{ { int(Role::row), "row" } };
        if constexpr (hasKind)
            names.insert(int(Role::kind), "kind");
        return names;
    }

private:
    static constexpr bool hasKind = requires(const Row &row) { row.kind; };

    static bool isSameThing(const Row &one, const Row &other)
    {
        if constexpr (hasKind) {
            if (one.kind != other.kind)
                return false;
        }
        return one.id == other.id;
    }

    /// Leaves the things that both lists begin and end with, and exchanges what stands between them.
    void replaceWhatDiffers(const QList<Row> &rows)
    {
        const auto [oldEnd, newEnd] = std::ranges::mismatch(m_rows, rows, isSameThing);
        const auto same = static_cast<int>(oldEnd - m_rows.begin());
        const auto [oldBegin, newBegin] = std::mismatch(
            m_rows.rbegin(), m_rows.rend() - same, rows.rbegin(), rows.rend() - same, isSameThing);
        const auto tail = static_cast<int>(oldBegin - m_rows.rbegin());
        const auto removed = static_cast<int>(m_rows.size()) - same - tail;
        const auto added = static_cast<int>(rows.size()) - same - tail;
        if (removed > 0) {
            beginRemoveRows({}, same, same + removed - 1);
            m_rows.remove(same, removed);
            endRemoveRows();
        }
        if (added > 0) {
            beginInsertRows({}, same, same + added - 1);
            m_rows.insert(same, added, Row());
            std::copy_n(rows.begin() + same, added, m_rows.begin() + same);
            endInsertRows();
        }
    }

    QList<Row> m_rows;
};

} // namespace Quillbrook
