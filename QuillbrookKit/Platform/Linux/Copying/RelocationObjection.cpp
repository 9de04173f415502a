#include "Platform/Linux/Copying/RelocationObjection.h"

#include "Platform/Linux/Drives/LinuxDrives.h"
#include "Platform/Linux/Folders/ResolvedPath.h"
#include "RawText.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Quillbrook::RelocationObjection {

using namespace Qt::StringLiterals;

namespace {

bool isBelow(const std::string &path, const std::string &folder)
{
    return folder == "/" ? path != "/" : path.starts_with(folder + '/');
}

bool isAtOrBelow(const std::string &path, const std::string &folder)
{
    return path == folder || isBelow(path, folder);
}

// Where a folder really is, the link at its end followed too.
std::string resolvedFolder(const std::string &folder)
{
    return ResolvedPath::withoutLinks(folder + "/.");
}

std::optional<QString> unwritable(const std::string &folder)
{
    const auto name = repairedText(folder);
    struct stat status = {};
    if (::stat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode))
        return u"%1 is not there any more."_s.arg(name);
    if (::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0)
        return std::nullopt;
    return errno == EROFS ? u"%1 can only be read."_s.arg(name)
                          : u"You do not have permission to write to %1."_s.arg(name);
}

} // namespace

std::optional<QString> ofSource(const std::string &source)
{
    const auto name = repairedText(source);
    struct stat status = {};
    if (::lstat(source.c_str(), &status) != 0)
        return u"%1 is not there any more."_s.arg(name);
    if (S_ISLNK(status.st_mode))
        return u"%1 is a link already."_s.arg(name);
    if (!S_ISDIR(status.st_mode) && !S_ISREG(status.st_mode))
        return u"%1 is neither a folder nor a file."_s.arg(name);
    const auto place = ResolvedPath::withoutLinks(source);
    const auto mounts = MountTable::read();
    if (place.empty() || !mounts)
        return u"Quillbrook can't tell whether a drive is mounted in %1."_s.arg(name);
    for (const auto &mount : *mounts) {
        if (mount.mountPoint == place)
            return u"%1 is a drive of its own."_s.arg(name);
        if (isBelow(mount.mountPoint, place))
            return u"A drive is mounted in %1."_s.arg(name);
    }
    return std::nullopt;
}

std::optional<QString> ofDestination(const std::string &source, const std::string &folder)
{
    if (auto objection = unwritable(folder))
        return objection;
    const auto from = ResolvedPath::withoutLinks(source);
    const auto to = resolvedFolder(folder);
    const auto sourceName = repairedText(source);
    const auto folderName = repairedText(folder);
    if (isAtOrBelow(to, from))
        return u"%1 lies in %2."_s.arg(folderName, sourceName);
    if (isBelow(from, to))
        return u"%1 lies in %2 already."_s.arg(sourceName, folderName);
    const auto mount = LinuxDrives::mountOf(folder);
    if (mount && mount->type == "fuse.portal")
        return u"%1 was handed over by the desktop's portal. A link to it would lead nowhere for other programs."_s
            .arg(folderName);
    if (LinuxDrives().areOnOneFileSystem(source, folder) != false)
        return u"%1 is on the same drive. Moving there would free nothing."_s.arg(folderName);
    return std::nullopt;
}

} // namespace Quillbrook::RelocationObjection
