#include "Platform/Linux/Trash/TrashReading.h"

#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Trash/HeldThing.h"

#include <algorithm>
#include <array>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace Quillbrook::TrashReading {

std::vector<std::string> names(const FileCalls &calls, int folder)
{
    constexpr size_t bufferBytes = 32768;
    alignas(dirent64) std::array<char, bufferBytes> buffer; // NOLINT: filled by the system
    std::vector<std::string> found;
    if (calls.seek(folder, 0) < 0)
        return found;
    for (;;) {
        const auto count = calls.list(folder, buffer.data(), buffer.size());
        if (count <= 0)
            break;
        for (size_t offset = 0; offset < static_cast<size_t>(count);) {
            const auto &entry = *reinterpret_cast<const dirent64 *>(buffer.data() + offset);
            offset += entry.d_reclen;
            const std::string_view name = entry.d_name;
            if (name != "." && name != "..")
                found.emplace_back(name);
        }
    }
    std::ranges::sort(found);
    return found;
}

bool hasIdentity(const FileCalls &calls, const FolderPlace &place, const ThingIdentity &identity)
{
    struct statx status = {};
    return calls.statAt(place.folder, place.name.c_str(), 0, status) == 0 && status.stx_ino == identity.inode
        && bornAt(status) == identity.born;
}

std::optional<std::string> note(const FileCalls &calls, const FolderPlace &place)
{
    // Enough for a path of the greatest length in which every byte is encoded by three, and the rest.
    constexpr size_t mostBytes = 16384;
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    const FileDescriptor file(calls.openAt(place.folder, place.name.c_str(), flags));
    struct statx status = {};
    if (!file.isOpen() || calls.statAt(file.number(), "", AT_EMPTY_PATH, status) != 0
        || !S_ISREG(status.stx_mode))
        return std::nullopt;
    std::string text(mostBytes, '\0');
    const auto length = ::read(file.number(), text.data(), text.size());
    if (length < 0)
        return std::nullopt;
    text.resize(static_cast<size_t>(length));
    return text;
}

} // namespace Quillbrook::TrashReading
