#pragma once

// The trees that the micro-benchmarks work on, made in memory.

#include "MadeUpDirectories.h"
#include "Scan/FastScanner.h"
#include "Scan/FileTree.h"

#include <memory>
#include <string>

namespace Quillbrook::Benchmarks {

/// A finished tree of that many files; its root is node 0.
inline std::shared_ptr<const FileTree> finishedTree(qint64 files)
{
    MadeUpDirectories directories(static_cast<std::uint64_t>(files));
    FastScanner scanner(directories);
    return scanner.scan({ .rootPath = "/made up", .threads = 1 }).tree;
}

/// The same nodes as in `finished`, added one by one: what a tree is before it is rolled up and sorted.
inline std::unique_ptr<FileTree> unfinishedCopy(const FileTree &finished)
{
    auto tree = std::make_unique<FileTree>(finished.nodeCount());
    for (qint32 node = 0; node < finished.nodeCount(); ++node) {
        const auto at = static_cast<size_t>(node);
        tree->addNode(
            finished.parent()[at], finished.rawName(node), finished.ownSize()[at], finished.nodeFlags(node));
    }
    return tree;
}

} // namespace Quillbrook::Benchmarks
