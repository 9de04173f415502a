#include "Platform/Linux/Trash/CarefulRename.h"

#include "Platform/Linux/Files/FileDescriptor.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <tuple>

namespace Quillbrook {

namespace {

int rename(const FileCalls &calls, const FolderPlace &from, const FolderPlace &to)
{
    if (calls.renameAt(from.folder, from.name.c_str(), to.folder, to.name.c_str(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    // Some network and FUSE file systems can't promise it: looking first is the next best.
    struct statx status = {};
    if (calls.statAt(to.folder, to.name.c_str(), 0, status) == 0)
        return EEXIST;
    if (errno != ENOENT)
        return errno;
    return calls.renameAt(from.folder, from.name.c_str(), to.folder, to.name.c_str(), 0) == 0 ? 0 : errno;
}

// A folder's write bit, lent to it for a while.
class LentWriteBit
{
public:
    LentWriteBit(const FileCalls &calls, const FolderPlace &place)
        : m_calls(calls)
        , m_folder(calls.openAt(place.folder, place.name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW))
    {
        struct statx status = {};
        if (!m_folder.isOpen() || calls.statAt(m_folder.number(), "", AT_EMPTY_PATH, status) != 0
            || (status.stx_mode & S_IWUSR) != 0)
            return;
        const auto mode = static_cast<mode_t>(status.stx_mode & 07777);
        if (calls.changeMode(m_folder.number(), mode | S_IWUSR) == 0)
            m_mode = mode;
    }
    LentWriteBit(const LentWriteBit &) = delete;
    LentWriteBit &operator=(const LentWriteBit &) = delete;
    ~LentWriteBit()
    {
        if (m_mode)
            std::ignore = m_calls.changeMode(m_folder.number(), *m_mode);
    }

    [[nodiscard]] bool isLent() const { return m_mode.has_value(); }

private:
    const FileCalls &m_calls;
    FileDescriptor m_folder;
    std::optional<mode_t> m_mode;
};

} // namespace

int CarefulRename::move(const FileCalls &calls, const FolderPlace &from, const FolderPlace &to)
{
    const auto error = rename(calls, from, to);
    if (error != EACCES)
        return error;
    const LentWriteBit writeBit(calls, from);
    return writeBit.isLent() ? rename(calls, from, to) : error;
}

} // namespace Quillbrook
