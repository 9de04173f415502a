#include "Screens/Warden/WardenListModel.h"

#include <algorithm>

namespace Quillbrook {

namespace {

bool isSameThing(const WardenRow &one, const WardenRow &other)
{
    return one.kind == other.kind && one.id == other.id;
}

} // namespace

void WardenListModel::setRows(const QList<WardenRow> &rows)
{
    if (!std::ranges::equal(m_rows, rows, isSameThing)) {
        beginResetModel();
        m_rows = rows;
        endResetModel();
        return;
    }
    for (int row = 0; row < rows.size(); ++row) {
        if (m_rows.at(row) == rows.at(row))
            continue;
        m_rows[row] = rows.at(row);
        Q_EMIT dataChanged(index(row), index(row));
    }
}

const WardenRow *WardenListModel::at(int row) const
{
    return row >= 0 && row < m_rows.size() ? &m_rows.at(row) : nullptr;
}

bool WardenListModel::takesKeyboard(int row) const
{
    const auto *line = at(row);
    return line && (line->kind == WardenLines::Kind::Finding || line->kind == WardenLines::Kind::Held);
}

int WardenListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant WardenListModel::data(const QModelIndex &index, int role) const
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

QHash<int, QByteArray> WardenListModel::roleNames() const
{
    return { { int(Role::kind), "kind" }, { int(Role::row), "row" } };
}

} // namespace Quillbrook
