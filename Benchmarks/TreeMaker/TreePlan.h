#pragma once

// What the made-up trees are like. A plan holds nothing of the disk: the same request gives the same plan.
//
// home  Like a home folder of a person who works with the machine: one folder for every 24 files. A folder
//       hangs under any earlier folder with equal chance, which gives depths around 10 and at most
//       `maximumDepth`, and mostly leaves; 15 in 100 folders hold no file, the median folder 6, and few
//       hold thousands. Of 1000 files 10 are symbolic links (to files, to folders, to nothing; one in ten
//       with a target too long to lie in the inode) and 5 are further hard links to files in other folders.
//       545 in 1000 files own no block (empty, or a hole), 410 own up to 4 KiB, 35 up to 8 KiB and 10 up to
//       64 KiB: about 2.3 KiB a file.
// wide  All files in one folder, all empty.
// deep  A chain of folders in one another with 10 empty files each. Its paths grow past every limit of the
//       system on the length of a path.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Quillbrook::Benchmarks {

enum class TreeKind { home, wide, deep };

struct TreeRequest
{
    TreeKind kind = TreeKind::home;
    /// Everything that is not a folder: files, symbolic links and further hard links.
    std::uint64_t files = 1'000'000;
    std::uint64_t seed = 1;

    bool operator==(const TreeRequest &) const = default;
};

/// How the files of a folder are called.
enum class NameStyle : std::uint8_t { source, package, hashes, photos, documents };

struct PlannedFolder
{
    std::int32_t parent = -1;
    std::uint16_t depth = 0;
    NameStyle style = NameStyle::source;
    std::uint32_t files = 0;
    std::string name{};
};

struct TreePlan
{
    TreeRequest request{};
    /// The root comes first, with parent -1; a parent comes before its children.
    std::vector<PlannedFolder> folders{};
};

inline constexpr int maximumDepth = 22;

[[nodiscard]] TreePlan makePlan(const TreeRequest &request);

/// The folder's path below the tree's root; empty for the root.
[[nodiscard]] std::string relativePath(const TreePlan &plan, std::size_t folder);

/// One line that tells this tree from every other; also the content of its stamp.
[[nodiscard]] std::string description(const TreePlan &plan);
/// Name of the tree's folder.
[[nodiscard]] std::string folderName(const TreeRequest &request);

} // namespace Quillbrook::Benchmarks
