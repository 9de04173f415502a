#pragma once

// The rows of the sidebar: one for each pane, in order, of which one is selected. Main thread only; the
// content state outlives it.

#include "Core/Pane.h"

#include <QAbstractListModel>
#include <QtQmlIntegration>

namespace Quillbrook {

class ContentState;

class SidebarModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectedRowChanged FINAL)

public:
    enum class Role {
        /// The pane's title.
        title = Qt::UserRole + 1,
        /// Name of its symbol.
        symbol,
        /// The keys that choose it, as a key sequence.
        shortcut,
        /// The same, short, to be read.
        hint,
        isSelected,
    };

    explicit SidebarModel(ContentState &content, QObject *parent = nullptr);

    /// Chooses the pane of a row and lets it take the keyboard; a row that does not exist chooses nothing.
    Q_INVOKABLE void choose(int row);
    /// The same, with the keyboard staying where it is.
    Q_INVOKABLE void walkTo(int row);

    [[nodiscard]] int selectedRow() const;
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void selectedRowChanged();

private:
    void followPane();

    ContentState &m_content;
    Pane m_selected;
};

} // namespace Quillbrook
