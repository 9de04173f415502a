#include "Screens/Lists/NodeTableState.h"

#include "Core/AppModel.h"
#include "Platform/FileRevealer.h"
#include "Platform/HomeFolder.h"

namespace Quillbrook {

NodeTableState::NodeTableState(AppModel &model, QObject *parent)
    : PaneState(parent)
    , m_model(model)
{
    connect(&m_model.scans(), &ScanDriver::phaseChanged, this, &NodeTableState::followTree);
    connect(&m_model.scans(), &ScanDriver::treeChanged, this, &NodeTableState::followTree);
    connect(&m_model.navigation(), &Navigation::selectionChanged, this, &NodeTableState::refreshSelectedRow);
}

void NodeTableState::invalidateRows()
{
    m_stale = true;
    reloadIfNeeded();
}

// The end of a scan tells of several changes one after the other; the rows are fetched at the first of them
// that shows the new tree.
void NodeTableState::followTree()
{
    if (m_source.lock() != m_model.scans().tree())
        invalidateRows();
}

void NodeTableState::reloadIfNeeded()
{
    if (!shown() || !m_stale)
        return;
    m_stale = false;
    m_source = m_model.scans().tree();
    m_rows.setRows(fetch(), m_model.services().kit.home.homeDirectory());
    refreshSelectedRow();
}

void NodeTableState::refreshSelectedRow()
{
    const auto &selection = m_model.navigation().selection();
    const auto row = selection ? static_cast<int>(m_rows.rows().indexOf(*selection)) : -1;
    if (m_selectedRow == row)
        return;
    m_selectedRow = row;
    Q_EMIT selectedRowChanged();
}

void NodeTableState::select(int row)
{
    if (row >= 0 && row < m_rows.rowCount())
        m_model.navigation().setSelection(m_rows.rows().at(row));
}

void NodeTableState::reveal(int row)
{
    if (row >= 0 && row < m_rows.rowCount())
        m_model.services().revealer.reveal(m_model.navigation().rawPath(m_rows.rows().at(row)));
}

} // namespace Quillbrook
