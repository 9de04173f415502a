#pragma once

// Many paths looked up in one finished tree at once. Answers what `FileTree::find` answers for each, but goes
// over the children of a folder once for all paths that lead through it, so that a folder of very many
// children costs the same for one path as for a hundred. Private to the catalogue.

#include "Scan/FileTree.h"

#include <span>
#include <vector>

namespace Quillbrook {

/// The node of each path at or below `from`, in the order of the paths, or -1.
[[nodiscard]] std::vector<qint32> findAll(const FileTree &tree, std::span<const QString> paths, qint32 from);

} // namespace Quillbrook
