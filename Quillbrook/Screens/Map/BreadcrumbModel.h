#pragma once

// The way from the scanned folder down to the one that the map shows, one row a folder. Main
// thread only; the model outlives it.

#include <QAbstractListModel>
#include <QStringList>
#include <QtQmlIntegration>

namespace Quillbrook {

class AppModel;

class BreadcrumbModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

public:
    enum class Role {
        name = Qt::UserRole,
        /// The folder that the map shows.
        last,
    };

    explicit BreadcrumbModel(AppModel &model, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// Back to the folder of a row.
    Q_INVOKABLE void popTo(int row);

private:
    void reload();

    AppModel &m_model;
    // A copy: the rows must not change before the views have been told.
    QStringList m_names;
};

} // namespace Quillbrook
