#include "Platform/Linux/Trash/HeldThing.h"

#include "Platform/Linux/Files/LongPath.h"
#include "Platform/Linux/Folders/ResolvedPath.h"

#include <cerrno>
#include <fcntl.h>

namespace Quillbrook {

std::expected<HeldThing, int> HeldThing::at(const FileCalls &calls, const std::string &path)
{
    auto place = SplitPath::of(path);
    if (!place)
        return std::unexpected(EINVAL);
    HeldThing thing{ .name = std::move(place->name) };
    thing.folder = LongPath::openFolder(place->folder,
        [&](int folder, const char *name) { return calls.openAt(folder, name, O_PATH | O_DIRECTORY); });
    const auto folder = thing.folder.number();
    if (!thing.folder.isOpen() || calls.statAt(folder, "", AT_EMPTY_PATH, thing.folderStatus) != 0
        || calls.statAt(folder, thing.name.c_str(), 0, thing.status) != 0)
        return std::unexpected(errno);
    auto folderPath = calls.pathOf(folder);
    if (!folderPath)
        return std::unexpected(ENAMETOOLONG);
    thing.folderPath = *std::move(folderPath);
    return thing;
}

std::string HeldThing::path() const
{
    return folderPath + (folderPath.ends_with('/') ? "" : "/") + name;
}

TakenThing HeldThing::seen() const
{
    const auto kind = isFolder()   ? FileKind::directory
        : S_ISLNK(status.stx_mode) ? FileKind::symlink
                                   : FileKind::other;
    return { .path = path(), .kind = kind, .inode = status.stx_ino };
}

qint64 bornAt(const struct statx &status)
{
    constexpr qint64 perSecond = 1'000'000'000;
    const auto &born = status.stx_btime;
    if ((status.stx_mask & STATX_BTIME) == 0 || !birthTime(born.tv_sec))
        return 0;
    return born.tv_sec * perSecond + born.tv_nsec;
}

} // namespace Quillbrook
