#include "Screens/Apps/AppsListModel.h"

#include <algorithm>

namespace Quillbrook {

void AppsListModel::setEntries(const QList<Entry> &entries)
{
    if (!std::ranges::equal(m_entries, entries, {}, &Entry::id, &Entry::id)) {
        beginResetModel();
        m_entries = entries;
        endResetModel();
        return;
    }
    for (int index = 0; index < entries.size(); ++index)
        setRow(index, entries.at(index).row);
}

void AppsListModel::setRow(int index, const QVariant &row)
{
    if (index < 0 || index >= m_entries.size() || m_entries.at(index).row == row)
        return;
    m_entries[index].row = row;
    Q_EMIT dataChanged(this->index(index), this->index(index));
}

QString AppsListModel::idAt(int index) const
{
    return index >= 0 && index < m_entries.size() ? m_entries.at(index).id : QString();
}

int AppsListModel::rowOf(const QString &id) const
{
    const auto found = std::ranges::find(m_entries, id, &Entry::id);
    return found == m_entries.end() ? -1 : static_cast<int>(found - m_entries.begin());
}

int AppsListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_entries.size());
}

QVariant AppsListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || role != int(Role::row))
        return {};
    return m_entries.at(index.row()).row;
}

QHash<int, QByteArray> AppsListModel::roleNames() const
{
    return { { int(Role::row), "row" } };
}

} // namespace Quillbrook
