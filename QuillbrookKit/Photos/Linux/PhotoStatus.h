#pragma once

// What the system says about a file of a picture, without opening it.

#include <QtGlobal>

#include <cstdint>
#include <optional>

namespace Quillbrook {

struct PhotoStatus
{
    std::uint64_t inode = 0;
    /// Nanoseconds since 1970; 0 where the file system keeps no birth times.
    qint64 born = 0;
    /// Seconds since 1970, the earlier of birth and last change.
    qint64 made = 0;
    qint64 bytes = 0;
    /// A file with a length and nothing on the disk: one that a cloud fetches when it is opened.
    bool isElsewhere = false;

    bool operator==(const PhotoStatus &) const = default;

    /// Of `name` in the open folder, or of a whole path with AT_FDCWD, no link followed. Absent for all that
    /// is no regular file, is mounted, or can't be asked.
    [[nodiscard]] static std::optional<PhotoStatus> of(int folder, const char *name);
};

} // namespace Quillbrook
