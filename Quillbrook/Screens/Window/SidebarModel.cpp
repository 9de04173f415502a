#include "Screens/Window/SidebarModel.h"

#include "Screens/Window/ContentState.h"

#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

SidebarModel::SidebarModel(ContentState &content, QObject *parent)
    : QAbstractListModel(parent)
    , m_content(content)
    , m_selected(content.pane())
{
    connect(&m_content, &ContentState::paneChanged, this, &SidebarModel::followPane);
}

void SidebarModel::choose(int row)
{
    if (row >= 0 && row < rowCount())
        m_content.choose(paneTable[static_cast<size_t>(row)].pane);
}

void SidebarModel::walkTo(int row)
{
    if (row >= 0 && row < rowCount())
        m_content.setPane(paneTable[static_cast<size_t>(row)].pane);
}

int SidebarModel::selectedRow() const
{
    return std::to_underlying(m_selected);
}

int SidebarModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(paneTable.size());
}

QVariant SidebarModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const auto &row = paneTable[static_cast<size_t>(index.row())];
    switch (Role{ role }) {
    case Role::title:
        return title(row.pane);
    case Role::symbol:
        return symbol(row.pane);
    case Role::shortcut:
        return u"Ctrl+%1"_s.arg(row.digit);
    case Role::hint:
        return u"^%1"_s.arg(row.digit);
    case Role::isSelected:
        return row.pane == m_selected;
    }
    return {};
}

QHash<int, QByteArray> SidebarModel::roleNames() const
{
    return {
        { std::to_underlying(Role::title), "title" },
        { std::to_underlying(Role::symbol), "symbol" },
        { std::to_underlying(Role::shortcut), "shortcut" },
        { std::to_underlying(Role::hint), "hint" },
        { std::to_underlying(Role::isSelected), "isSelected" },
    };
}

void SidebarModel::followPane()
{
    const auto before = index(selectedRow());
    m_selected = m_content.pane();
    const auto now = index(selectedRow());
    for (const auto &changed : { before, now })
        Q_EMIT dataChanged(changed, changed, { std::to_underlying(Role::isSelected) });
    Q_EMIT selectedRowChanged();
}

} // namespace Quillbrook
