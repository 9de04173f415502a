#pragma once

// The messages of the conversation as rows, oldest first. Main thread only; the adviser outlives it.

#include <QAbstractListModel>
#include <QtQmlIntegration>

namespace Quillbrook {

class Advisor;

class MessageModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ANONYMOUS

public:
    enum class Role {
        message = Qt::UserRole,
        fromUser,
    };

    explicit MessageModel(const Advisor &advisor, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    void follow();

    const Advisor &m_advisor;
    qsizetype m_count = 0;
};

} // namespace Quillbrook
