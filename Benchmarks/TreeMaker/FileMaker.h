#pragma once

// Makes the files, symbolic links and further hard links of one folder after another, as the plan's kind of
// tree wants them. Which file is what, and how large, follows from the seed alone.

#include "TreeMaker/Random.h"
#include "TreeMaker/TreePlan.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Quillbrook::Benchmarks {

class FileMaker
{
public:
    /// `root` is a descriptor of the tree's folder, which stays the caller's.
    FileMaker(const TreePlan &plan, int root);

    /// Makes all files of the plan's folder in the folder that `descriptor` has open. REQUIRES: the folders
    /// come in the plan's order, each once. False with errno set when a call fails.
    [[nodiscard]] bool fill(int descriptor, std::size_t folder);

private:
    [[nodiscard]] bool makeEntry(int descriptor, std::size_t folder, const std::string &name);
    [[nodiscard]] bool makeFile(int descriptor, const std::string &name);
    [[nodiscard]] bool makeSymlink(int descriptor, const std::string &name);
    [[nodiscard]] bool makeHardLink(int descriptor, const std::string &name);
    void rememberForLinks(std::size_t folder, const std::string &name);

    // A file that a later hard link may name; its path is put together only when one does.
    struct Linkable
    {
        std::size_t folder = 0;
        std::string name{};
    };

    const TreePlan &m_plan;
    int m_root;
    Random m_random;
    std::uint64_t m_serial = 0;
    std::vector<Linkable> m_linkable;
};

} // namespace Quillbrook::Benchmarks
