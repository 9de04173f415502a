#pragma once

// The folders that make up the library of pictures: the user's own one for pictures and, for videos, the one
// for those where the desktop has it. Paths are absolute and raw bytes.

#include "Photos/Linux/PhotoWalk.h"

#include <optional>

namespace Quillbrook {

class FileReading;
class HomeFolder;

struct PhotoFolders
{
    /// Absent where the desktop has none.
    std::optional<std::string> pictures{};
    std::optional<std::string> videos{};

    bool operator==(const PhotoFolders &) const = default;

    /// As the user's settings, which lie in the folder `settings`, name them, and by their usual names where
    /// those say nothing. One that is the home folder itself is switched off, and one that leads to it, or
    /// holds it, would make a library of everything in it. Blocks on the disk.
    [[nodiscard]] static PhotoFolders ofUser(
        const FileReading &reading, const std::string &settings, const HomeFolder &home);

    /// What the system lets this user do: `denied` where there are no pictures that can be read, `limited`
    /// where one of the folders can't be written. Never `notAsked`. Blocks on the disk.
    [[nodiscard]] PhotoAccess access() const;
    /// What to walk: those that can be read, nothing twice. Blocks on the disk.
    [[nodiscard]] std::vector<PhotoWalk::Root> roots() const;
};

} // namespace Quillbrook
