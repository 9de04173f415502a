#pragma once

// A scan of a temporary tree by the way this system reads folders, and questions about what it found.

#include "Platform/Linux/Folders/LinuxDirectoryReading.h"
#include "Scan/FastScanner.h"
#include "Support/TempTree.h"

#include <string>

namespace Quillbrook {

/// Names are relative to the temporary tree and text. `disk` outlives this.
struct DiskScan : FastScanner::Result
{
    const TempTree &disk;

    [[nodiscard]] qint32 find(const std::string &name) const { return tree->find(disk.text(name), root); }
    [[nodiscard]] FileTree::Flags flagsOf(const std::string &name) const
    {
        return tree->nodeFlags(find(name));
    }
    [[nodiscard]] qint64 sizeOf(const std::string &name) const { return tree->size(find(name)); }
    [[nodiscard]] qint64 total() const { return tree->size(root); }
};

/// By one worker, so that what happens during the scan happens in a known order.
[[nodiscard]] inline DiskScan scanned(const TempTree &disk, DirectoryReading &directories)
{
    return { FastScanner(directories).scan({ .rootPath = disk.path() }), disk };
}

/// `root` is raw bytes, relative to the temporary tree.
[[nodiscard]] inline DiskScan scanned(
    const TempTree &disk, const std::string &root = {}, FastScanner::Request request = { .threads = 2 })
{
    LinuxDirectoryReading directories;
    request.rootPath = disk.path(root);
    return { FastScanner(directories).scan(request), disk };
}

} // namespace Quillbrook
