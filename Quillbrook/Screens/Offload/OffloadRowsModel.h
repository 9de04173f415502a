#pragma once

// Rows of the screen "Move to another drive" as a list model. New rows of the same things in the same order
// only change their words, so that no row loses the keyboard while its copy runs.

#include "Screens/Offload/OffloadRow.h"

#include <QAbstractListModel>
#include <QList>
#include <QtQmlIntegration>

namespace Quillbrook {

class OffloadRowsModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its lists")
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY emptyChanged FINAL)

public:
    using QAbstractListModel::QAbstractListModel;

    void setRows(const QList<OffloadRow> &rows);
    [[nodiscard]] const QList<OffloadRow> &rows() const { return m_rows; }
    [[nodiscard]] bool isEmpty() const { return m_rows.isEmpty(); }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void emptyChanged();

private:
    QList<OffloadRow> m_rows;
};

} // namespace Quillbrook
