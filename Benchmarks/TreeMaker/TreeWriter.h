#pragma once

// Puts a planned tree on the disk, once: a finished tree is marked by a stamp beside it and is used again.

#include "TreeMaker/TreePlan.h"

#include <expected>
#include <filesystem>
#include <string>

namespace Quillbrook::Benchmarks {

struct StandingTree
{
    std::filesystem::path path{};
    /// It was made now, so that its blocks may still be on their way to the disk.
    bool isNew = false;
};

/// Makes sure that the tree stands below `directory`. A tree with the right stamp is
/// taken as it is; one that an earlier run left half made is removed first; a folder of that name which no
/// run of this program marked as its own is never touched and is an error, as are a disk without room and
/// any failing call. The error is a sentence.
[[nodiscard]] std::expected<StandingTree, std::string> ensureTree(
    const TreePlan &plan, const std::filesystem::path &directory);

/// Waits until all of a new tree is on the disk, so that nothing is written behind a measurement.
void settle(const StandingTree &tree);

/// Removes every tree below `directory` that this program marked as its own; returns how many.
[[nodiscard]] std::expected<int, std::string> removeTrees(const std::filesystem::path &directory);

} // namespace Quillbrook::Benchmarks
