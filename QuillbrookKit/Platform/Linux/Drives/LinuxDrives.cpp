#include "Platform/Linux/Drives/LinuxDrives.h"

#include "RawText.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <string_view>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace Quillbrook {

namespace {

// Some file systems without limits tell figures beyond 2^63.
qint64 bytes(fsblkcnt_t blocks, unsigned long blockSize)
{
    qint64 result = 0;
    return __builtin_mul_overflow(blocks, blockSize, &result) ? std::numeric_limits<qint64>::max() : result;
}

std::optional<qint64> available(const std::string &path)
{
    struct statvfs figures = {};
    int result = 0;
    do {
        result = ::statvfs(path.c_str(), &figures);
    } while (result != 0 && errno == EINTR);
    // Not f_bfree: that counts what is reserved for the system's administrator.
    return result == 0 ? std::optional(bytes(figures.f_bavail, figures.f_frsize)) : std::nullopt;
}

// What follows a folder in which drives are mounted by their names, up to the next slash.
std::string nameAfter(const std::string &path, std::string_view folder, int levels)
{
    if (!path.starts_with(folder))
        return {};
    auto rest = std::string_view(path).substr(folder.size());
    for (; levels > 0; --levels) {
        const auto slash = rest.find('/');
        if (slash == std::string_view::npos)
            return {};
        rest.remove_prefix(slash + 1);
    }
    return std::string(rest.substr(0, rest.find('/')));
}

// Where desktops and people mount drives.
std::string usualName(const std::string &path)
{
    for (const auto &name : { nameAfter(path, "/run/media/", 1), nameAfter(path, "/media/", 1),
             nameAfter(path, "/mnt/", 0), nameAfter(path, "/media/", 0) })
        if (!name.empty())
            return name;
    return path;
}

QString nameOf(const std::optional<Mount> &mount, const std::string &path)
{
    if (mount && mount->mountPoint != "/")
        return repairedText(std::string_view(mount->mountPoint).substr(mount->mountPoint.rfind('/') + 1));
    return repairedText(usualName(path));
}

} // namespace

std::optional<Mount> LinuxDrives::mountOf(const std::string &path)
{
    struct statx status = {};
    const auto mounts = MountTable::read();
    if (!mounts || ::statx(AT_FDCWD, path.c_str(), AT_NO_AUTOMOUNT, STATX_MNT_ID, &status) != 0
        || (status.stx_mask & STATX_MNT_ID) == 0)
        return std::nullopt;
    const auto found = std::ranges::find(*mounts, std::uint64_t{ status.stx_mnt_id }, &Mount::id);
    return found == mounts->end() ? std::nullopt : std::optional(*found);
}

DriveFacts LinuxDrives::facts(const std::string &path) const
{
    const auto free = available(path);
    if (!free)
        return {};
    const auto mount = mountOf(path);
    const auto kind = mount ? m_kinds.of(*mount) : DriveKind();
    // The system purges nothing by itself: both figures are the same.
    return { .available = free,
        .availableForImportantUsage = free,
        .isRemovable = kind.isRemovable,
        .isInternal = kind.isInternal };
}

std::optional<bool> LinuxDrives::areOnOneFileSystem(const std::string &one, const std::string &other) const
{
    // The mount table's numbers, where it tells them: parts of one btrfs have numbers of their own elsewhere.
    const auto mountOfOne = mountOf(one);
    const auto mountOfOther = mountOf(other);
    if (mountOfOne && mountOfOther)
        return mountOfOne->device == mountOfOther->device;
    struct stat first = {};
    struct stat second = {};
    if (::stat(one.c_str(), &first) != 0 || ::stat(other.c_str(), &second) != 0)
        return std::nullopt;
    return first.st_dev == second.st_dev;
}

QString LinuxDrives::name(const std::string &path) const
{
    return nameOf(mountOf(path), path);
}

QString LinuxDrives::likelyName(const std::string &path) const
{
    std::optional<Mount> innermost;
    for (const auto &mount : MountTable::read().value_or(std::vector<Mount>()))
        if ((path + '/').starts_with(mount.mountPoint + '/')
            && (!innermost || mount.mountPoint.size() >= innermost->mountPoint.size()))
            innermost = mount;
    return nameOf(innermost, path);
}

} // namespace Quillbrook
