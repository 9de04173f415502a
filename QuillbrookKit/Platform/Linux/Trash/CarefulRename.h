#pragma once

// Moving something without ever replacing what lies at the new place.

#include "Platform/Linux/Trash/FileCalls.h"

#include <string>

namespace Quillbrook {

/// A name in an open folder.
struct FolderPlace
{
    int folder = -1;
    std::string name{};
};

namespace CarefulRename {

/// 0, or why it failed (EEXIST where something lies at `to`). A link is moved as a link. A folder of the
/// user's own that may not be written to, which the system does not move to another folder, is given the
/// right for that moment.
[[nodiscard]] int move(const FileCalls &calls, const FolderPlace &from, const FolderPlace &to);

} // namespace CarefulRename

} // namespace Quillbrook
