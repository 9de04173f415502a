#include "Screens/Lists/NodeTableModel.h"

#include "Scan/Format.h"
#include "Screens/SingleLine.h"

namespace Quillbrook {

void NodeTableModel::setRows(const QList<NodeSnapshot> &rows, const QString &home)
{
    if (rows == m_rows && home == m_home)
        return;
    beginResetModel();
    m_rows = rows;
    m_home = home;
    endResetModel();
}

int NodeTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant NodeTableModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const auto &row = m_rows.at(index.row());
    switch (Role(role)) {
    case Role::name:
        return singleLine(row.name);
    case Role::size:
        return Format::bytes(row.bytes);
    case Role::path:
        return singleLine(Format::friendlyPath(row.path, m_home));
    }
    return {};
}

QHash<int, QByteArray> NodeTableModel::roleNames() const
{
    return { { int(Role::name), "name" }, { int(Role::size), "size" }, { int(Role::path), "path" } };
}

} // namespace Quillbrook
