#include "Core/AppModel.h"
#include "Fatal.h"
#include "RawText.h"
#include "Scan/TreeQueries.h"

#include <QFile>

#include <utility>

namespace Quillbrook {

void AppModel::drillInto(qint32 node)
{
    if (!m_tree)
        return;
    if (!m_tree->isDirectory(node)) {
        setSelection(m_tree->snapshot(node));
        return;
    }
    m_focus = node;
    m_breadcrumb.append(node);
    m_breadcrumbNames.append(m_tree->name(node));
    Q_EMIT focusChanged();
    Q_EMIT breadcrumbChanged();
    setSelection(std::nullopt);
}

void AppModel::popTo(qsizetype position)
{
    if (position < 0)
        fatal("a place before the beginning of the breadcrumb was asked for");
    if (position >= m_breadcrumb.size())
        return;
    if (position + 1 < m_breadcrumb.size()) {
        m_breadcrumb.resize(position + 1);
        m_breadcrumbNames.resize(position + 1);
        m_focus = m_breadcrumb.last();
        Q_EMIT focusChanged();
        Q_EMIT breadcrumbChanged();
    }
    setSelection(std::nullopt);
}

void AppModel::clearFocus()
{
    const bool focusMoves = std::exchange(m_focus, FileTree::noNode) != FileTree::noNode;
    const bool breadcrumbMoves = !m_breadcrumb.isEmpty();
    m_breadcrumb.clear();
    m_breadcrumbNames.clear();
    if (focusMoves)
        Q_EMIT focusChanged();
    if (breadcrumbMoves)
        Q_EMIT breadcrumbChanged();
}

void AppModel::setSelection(const std::optional<NodeSnapshot> &selection)
{
    if (m_selection == selection)
        return;
    m_selection = selection;
    Q_EMIT selectionChanged();
}

void AppModel::setSearchText(const QString &text)
{
    if (m_searchText == text)
        return;
    m_searchText = text;
    Q_EMIT searchTextChanged();
}

void AppModel::setRequestedPane(std::optional<Pane> pane)
{
    if (m_requestedPane == pane)
        return;
    m_requestedPane = pane;
    Q_EMIT requestedPaneChanged();
}

QString AppModel::scanRoot() const
{
    return repairedText(m_scanRoot);
}

void AppModel::setScanRoot(const std::string &path)
{
    if (m_scanRoot == path)
        return;
    m_scanRoot = path;
    Q_EMIT scanRootChanged();
}

QList<NodeSnapshot> AppModel::largestFiles(qsizetype limit) const
{
    return m_tree ? TreeQueries::largestFiles(*m_tree, m_rootNode, limit) : QList<NodeSnapshot>();
}

QList<NodeSnapshot> AppModel::search(const QString &query, qsizetype limit) const
{
    return m_tree ? TreeQueries::search(*m_tree, m_rootNode, query, limit) : QList<NodeSnapshot>();
}

std::string AppModel::rawPath(const NodeSnapshot &snapshot) const
{
    if (m_tree && m_tree->isValid(snapshot.id) && m_tree->path(snapshot.id) == snapshot.path)
        return m_tree->rawPath(snapshot.id);
    return QFile::encodeName(snapshot.path).toStdString();
}

std::string AppModel::rawPath(const Finding &finding) const
{
    const auto node = m_tree ? m_tree->find(finding.path, m_rootNode) : FileTree::noNode;
    return node == FileTree::noNode ? QFile::encodeName(finding.path).toStdString() : m_tree->rawPath(node);
}

} // namespace Quillbrook
