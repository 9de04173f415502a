#pragma once

// What is seen of the folders of a trash through open ones. Without state.

#include "Platform/Linux/Trash/CarefulRename.h"
#include "Platform/TakenThing.h"

#include <optional>
#include <string>
#include <vector>

namespace Quillbrook::TrashReading {

/// The names in an open folder, sorted; those until an error.
[[nodiscard]] std::vector<std::string> names(const FileCalls &calls, int folder);

/// Whether what lies there has that inode and that birth time.
[[nodiscard]] bool hasIdentity(
    const FileCalls &calls, const FolderPlace &place, const ThingIdentity &identity);

/// A note's text. Absent where there is none, or something else than a file has its name.
[[nodiscard]] std::optional<std::string> note(const FileCalls &calls, const FolderPlace &place);

} // namespace Quillbrook::TrashReading
