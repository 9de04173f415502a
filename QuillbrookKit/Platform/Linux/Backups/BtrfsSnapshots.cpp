#include "Platform/Linux/Backups/BtrfsSnapshots.h"

#include "Platform/Linux/Files/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <linux/btrfs.h>
#include <linux/btrfs_tree.h>
#include <linux/magic.h>
#include <optional>
#include <string_view>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <vector>

namespace Quillbrook {

namespace {

// A disk with more says enough with these.
constexpr std::size_t mostChildren = 10'000;

bool isBtrfs(const std::string &path)
{
    struct statfs facts = {};
    return ::statfs(path.c_str(), &facts) == 0 && facts.f_type == BTRFS_SUPER_MAGIC;
}

bool isTopOfSubvolume(const std::string &path)
{
    struct statx facts = {};
    constexpr auto flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
    if (::statx(AT_FDCWD, path.c_str(), flags, STATX_INO, &facts) != 0)
        return false;
    return (facts.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0
        || (facts.stx_ino == BTRFS_FIRST_FREE_OBJECTID && isBtrfs(path));
}

FileDescriptor openFolder(const std::string &path)
{
    return FileDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// These calls say 1, not 0, when they came to the end of a list.
std::optional<btrfs_ioctl_get_subvol_info_args> facts(const FileDescriptor &subvolume)
{
    btrfs_ioctl_get_subvol_info_args facts = {};
    if (!subvolume.isOpen() || ::ioctl(subvolume.number(), BTRFS_IOC_GET_SUBVOL_INFO, &facts) < 0)
        return std::nullopt;
    return facts;
}

// A subvolume in another, by the folder there that it lies in.
struct Child
{
    std::uint64_t id = 0;
    std::uint64_t folder = 0;
};

std::vector<Child> childrenOf(const FileDescriptor &subvolume)
{
    std::vector<Child> children;
    btrfs_ioctl_get_subvol_rootref_args list = {};
    for (bool isMore = true; isMore && children.size() < mostChildren;) {
        // More than the answer holds is told by an error, with the answer filled and the next start in it.
        isMore = ::ioctl(subvolume.number(), BTRFS_IOC_GET_SUBVOL_ROOTREF, &list) < 0;
        if (isMore && errno != EOVERFLOW)
            break;
        for (int i = 0; i < list.num_items; ++i)
            children.push_back({ .id = list.rootref[i].treeid, .folder = list.rootref[i].dirid });
    }
    return children;
}

// The path of the child below the subvolume; empty where this user may not know.
std::string pathOf(const FileDescriptor &subvolume, const Child &child)
{
    btrfs_ioctl_ino_lookup_user_args place = {};
    place.dirid = child.folder;
    place.treeid = child.id;
    if (::ioctl(subvolume.number(), BTRFS_IOC_INO_LOOKUP_USER, &place) < 0)
        return {};
    const auto text = [](const auto &field) { return std::string(field, ::strnlen(field, sizeof(field))); };
    return text(place.path) + text(place.name);
}

bool isSnapshotOf(const btrfs_ioctl_get_subvol_info_args &child, const btrfs_ioctl_get_subvol_info_args &of)
{
    return std::ranges::equal(child.parent_uuid, of.uuid);
}

} // namespace

std::string BtrfsSnapshots::subvolumeOf(const std::string &path)
{
    auto folder = path;
    while (folder.size() > 1 && !isTopOfSubvolume(folder))
        folder.resize(std::max<std::size_t>(folder.find_last_of('/'), 1));
    return folder;
}

int BtrfsSnapshots::count(const std::string &subvolume)
{
    const auto opened = openFolder(subvolume);
    const auto own = isBtrfs(subvolume) ? facts(opened) : std::nullopt;
    if (!own)
        return 0;
    const auto children = childrenOf(opened);
    return static_cast<int>(std::ranges::count_if(children, [&](const Child &child) {
        const auto path = pathOf(opened, child);
        const auto found = path.empty() ? std::nullopt : facts(openFolder(subvolume + '/' + path));
        return found && isSnapshotOf(*found, *own);
    }));
}

} // namespace Quillbrook
