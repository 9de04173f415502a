#include "Core/Navigation.h"

#include "Core/ScanDriver.h"
#include "Fatal.h"
#include "Scan/TreeQueries.h"

#include <QFile>

#include <utility>

namespace Quillbrook {

Navigation::Navigation(const ScanDriver &scans, QObject *parent)
    : QObject(parent)
    , m_scans(scans)
{
}

void Navigation::drillInto(qint32 node)
{
    const auto &tree = m_scans.tree();
    if (!tree)
        return;
    if (!tree->isDirectory(node)) {
        setSelection(tree->snapshot(node));
        return;
    }
    m_focus = node;
    m_breadcrumb.append(node);
    m_breadcrumbNames.append(tree->name(node));
    Q_EMIT focusChanged();
    Q_EMIT breadcrumbChanged();
    setSelection(std::nullopt);
}

void Navigation::popTo(qsizetype position)
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

// Everything is set before anyone is told.
void Navigation::enterTree()
{
    m_focus = m_scans.rootNode();
    m_breadcrumb = { m_focus };
    m_breadcrumbNames = { m_scans.tree()->name(m_focus) };
    Q_EMIT focusChanged();
    Q_EMIT breadcrumbChanged();
}

void Navigation::leaveTree()
{
    const bool selectionChanges = std::exchange(m_selection, std::nullopt).has_value();
    const bool focusChanges = std::exchange(m_focus, FileTree::noNode) != FileTree::noNode;
    const bool breadcrumbChanges = !std::exchange(m_breadcrumb, {}).isEmpty();
    m_breadcrumbNames.clear();
    if (selectionChanges)
        Q_EMIT selectionChanged();
    if (focusChanges)
        Q_EMIT focusChanged();
    if (breadcrumbChanges)
        Q_EMIT breadcrumbChanged();
}

void Navigation::setSelection(const std::optional<NodeSnapshot> &selection)
{
    if (m_selection == selection)
        return;
    m_selection = selection;
    Q_EMIT selectionChanged();
}

void Navigation::setSearchText(const QString &text)
{
    if (m_searchText == text)
        return;
    m_searchText = text;
    Q_EMIT searchTextChanged();
}

void Navigation::setRequestedPane(std::optional<Pane> pane)
{
    if (m_requestedPane == pane)
        return;
    m_requestedPane = pane;
    Q_EMIT requestedPaneChanged();
}

QList<NodeSnapshot> Navigation::largestFiles(qsizetype limit) const
{
    const auto &tree = m_scans.tree();
    return tree ? TreeQueries::largestFiles(*tree, m_scans.rootNode(), limit) : QList<NodeSnapshot>();
}

QList<NodeSnapshot> Navigation::search(const QString &query, qsizetype limit) const
{
    const auto &tree = m_scans.tree();
    return tree ? TreeQueries::search(*tree, m_scans.rootNode(), query, limit) : QList<NodeSnapshot>();
}

std::string Navigation::rawPath(const NodeSnapshot &snapshot) const
{
    const auto &tree = m_scans.tree();
    if (tree && tree->isValid(snapshot.id) && tree->path(snapshot.id) == snapshot.path)
        return tree->rawPath(snapshot.id);
    return QFile::encodeName(snapshot.path).toStdString();
}

} // namespace Quillbrook
