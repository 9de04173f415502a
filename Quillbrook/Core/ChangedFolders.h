#pragma once

// A folder on each volume that a removal may have changed, for the flush of those volumes after it. Raw
// paths, none of them twice.

#include "Catalogue/Finding.h"
#include "Removal/PathRemoval.h"

#include <QList>

#include <string>
#include <vector>

namespace Quillbrook {

struct HeldItem;

namespace ChangedFolders {

/// For findings that were cleared.
[[nodiscard]] std::vector<std::string> of(const QList<Finding> &findings);
/// For things that were picked.
[[nodiscard]] std::vector<std::string> of(const std::vector<PathRemoval::Removal> &removals);
/// For things that have left the Trash.
[[nodiscard]] std::vector<std::string> of(const std::vector<TrashedItem> &items);
[[nodiscard]] std::vector<std::string> of(const std::vector<HeldItem> &things);

} // namespace ChangedFolders

} // namespace Quillbrook
