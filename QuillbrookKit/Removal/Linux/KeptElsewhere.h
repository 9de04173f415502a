#pragma once

// Where kept places lie besides where they are expected: behind links, and by other mounts of the same disk.

#include "Platform/Linux/Folders/MountTable.h"

#include <functional>
#include <memory>

namespace Quillbrook {

/// A kept place that is a link, by the name it is known by, and where it leads, without links.
struct KeptLink
{
    std::string name{};
    std::string target{};

    bool operator==(const KeptLink &) const = default;
};

/// A kept place: an absolute path, and the name it is known by.
struct KeptPlace
{
    std::string name{};
    std::string path{};
};

/// Those of the places that are links, looked up anew when the last answer is older than a moment: a long
/// clearance asks for each entry. Callable from any thread.
[[nodiscard]] std::function<std::vector<KeptLink>()> keptLinks(std::vector<KeptPlace> places);

/// By which other paths `home` (absolute, without links) can be reached because its disk, or a folder above
/// it, is mounted in a second place.
[[nodiscard]] std::vector<std::string> otherMountsOf(
    const std::string &home, const std::vector<Mount> &mounts);

} // namespace Quillbrook
