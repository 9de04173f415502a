#pragma once

// A list of rows of one kind. New rows of the same things in the same order only change their words, so that
// the list neither jumps nor loses the keyboard.

#include <QAbstractListModel>
#include <QList>
#include <QString>
#include <QVariant>
#include <QtQmlIntegration>

namespace Quillbrook {

class AppsListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

public:
    enum class Role {
        /// The row's words, a value of its own kind.
        row = Qt::UserRole,
    };

    struct Entry
    {
        /// What the row is about.
        QString id{};
        QVariant row{};
    };

    using QAbstractListModel::QAbstractListModel;

    void setEntries(const QList<Entry> &entries);
    /// Changes the words of one row.
    void setRow(int index, const QVariant &row);
    /// Empty outside the list.
    [[nodiscard]] Q_INVOKABLE QString idAt(int index) const;
    /// -1 where nothing has that id.
    [[nodiscard]] Q_INVOKABLE int rowOf(const QString &id) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    QList<Entry> m_entries;
};

} // namespace Quillbrook
