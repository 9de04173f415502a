#pragma once

// The findings of a scan that runs, as a list of titles and sizes, largest first. What arrives is put in
// where it belongs; the rows that are there stay.

#include "Catalogue/Finding.h"

#include <QAbstractListModel>
#include <QList>
#include <QtQmlIntegration>

namespace Quillbrook {

class ArrivingFindingsModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ANONYMOUS

public:
    enum class Role {
        title = Qt::UserRole,
        size,
    };

    using QAbstractListModel::QAbstractListModel;

    void setFindings(const QList<Finding> &findings);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    [[nodiscard]] bool isAmong(const QList<Finding> &findings) const;

    QList<Finding> m_findings;
};

} // namespace Quillbrook
