#pragma once

// What the two lists of files share: their rows, the row that is selected, and what a click and the button
// "Show" do. A list says what its rows are by overriding `fetch`. Main thread only; the model outlives it.

#include "Screens/Lists/NodeTableModel.h"
#include "Screens/PaneState.h"

#include <QtQmlIntegration>

#include <memory>

namespace Quillbrook {

class AppModel;

class NodeTableState : public PaneState
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    Q_PROPERTY(Quillbrook::NodeTableModel *rows READ rows CONSTANT FINAL)
    /// The sentence of a list without rows.
    Q_PROPERTY(QString emptyMessage READ emptyMessage NOTIFY emptyMessageChanged FINAL)
    /// The row of the selected item; -1 when the selection is not in the list.
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectedRowChanged FINAL)

public:
    explicit NodeTableState(AppModel &model, QObject *parent = nullptr);

    [[nodiscard]] NodeTableModel *rows() { return &m_rows; }
    [[nodiscard]] virtual QString emptyMessage() const = 0;
    [[nodiscard]] int selectedRow() const { return m_selectedRow; }

    /// Makes a row's item the selection.
    Q_INVOKABLE void select(int row);
    /// Shows a row's item in the file manager.
    Q_INVOKABLE void reveal(int row);

Q_SIGNALS:
    void emptyMessageChanged();
    void selectedRowChanged();

protected:
    /// Rows are kept up to date only while the list is shown.
    void appear() override { reloadIfNeeded(); }
    /// The rows that the list should have now.
    [[nodiscard]] virtual QList<NodeSnapshot> fetch() const = 0;
    /// To be called when `fetch` would give other rows than before.
    void invalidateRows();
    [[nodiscard]] AppModel &model() const { return m_model; }

private:
    void followTree();
    void reloadIfNeeded();
    void refreshSelectedRow();

    AppModel &m_model;
    NodeTableModel m_rows;
    /// The tree that the rows were taken from, without holding it.
    std::weak_ptr<const FileTree> m_source;
    bool m_stale = true;
    int m_selectedRow = -1;
};

} // namespace Quillbrook
