#include "Screens/Advisor/MessageModel.h"

#include "Advisor/Advisor.h"

namespace Quillbrook {

MessageModel::MessageModel(const Advisor &advisor, QObject *parent)
    : QAbstractListModel(parent)
    , m_advisor(advisor)
    , m_count(advisor.messages().size())
{
    connect(&advisor, &Advisor::messagesChanged, this, &MessageModel::follow);
}

// Messages are added at the end, or all go.
void MessageModel::follow()
{
    const auto count = m_advisor.messages().size();
    if (count <= m_count) {
        beginResetModel();
        m_count = count;
        endResetModel();
        return;
    }
    beginInsertRows({}, static_cast<int>(m_count), static_cast<int>(count) - 1);
    m_count = count;
    endInsertRows();
}

int MessageModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_count);
}

QVariant MessageModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const auto &message = m_advisor.messages().at(index.row());
    switch (Role(role)) {
    case Role::message:
        return message.text;
    case Role::fromUser:
        return message.fromUser;
    }
    return {};
}

QHash<int, QByteArray> MessageModel::roleNames() const
{
    return { { int(Role::message), "message" }, { int(Role::fromUser), "fromUser" } };
}

} // namespace Quillbrook
