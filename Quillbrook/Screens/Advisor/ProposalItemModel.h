#pragma once

// The items of a proposal as rows, with the one that is chosen. Main thread only.

#include "Catalogue/StorageItem.h"

#include <QAbstractListModel>
#include <QDateTime>
#include <QList>
#include <QtQmlIntegration>

#include <optional>

namespace Quillbrook {

class ProposalItemModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ANONYMOUS

public:
    enum class Role {
        name = Qt::UserRole,
        size,
        /// What it is, and since when.
        detail,
        /// Why it can't be chosen; empty where it can.
        blocked,
        removable,
        chosen,
    };

    using QAbstractListModel::QAbstractListModel;

    /// Of a new proposal: the first that may be chosen, is. Ages are counted up to `now`.
    void setItems(const QList<StorageItem> &items, const QDateTime &now);
    /// Nothing for a row that may not be chosen.
    void choose(int row);
    /// The item that is chosen, if any may be.
    [[nodiscard]] std::optional<StorageItem> chosen() const;
    [[nodiscard]] const QList<StorageItem> &items() const { return m_items; }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    QList<StorageItem> m_items;
    QDateTime m_now;
    /// By its row, since names that are not UTF-8 may give two items one id.
    std::optional<qsizetype> m_chosen;
};

} // namespace Quillbrook
