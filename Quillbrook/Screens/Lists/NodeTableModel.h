#pragma once

// Rows of files and folders for the lists: name, size and where it lies. It holds snapshots, so that the rows
// stay what they are while a new scan replaces the tree.

#include "Scan/FileTree.h"

#include <QAbstractListModel>
#include <QList>
#include <QtQmlIntegration>

namespace Quillbrook {

class NodeTableModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ANONYMOUS

public:
    enum class Role {
        /// As one line.
        name = Qt::UserRole,
        size,
        /// Shortened for reading, as one line.
        path,
    };

    using QAbstractListModel::QAbstractListModel;

    /// `home` is the folder that paths are shortened by.
    void setRows(const QList<NodeSnapshot> &rows, const QString &home);
    [[nodiscard]] const QList<NodeSnapshot> &rows() const { return m_rows; }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    QList<NodeSnapshot> m_rows;
    QString m_home;
};

} // namespace Quillbrook
