#include "Screens/Map/BreadcrumbModel.h"

#include "Core/AppModel.h"
#include "Screens/SingleLine.h"

namespace Quillbrook {

BreadcrumbModel::BreadcrumbModel(AppModel &model, QObject *parent)
    : QAbstractListModel(parent)
    , m_model(model)
    , m_names(model.navigation().breadcrumbNames())
{
    connect(&m_model.navigation(), &Navigation::breadcrumbChanged, this, &BreadcrumbModel::reload);
}

void BreadcrumbModel::reload()
{
    beginResetModel();
    m_names = m_model.navigation().breadcrumbNames();
    endResetModel();
}

int BreadcrumbModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_names.size());
}

QVariant BreadcrumbModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    switch (Role(role)) {
    case Role::name:
        return singleLine(m_names.at(index.row()));
    case Role::last:
        return index.row() == m_names.size() - 1;
    }
    return {};
}

QHash<int, QByteArray> BreadcrumbModel::roleNames() const
{
    return { { int(Role::name), "name" }, { int(Role::last), "last" } };
}

void BreadcrumbModel::popTo(int row)
{
    if (row >= 0)
        m_model.navigation().popTo(row);
}

} // namespace Quillbrook
