#include "Photos/Linux/PhotoStatus.h"

#include "Platform/Linux/Files/Uninterrupted.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>

namespace Quillbrook {

namespace {

// Nothing is mounted by asking, and no server is asked for what is known already.
constexpr int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
constexpr unsigned mask = STATX_TYPE | STATX_INO | STATX_SIZE | STATX_BLOCKS | STATX_MTIME | STATX_BTIME;
constexpr qint64 nanosecondsOfSecond = 1'000'000'000;

} // namespace

std::optional<PhotoStatus> PhotoStatus::of(int folder, const char *name)
{
    struct statx status = {};
    if (uninterrupted([&] { return ::statx(folder, name, flags, mask, &status); }) != 0
        || !S_ISREG(status.stx_mode)
        || (status.stx_attributes & status.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) != 0)
        return std::nullopt;
    PhotoStatus found{ .inode = status.stx_ino,
        .made = status.stx_mtime.tv_sec,
        .bytes = static_cast<qint64>(status.stx_size),
        .isElsewhere = status.stx_blocks == 0 && status.stx_size > 0 };
    // By a birth before the first second file systems say that they keep none.
    if ((status.stx_mask & STATX_BTIME) != 0 && status.stx_btime.tv_sec >= 1) {
        found.born = status.stx_btime.tv_sec * nanosecondsOfSecond + status.stx_btime.tv_nsec;
        found.made = std::min<qint64>(found.made, status.stx_btime.tv_sec);
    }
    return found;
}

} // namespace Quillbrook
