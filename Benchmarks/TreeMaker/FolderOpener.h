#pragma once

// Opens the folders of a planned tree as it is being made. A folder is opened relative to the one opened
// last where that is its parent, because in a long chain of folders no path from the root is short enough
// for the system; every other folder is opened by its path from the root.

#include "TreeMaker/TreePlan.h"

#include <cstddef>

namespace Quillbrook::Benchmarks {

class FolderOpener
{
public:
    /// `root` is a descriptor of the tree's folder, which stays the caller's.
    FolderOpener(const TreePlan &plan, int root);
    FolderOpener(const FolderOpener &) = delete;
    FolderOpener &operator=(const FolderOpener &) = delete;
    ~FolderOpener();

    /// A descriptor of the folder, valid until the next call; -1 with errno set.
    [[nodiscard]] int open(std::size_t folder);

private:
    const TreePlan &m_plan;
    int m_root;
    int m_last = -1;
    std::size_t m_lastFolder = 0;
};

} // namespace Quillbrook::Benchmarks
