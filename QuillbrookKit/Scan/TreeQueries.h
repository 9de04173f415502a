#pragma once

// Questions about a whole finished tree. Pure functions; callable from any thread.

#include "Scan/FileTree.h"

#include <QList>
#include <QString>

namespace Quillbrook::TreeQueries {

/// The `limit` largest nodes at or below `root` that are not folders, largest first; of equal sizes those
/// come first, and stay when not all fit, that the walk meets first. Files of size 0 never qualify. A limit
/// whose double overflows ends the process.
[[nodiscard]] QList<NodeSnapshot> largestFiles(const FileTree &tree, qint32 root, qsizetype limit);

/// Whether `query` has the 2 characters, as people count them, that `search` asks for.
[[nodiscard]] bool isLongEnough(const QString &query);

/// The first `limit` nodes at or below `root`, files and folders, that the walk meets and whose name holds
/// `query` in any letter case; then sorted, largest first. A query that is not long enough finds nothing.
[[nodiscard]] QList<NodeSnapshot> search(
    const FileTree &tree, qint32 root, const QString &query, qsizetype limit);

} // namespace Quillbrook::TreeQueries
