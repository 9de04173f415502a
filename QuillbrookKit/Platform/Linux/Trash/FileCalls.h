#pragma once

// The system calls by which things are moved and deleted, in one place so that a test can let any of them
// fail. Each is the call it is named after: -1 with errno on failure, arguments as the system takes them.
// Without state; callable from any thread.

#include "Platform/Linux/Folders/MountTable.h"

#include <sys/stat.h>
#include <sys/types.h>

namespace Quillbrook {

class FileCalls
{
public:
    virtual ~FileCalls() = default;

    [[nodiscard]] virtual int openAt(int folder, const char *name, int flags, mode_t mode = 0) const;
    /// Opens `name` without following any link or crossing into another mount. ENOSYS where the kernel can't,
    /// and EPERM in some sandboxes.
    [[nodiscard]] virtual int openBelow(int folder, const char *name, int flags) const;
    [[nodiscard]] virtual int statAt(int folder, const char *name, int flags, struct statx &status) const;
    [[nodiscard]] virtual int makeFolderAt(int folder, const char *name, mode_t mode) const;
    [[nodiscard]] virtual int unlinkAt(int folder, const char *name, int flags) const;
    /// renameat2.
    [[nodiscard]] virtual int renameAt(
        int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) const;
    /// chmod of what a descriptor stands for, also of one that is only a place (O_PATH).
    [[nodiscard]] virtual int changeMode(int file, mode_t mode) const;
    [[nodiscard]] virtual ssize_t write(int file, const void *bytes, size_t count) const;
    [[nodiscard]] virtual int close(int file) const;
    /// getdents64.
    [[nodiscard]] virtual ssize_t list(int folder, void *buffer, size_t size) const;
    [[nodiscard]] virtual off_t seek(int folder, off_t position) const;
    /// The path by which the kernel knows an open folder, without links.
    [[nodiscard]] virtual std::optional<std::string> pathOf(int folder) const;
    /// syncfs.
    [[nodiscard]] virtual int syncVolume(int folder) const;
    /// Whether an inode's number is the same after the next start of the machine. `folder` may be a place.
    [[nodiscard]] virtual bool keepsInodes(int folder) const;
    [[nodiscard]] virtual std::optional<std::vector<Mount>> mounts() const;

    /// The system itself.
    [[nodiscard]] static const FileCalls &system();
};

} // namespace Quillbrook
