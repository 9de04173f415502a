#include "Platform/Linux/Folders/LinuxFolderEntries.h"

#include "Platform/Linux/Files/LongPath.h"
#include "Platform/Linux/Folders/ResolvedPath.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace Quillbrook {

namespace {

// Nothing is mounted by asking, and no server is asked for what is known already.
constexpr int askFlags = AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;

bool isFolder(int folder, const char *name)
{
    struct statx status = {};
    return ::statx(folder, name, askFlags | AT_SYMLINK_NOFOLLOW, STATX_TYPE, &status) == 0
        && S_ISDIR(status.stx_mode);
}

FolderEntries::Kind kindOf(const std::string &path)
{
    struct statx status = {};
    if (::statx(AT_FDCWD, path.c_str(), askFlags, STATX_TYPE, &status) != 0)
        return FolderEntries::Kind::nothing;
    return S_ISDIR(status.stx_mode) ? FolderEntries::Kind::folder : FolderEntries::Kind::other;
}

FileDescriptor openStart(const std::string &path)
{
    struct statx status = {};
    const auto flags = askFlags | AT_SYMLINK_NOFOLLOW;
    const auto split = SplitPath::of(path);
    const auto parent = split ? LongPath::openFolder(split->folder) : FileDescriptor();
    const int from = split ? parent.number() : AT_FDCWD;
    const auto &name = split ? split->name : path;
    if ((split && !parent.isOpen()) || ::statx(from, name.c_str(), flags, STATX_TYPE, &status) != 0
        || !S_ISDIR(status.stx_mode) || (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0)
        return {};
    return FileDescriptor(::openat(from, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
}

} // namespace

LinuxFolderEntries::LinuxFolderEntries(const std::string &path)
    : m_kind(kindOf(path))
    , m_root(openStart(path))
    , m_folders(path, m_root.number())
{
}

bool LinuxFolderEntries::open(const std::string &path)
{
    m_batch.clear();
    m_folder = m_root.isOpen() ? m_folders.open(path) : -1;
    return m_folder >= 0;
}

std::optional<std::string> LinuxFolderEntries::place() const
{
    return m_folder >= 0 ? ResolvedPath::ofFolder(m_folder) : std::nullopt;
}

std::optional<FolderEntry> LinuxFolderEntries::next()
{
    while (m_folder >= 0) {
        if (const auto *entry = m_batch.next()) {
            const bool isTold = entry->d_type != DT_UNKNOWN;
            return FolderEntry{ .name = entry->d_name,
                .isFolder = isTold ? entry->d_type == DT_DIR : isFolder(m_folder, entry->d_name) };
        }
        if (!m_batch.read(m_folder))
            m_folder = -1;
    }
    return std::nullopt;
}

std::unique_ptr<FolderEntries> folderEntries(const std::string &path)
{
    return std::make_unique<LinuxFolderEntries>(path);
}

} // namespace Quillbrook
