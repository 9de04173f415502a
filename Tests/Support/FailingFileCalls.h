#pragma once

// The system's own calls, of which one can be made to fail, and between which a test can do something else.

#include "Platform/Linux/Trash/FileCalls.h"

#include <cerrno>
#include <functional>
#include <mutex>
#include <string_view>
#include <vector>

namespace Quillbrook {

class FailingFileCalls final : public FileCalls
{
public:
    /// Counted from 1; 0 lets none fail.
    int failAt = 0;
    /// How many fail from there on.
    int failures = 1;
    int error = EIO;
    /// Told of each call before it is made, by its name and by that of the file; an errno lets it fail.
    std::function<int(std::string_view call, const char *name)> before{};
    mutable int calls = 0;
    /// Called before a volume is written out, on the thread that waits for that. May be empty.
    std::function<void()> beforeSync{};
    /// Folders of that name seem to be volumes within their volume.
    std::string volume{};
    /// Nothing tells on which mount it lies, as on kernels that know no ids of mounts.
    bool hidesMounts = false;
    /// Things are known by their notes alone, as on file systems that keep no inodes.
    bool hidesInodes = false;

    /// The names of the folders whose volumes were flushed.
    mutable std::vector<std::string> flushed{};

    /// What failed last, for messages.
    mutable std::string failed{};

    [[nodiscard]] int openAt(int folder, const char *name, int flags, mode_t mode = 0) const override
    {
        return fails("openat", name) ? -1 : FileCalls::openAt(folder, name, flags, mode);
    }
    [[nodiscard]] int openBelow(int folder, const char *name, int flags) const override
    {
        return fails("openat2", name) ? -1 : FileCalls::openBelow(folder, name, flags);
    }
    [[nodiscard]] int statAt(int folder, const char *name, int flags, struct statx &status) const override
    {
        const int result = fails("statx", name) ? -1 : FileCalls::statAt(folder, name, flags, status);
        if (result == 0 && !volume.empty() && nameOf(folder, name) == volume)
            ++status.stx_dev_minor;
        if (hidesMounts) {
            status.stx_mask &= ~STATX_MNT_ID;
            status.stx_mnt_id = 0;
            status.stx_attributes_mask &= ~std::uint64_t{ STATX_ATTR_MOUNT_ROOT };
            status.stx_attributes &= ~std::uint64_t{ STATX_ATTR_MOUNT_ROOT };
        }
        return result;
    }
    [[nodiscard]] int makeFolderAt(int folder, const char *name, mode_t mode) const override
    {
        return fails("mkdirat", name) ? -1 : FileCalls::makeFolderAt(folder, name, mode);
    }
    [[nodiscard]] int unlinkAt(int folder, const char *name, int flags) const override
    {
        return fails("unlinkat", name) ? -1 : FileCalls::unlinkAt(folder, name, flags);
    }
    [[nodiscard]] int renameAt(
        int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) const override
    {
        return fails(flags != 0 ? "renameat2" : "renameat", from)
            ? -1
            : FileCalls::renameAt(fromFolder, from, toFolder, to, flags);
    }
    [[nodiscard]] int changeMode(int file, mode_t mode) const override
    {
        return fails("chmod", "") ? -1 : FileCalls::changeMode(file, mode);
    }
    [[nodiscard]] ssize_t write(int file, const void *bytes, size_t count) const override
    {
        return fails("write", "") ? -1 : FileCalls::write(file, bytes, count);
    }
    [[nodiscard]] int close(int file) const override
    {
        const int result = FileCalls::close(file);
        return fails("close", "") ? -1 : result;
    }
    [[nodiscard]] ssize_t list(int folder, void *buffer, size_t size) const override
    {
        return fails("getdents64", "") ? -1 : FileCalls::list(folder, buffer, size);
    }
    [[nodiscard]] off_t seek(int folder, off_t position) const override
    {
        return fails("lseek", "") ? -1 : FileCalls::seek(folder, position);
    }
    [[nodiscard]] std::optional<std::string> pathOf(int folder) const override
    {
        return fails("readlink", "") ? std::nullopt : FileCalls::pathOf(folder);
    }
    [[nodiscard]] int syncVolume(int folder) const override
    {
        if (beforeSync)
            beforeSync();
        {
            const std::scoped_lock lock(m_flushing);
            flushed.push_back(nameOf(folder, {}));
        }
        return FileCalls::syncVolume(folder);
    }
    [[nodiscard]] bool keepsInodes(int folder) const override
    {
        return !hidesInodes && FileCalls::keepsInodes(folder);
    }
    [[nodiscard]] std::optional<std::vector<Mount>> mounts() const override
    {
        return fails("mountinfo", "") ? std::nullopt : FileCalls::mounts();
    }

private:
    [[nodiscard]] std::string nameOf(int folder, const std::string &name) const
    {
        const auto path = name.empty() ? FileCalls::pathOf(folder).value_or(std::string()) : name;
        return path.substr(path.rfind('/') + 1);
    }
    [[nodiscard]] bool fails(std::string_view call, const char *name) const
    {
        ++calls;
        int failure = failAt > 0 && calls >= failAt && calls < failAt + failures ? error : 0;
        if (before)
            if (const int wanted = before(call, name); wanted != 0)
                failure = wanted;
        if (failure == 0)
            return false;
        failed = std::string(call) + ' ' + name;
        errno = failure;
        return true;
    }

    mutable std::mutex m_flushing;
};

} // namespace Quillbrook
