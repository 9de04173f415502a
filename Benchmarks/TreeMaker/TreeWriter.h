#pragma once

// Puts a planned tree on the disk, once: a finished tree is marked by a stamp beside it and is used again.

#include "TreeMaker/TreePlan.h"

#include <expected>
#include <filesystem>
#include <string>

namespace Quillbrook::Benchmarks {

/// Makes sure that the tree stands below `directory` and returns its folder. A tree with the right stamp is
/// taken as it is; one that an earlier run left half made is removed first; a folder of that name which no
/// run of this program marked as its own is never touched and is an error, as are a disk without room and
/// any failing call. The error is a sentence.
[[nodiscard]] std::expected<std::filesystem::path, std::string> ensureTree(
    const TreePlan &plan, const std::filesystem::path &directory);

/// Removes every tree below `directory` that this program marked as its own; returns how many.
[[nodiscard]] std::expected<int, std::string> removeTrees(const std::filesystem::path &directory);

} // namespace Quillbrook::Benchmarks
