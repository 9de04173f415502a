#include "Platform/Linux/Trash/TrashFolders.h"

#include "Platform/Linux/Files/LinuxErrorText.h"
#include "Platform/Linux/Folders/ResolvedPath.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <utility>

namespace Quillbrook {

namespace {

constexpr mode_t ownerOnly = 0700;
constexpr int placeFlags = O_PATH | O_DIRECTORY;
constexpr int ownFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW;

std::string below(const std::string &folder, const std::string &name)
{
    return folder + (folder.ends_with('/') ? "" : "/") + name;
}

} // namespace

std::optional<TrashFolder> OpenTrash::take(MountedDevice device)
{
    const std::scoped_lock lock(m_mutex);
    return device == m_device ? std::exchange(m_trash, std::nullopt) : std::nullopt;
}

void OpenTrash::giveBack(MountedDevice device, TrashFolder trash)
{
    const std::scoped_lock lock(m_mutex);
    m_device = device;
    m_trash = std::move(trash);
}

TrashFolders::Result TrashFolders::forDevice(MountedDevice device) const
{
    auto atHome = homeTrash(device);
    const bool isElsewhere = !atHome && atHome.error() == EXDEV;
    return isElsewhere ? volumeTrash(device) : std::move(atHome);
}

TrashFolders::Result TrashFolders::existing(const std::string &trash) const
{
    const auto split = SplitPath::of(trash);
    if (!split)
        return std::unexpected(EINVAL);
    const FileDescriptor parent(m_calls.openAt(AT_FDCWD, split->folder.c_str(), placeFlags));
    if (!parent.isOpen())
        return std::unexpected(errno);
    auto found = opened(parent.number(), split->name, trash, false);
    struct statx status = {};
    if (!found || m_calls.statAt(found->self.number(), "", AT_EMPTY_PATH, status) != 0)
        return found;
    const auto device = MountedDevice::of(status);
    if (!isOn(found->files, device) || !isOn(found->info, device))
        return std::unexpected(EXDEV);
    return found;
}

bool TrashFolders::isInPlace(const TrashFolder &trash) const
{
    return isFolderInPlace(trash.files, trash.path + "/files")
        && isFolderInPlace(trash.info, trash.path + "/info");
}

bool TrashFolders::isFolderInPlace(const FileDescriptor &folder, const std::string &path) const
{
    struct statx opened = {};
    struct statx named = {};
    return m_calls.statAt(folder.number(), "", AT_EMPTY_PATH, opened) == 0
        && m_calls.statAt(AT_FDCWD, path.c_str(), 0, named) == 0 && opened.stx_ino == named.stx_ino
        && MountedDevice::of(opened) == MountedDevice::of(named) && named.stx_uid == m_places.user;
}

std::expected<FileDescriptor, int> TrashFolders::ownFolder(
    int folder, const std::string &name, bool isMade) const
{
    if (isMade && m_calls.makeFolderAt(folder, name.c_str(), ownerOnly) != 0 && errno != EEXIST)
        return std::unexpected(errno);
    FileDescriptor own(m_calls.openAt(folder, name.c_str(), ownFlags));
    struct statx status = {};
    if (!own.isOpen())
        return std::unexpected(errno == ELOOP || errno == ENOTDIR ? ENOTSUP : errno);
    if (m_calls.statAt(own.number(), "", AT_EMPTY_PATH, status) != 0)
        return std::unexpected(errno);
    if (status.stx_uid != m_places.user)
        return std::unexpected(ENOTSUP);
    return own;
}

TrashFolders::Result TrashFolders::homeTrash(MountedDevice device) const
{
    const auto split = SplitPath::of(m_places.homeTrash);
    if (!split)
        return std::unexpected(EXDEV);
    const auto parent = homeTrashParent(device);
    if (!parent)
        return std::unexpected(parent.error());
    auto trash = opened(parent->number(), split->name, m_places.homeTrash, true);
    if (trash && (!isOn(trash->files, device) || !isOn(trash->info, device)))
        return std::unexpected(EXDEV);
    return trash;
}

// Nothing is made where the thing could not be moved to anyway.
std::expected<FileDescriptor, int> TrashFolders::homeTrashParent(MountedDevice device) const
{
    const auto path = SplitPath::of(m_places.homeTrash)->folder;
    auto end = path.size();
    FileDescriptor folder(m_calls.openAt(AT_FDCWD, path.c_str(), placeFlags));
    while (!folder.isOpen() && errno == ENOENT && end > 0) {
        end = path.rfind('/', end - 1);
        const auto ancestor = end == 0 || end == std::string::npos ? "/" : path.substr(0, end);
        folder = FileDescriptor(m_calls.openAt(AT_FDCWD, ancestor.c_str(), placeFlags));
    }
    if (!folder.isOpen())
        return std::unexpected(errno);
    if (!isOn(folder, device))
        return std::unexpected(EXDEV);
    while (end < path.size()) {
        const auto next = std::min(path.find('/', end + 1), path.size());
        const auto name = path.substr(end + 1, next - end - 1);
        if (m_calls.makeFolderAt(folder.number(), name.c_str(), ownerOnly) != 0 && errno != EEXIST)
            return std::unexpected(errno);
        folder = FileDescriptor(m_calls.openAt(folder.number(), name.c_str(), placeFlags));
        if (!folder.isOpen())
            return std::unexpected(errno);
        end = next;
    }
    return folder;
}

TrashFolders::Result TrashFolders::volumeTrash(MountedDevice device) const
{
    const auto mounts = m_calls.mounts();
    if (!mounts)
        return std::unexpected(ENOTSUP);
    const auto mount = std::ranges::find(*mounts, device.mount, &Mount::id);
    if (mount == mounts->end())
        return std::unexpected(ENOTSUP);
    const auto &topPath = mount->mountPoint;
    const FileDescriptor top(m_calls.openAt(AT_FDCWD, topPath.c_str(), placeFlags));
    // Another mount may lie over it, and a volume within a volume is one of its own.
    if (!top.isOpen() || !isOn(top, device))
        return std::unexpected(ENOTSUP);

    auto trash = sharedTrash(top.number(), topPath);
    if (!trash) {
        const auto name = m_places.ownTrashName();
        trash = opened(top.number(), name, below(topPath, name), true);
    }
    if (!trash)
        return std::unexpected(LinuxErrorText::isLackOfSpace(trash.error()) ? trash.error() : ENOTSUP);
    if (!isOn(trash->files, device) || !isOn(trash->info, device))
        return std::unexpected(ENOTSUP);
    trash->top = topPath;
    return trash;
}

// A trash that an administrator has made for everyone is safe only while nobody can take another's folder in
// it away, which the sticky bit is for.
TrashFolders::Result TrashFolders::sharedTrash(int top, const std::string &topPath) const
{
    const FileDescriptor shared(m_calls.openAt(top, ".Trash", placeFlags | O_NOFOLLOW));
    struct statx status = {};
    if (!shared.isOpen() || m_calls.statAt(shared.number(), "", AT_EMPTY_PATH, status) != 0
        || (status.stx_mode & S_ISVTX) == 0)
        return std::unexpected(ENOTSUP);
    const auto name = m_places.userName();
    return opened(shared.number(), name, below(topPath, ".Trash/" + name), true);
}

TrashFolders::Result TrashFolders::opened(
    int parent, const std::string &name, const std::string &path, bool isMade) const
{
    auto self = ownFolder(parent, name, isMade);
    if (!self)
        return std::unexpected(self.error());
    auto files = ownFolder(self->number(), "files", isMade);
    if (!files)
        return std::unexpected(files.error());
    auto info = ownFolder(self->number(), "info", isMade);
    if (!info)
        return std::unexpected(info.error());
    return TrashFolder{
        .path = path, .self = std::move(*self), .files = std::move(*files), .info = std::move(*info)
    };
}

bool TrashFolders::isOn(const FileDescriptor &folder, MountedDevice device) const
{
    struct statx status = {};
    return m_calls.statAt(folder.number(), "", AT_EMPTY_PATH, status) == 0
        && MountedDevice::of(status) == device;
}

} // namespace Quillbrook
