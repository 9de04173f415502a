#include "Screens/Advisor/ProposalItemModel.h"

#include "Core/Translation.h"
#include "Scan/Format.h"
#include "Screens/SingleLine.h"

#include <algorithm>

namespace Quillbrook {

void ProposalItemModel::setItems(const QList<StorageItem> &items, const QDateTime &now)
{
    beginResetModel();
    m_items = items;
    m_now = now;
    m_chosen.reset();
    const auto first = std::ranges::find_if(items, &StorageItem::removable);
    if (first != items.end())
        m_chosen = first - items.begin();
    endResetModel();
}

void ProposalItemModel::choose(int row)
{
    if (row < 0 || row >= m_items.size() || !m_items.at(row).removable)
        return;
    m_chosen = row;
    Q_EMIT dataChanged(
        index(0), index(static_cast<int>(m_items.size()) - 1), { static_cast<int>(Role::chosen) });
}

std::optional<StorageItem> ProposalItemModel::chosen() const
{
    return m_chosen ? std::optional(m_items.at(*m_chosen)) : std::nullopt;
}

int ProposalItemModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_items.size());
}

QVariant ProposalItemModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const auto &item = m_items.at(index.row());
    switch (Role(role)) {
    case Role::name:
        return singleLine(item.name);
    case Role::size:
        return Format::bytes(item.bytes);
    case Role::detail:
        return tr("%1 · created %2 · last used %3")
            .arg(translatedTableText(item.detail), Format::age(item.created, m_now),
                Format::age(item.lastModified, m_now));
    case Role::blocked:
        return item.blockedReason ? translatedTableText(*item.blockedReason) : QString();
    case Role::removable:
        return item.removable;
    case Role::chosen:
        return index.row() == m_chosen;
    }
    return {};
}

QHash<int, QByteArray> ProposalItemModel::roleNames() const
{
    return { { int(Role::name), "name" }, { int(Role::size), "size" }, { int(Role::detail), "detail" },
        { int(Role::blocked), "blocked" }, { int(Role::removable), "removable" },
        { int(Role::chosen), "chosen" } };
}

} // namespace Quillbrook
