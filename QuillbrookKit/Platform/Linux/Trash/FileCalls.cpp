#include "Platform/Linux/Trash/FileCalls.h"

#include "Platform/Linux/Folders/ResolvedPath.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace Quillbrook {

namespace {

std::string ownDescriptor(int descriptor)
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}

// Nothing is mounted by asking.
constexpr int askFlags = AT_NO_AUTOMOUNT | AT_SYMLINK_NOFOLLOW;
constexpr unsigned askedFor = STATX_TYPE | STATX_MODE | STATX_UID | STATX_INO | STATX_BTIME | STATX_MNT_ID;

} // namespace

int FileCalls::openAt(int folder, const char *name, int flags, mode_t mode) const
{
    return ::openat(folder, name, flags | O_CLOEXEC, mode);
}

int FileCalls::openBelow(int folder, const char *name, int flags) const
{
    open_how how{};
    how.flags = static_cast<__u64>(flags | O_CLOEXEC);
    how.resolve = RESOLVE_NO_XDEV | RESOLVE_NO_SYMLINKS;
    return static_cast<int>(::syscall(SYS_openat2, folder, name, &how, sizeof(how)));
}

int FileCalls::statAt(int folder, const char *name, int flags, struct statx &status) const
{
    return ::statx(folder, name, askFlags | flags, askedFor, &status);
}

int FileCalls::makeFolderAt(int folder, const char *name, mode_t mode) const
{
    return ::mkdirat(folder, name, mode);
}

int FileCalls::unlinkAt(int folder, const char *name, int flags) const
{
    return ::unlinkat(folder, name, flags);
}

int FileCalls::renameAt(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) const
{
    return ::renameat2(fromFolder, from, toFolder, to, flags);
}

int FileCalls::changeMode(int file, mode_t mode) const
{
    return ::chmod(ownDescriptor(file).c_str(), mode);
}

ssize_t FileCalls::write(int file, const void *bytes, size_t count) const
{
    return ::write(file, bytes, count);
}

int FileCalls::close(int file) const
{
    return ::close(file);
}

ssize_t FileCalls::list(int folder, void *buffer, size_t size) const
{
    return ::getdents64(folder, buffer, size);
}

off_t FileCalls::seek(int folder, off_t position) const
{
    return ::lseek(folder, position, SEEK_SET);
}

std::optional<std::string> FileCalls::pathOf(int folder) const
{
    return ResolvedPath::ofFolder(folder);
}

int FileCalls::syncVolume(int folder) const
{
    return ::syncfs(folder);
}

bool FileCalls::keepsInodes(int folder) const
{
    constexpr std::array<unsigned, 3> without{ MSDOS_SUPER_MAGIC, EXFAT_SUPER_MAGIC, FUSE_SUPER_MAGIC };
    struct statfs status = {};
    return ::fstatfs(folder, &status) == 0
        && std::ranges::find(without, static_cast<unsigned>(status.f_type)) == without.end();
}

std::optional<std::vector<Mount>> FileCalls::mounts() const
{
    return MountTable::read();
}

const FileCalls &FileCalls::system()
{
    static const FileCalls calls;
    return calls;
}

} // namespace Quillbrook
