#include "Screens/Rules/RulesListModel.h"

#include <algorithm>

namespace Quillbrook {

namespace {

bool isSameThing(const RulesRow &one, const RulesRow &other)
{
    return one.kind == other.kind && one.id == other.id;
}

} // namespace

// What follows the same beginning is put in and taken out, so that the list stays where it is.
void RulesListModel::setRows(const QList<RulesRow> &rows)
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
        m_rows.insert(same, added, RulesRow());
        std::copy_n(rows.begin() + same, added, m_rows.begin() + same);
        endInsertRows();
    }
    for (int row = 0; row < rows.size(); ++row) {
        if (m_rows.at(row) == rows.at(row))
            continue;
        m_rows[row] = rows.at(row);
        Q_EMIT dataChanged(index(row), index(row));
    }
}

const RulesRow *RulesListModel::at(int row) const
{
    return row >= 0 && row < m_rows.size() ? &m_rows.at(row) : nullptr;
}

bool RulesListModel::takesKeyboard(int row) const
{
    const auto *line = at(row);
    return line && line->canAct();
}

int RulesListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant RulesListModel::data(const QModelIndex &index, int role) const
{
    const auto *line = index.isValid() ? at(index.row()) : nullptr;
    if (!line)
        return {};
    switch (Role(role)) {
    case Role::kind:
        return int(line->kind);
    case Role::row:
        return QVariant::fromValue(*line);
    }
    return role == Qt::DisplayRole ? QVariant(line->title) : QVariant();
}

QHash<int, QByteArray> RulesListModel::roleNames() const
{
    return { { int(Role::kind), "kind" }, { int(Role::row), "row" } };
}

} // namespace Quillbrook
