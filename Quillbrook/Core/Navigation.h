#pragma once

// Where the person is: the folder on the map, what is selected, what is searched for and which pane is asked
// for; and the queries over the finished tree. Main thread only; the scans outlive it.

#include "Core/Pane.h"
#include "Scan/FileTree.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>
#include <string>

namespace Quillbrook {

class ScanDriver;

class Navigation : public QObject
{
    Q_OBJECT

public:
    explicit Navigation(const ScanDriver &scans, QObject *parent = nullptr);

    /// Goes into a folder, or selects a file. Without a tree nothing happens.
    void drillInto(qint32 node);
    /// Back to a position of `breadcrumb`; beyond its end nothing happens, a negative one ends the process.
    void popTo(qsizetype position);
    void setSelection(const std::optional<NodeSnapshot> &selection);
    void setSearchText(const QString &text);
    void setRequestedPane(std::optional<Pane> pane);
    /// Shows the root of the present tree.
    void enterTree();
    /// Shows nothing and selects nothing, since the tree is about to be replaced.
    void leaveTree();

    // Queries over the whole tree, whatever the focus is, largest first.
    [[nodiscard]] QList<NodeSnapshot> largestFiles(qsizetype limit) const;
    /// The first `limit` names met that hold `query` in any letter case; fewer than 2 characters find
    /// nothing.
    [[nodiscard]] QList<NodeSnapshot> search(const QString &query, qsizetype limit) const;
    /// The raw path of what a snapshot names, for system calls. From the tree as long as it still holds that
    /// node at that path, else the path's text encoded.
    [[nodiscard]] std::string rawPath(const NodeSnapshot &snapshot) const;

    /// The node of the folder on the map; -1 when there is nothing to show.
    [[nodiscard]] qint32 focus() const { return m_focus; }
    /// The nodes from the root down to `focus`, and their names.
    [[nodiscard]] const QList<qint32> &breadcrumb() const { return m_breadcrumb; }
    [[nodiscard]] const QStringList &breadcrumbNames() const { return m_breadcrumbNames; }
    [[nodiscard]] const std::optional<NodeSnapshot> &selection() const { return m_selection; }
    [[nodiscard]] const QString &searchText() const { return m_searchText; }
    [[nodiscard]] std::optional<Pane> requestedPane() const { return m_requestedPane; }

Q_SIGNALS:
    void focusChanged();
    void breadcrumbChanged();
    void selectionChanged();
    void searchTextChanged();
    void requestedPaneChanged();

private:
    const ScanDriver &m_scans;
    qint32 m_focus = FileTree::noNode;
    QList<qint32> m_breadcrumb;
    QStringList m_breadcrumbNames;
    std::optional<NodeSnapshot> m_selection;
    QString m_searchText;
    std::optional<Pane> m_requestedPane;
};

} // namespace Quillbrook
