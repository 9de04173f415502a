#pragma once

// Removes what no catalogue knows: what a person has picked on the map or in a list, and what the uninstaller
// proposes. Each waits for its turn and is then done off the main thread. Main thread only; what it is made
// with outlives it.

#include "Core/RemovalQueue.h"
#include "Removal/PathRemoval.h"
#include "Scan/FileTree.h"

#include <QObject>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace Quillbrook {

class Navigation;
class RemovalBooks;
class RemovalJournal;
class VolumeFigures;
struct KitServices;

class PathRemovals : public QObject
{
    Q_OBJECT

public:
    /// What removals read, write and refresh.
    struct Others
    {
        Navigation &navigation;
        VolumeFigures &volume;
        RemovalBooks &books;
    };

    /// A removal of several things, on the queue's thread. The journal is to be written before each move to
    /// the Trash.
    using Work = std::function<std::vector<PathRemoval::Removal>(
        const RemovalQueue::Watch &watch, RemovalJournal &journal)>;

    PathRemovals(const KitServices &kit, const Others &others, QObject *parent = nullptr);

    /// Asks the guards why a thing must stay; absent when it may be removed. May block on the disk: the
    /// answer is a function to be called on any thread, at any time, which outlives this.
    [[nodiscard]] std::function<std::optional<QString>()> guardedPath(const NodeSnapshot &snapshot) const;
    /// The same for the inode of what lies there, by which it is known again; 0 for nothing.
    [[nodiscard]] std::function<std::uint64_t()> inodeOf(const NodeSnapshot &snapshot) const;

    /// Removes what is selected, unless a guard refuses it or it is not what `inode` was read of. The tree
    /// goes on showing it until the next scan. What is stopped before it goes stays, and nothing is told.
    void removeSelected(bool permanent, std::uint64_t inode);
    /// Has `work` done in its turn, takes what it did into the ledger and `uninstallLog`, and then calls
    /// `done`.
    void removeBy(const Work &work, const QString &subject, const std::function<void()> &done = {});
    /// Puts a line of another's removal at the front of `uninstallLog`: whether it was done, and what.
    void tellOfUninstalling(bool isDone, const QString &what);

    /// What `removeBy` did, a line each, the last first.
    [[nodiscard]] const QStringList &uninstallLog() const { return m_uninstallLog; }

Q_SIGNALS:
    /// What became of a selection, as a line of the log.
    void selectionTold(const QString &line);
    void uninstallLogChanged();

private:
    void takeSelected(const PathRemoval::Removal &removal, const NodeSnapshot &item, bool permanent);
    void takeRemovals(const std::vector<PathRemoval::Removal> &removals, const QString &subject);

    const KitServices &m_kit;
    Navigation &m_navigation;
    VolumeFigures &m_volume;
    RemovalBooks &m_books;
    QStringList m_uninstallLog;
};

} // namespace Quillbrook
