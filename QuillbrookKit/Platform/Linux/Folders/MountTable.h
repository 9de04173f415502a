#pragma once

// What is mounted where, as the kernel tells it of this process.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Quillbrook {

/// One mount. `parentId` is the mount that its mount point lies in; `device` names its file system for as
/// long as that is mounted, and `root` is the folder of that, absolute there, that stands at `mountPoint`, an
/// absolute path without links. `type` is the kind of the file system, as "ext4", and `source` what is
/// mounted, a device's path for most. Raw bytes.
struct Mount
{
    std::uint64_t id = 0;
    std::uint64_t parentId = 0;
    std::string device{};
    std::string root{};
    std::string mountPoint{};
    std::string type{};
    std::string source{};

    bool operator==(const Mount &) const = default;
};

namespace MountTable {

/// The lines of a mountinfo file, in order; a line that can't be understood is left out.
[[nodiscard]] std::vector<Mount> parse(std::string_view mountinfo);
/// The present table; absent when the kernel does not tell it.
[[nodiscard]] std::optional<std::vector<Mount>> read();

} // namespace MountTable

} // namespace Quillbrook
