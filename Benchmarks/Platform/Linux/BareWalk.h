#pragma once

// The least that any program has to do to measure a tree on Linux: every folder opened and listed by
// getdents64, and one statx for every entry, folders included. Nothing is kept. What a scan takes longer
// than this is its own doing.
//
// It is made to be fast, because a slow one would flatter the scan: folders are opened by name relative to
// their parent, which spares the system the path; a worker keeps its folders to itself and takes a lock only
// when another worker has nothing to do; and nothing is allocated for a file.

#include <cstdint>
#include <string>

namespace Quillbrook::Benchmarks {

struct BareWalkResult
{
    /// Wall-clock time of the walk with the starting and ending of its threads.
    double seconds = 0;
    std::uint64_t folders = 0;
    /// Everything that is not a folder.
    std::uint64_t files = 0;
    /// Of all entries, so that the attributes are used.
    std::uint64_t blocks = 0;
    /// Folders that could not be opened.
    std::uint64_t failures = 0;
};

/// Walks the tree of `root` with `threads` threads (at least 1), staying on its mount.
[[nodiscard]] BareWalkResult bareWalk(const std::string &root, int threads);

} // namespace Quillbrook::Benchmarks
