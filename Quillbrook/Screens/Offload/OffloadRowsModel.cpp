#include "Screens/Offload/OffloadRowsModel.h"

#include <algorithm>

namespace Quillbrook {

namespace {

constexpr int rowRole = Qt::UserRole;

} // namespace

void OffloadRowsModel::setRows(const QList<OffloadRow> &rows)
{
    if (!std::ranges::equal(m_rows, rows, {}, &OffloadRow::id, &OffloadRow::id)) {
        const bool wasEmpty = isEmpty();
        beginResetModel();
        m_rows = rows;
        endResetModel();
        if (wasEmpty != isEmpty())
            Q_EMIT emptyChanged();
        return;
    }
    for (int row = 0; row < rows.size(); ++row) {
        if (m_rows.at(row) == rows.at(row))
            continue;
        m_rows[row] = rows.at(row);
        Q_EMIT dataChanged(index(row), index(row));
    }
}

int OffloadRowsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant OffloadRowsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const auto &row = m_rows.at(index.row());
    if (role == rowRole)
        return QVariant::fromValue(row);
    return role == Qt::DisplayRole ? QVariant(row.title) : QVariant();
}

QHash<int, QByteArray> OffloadRowsModel::roleNames() const
{
    return { { rowRole, "row" } };
}

} // namespace Quillbrook
