#include "Photos/Linux/PhotoFolders.h"

#include "Platform/FileReading.h"
#include "Platform/HomeFolder.h"
#include "Platform/Linux/Folders/LinuxUserFolders.h"
#include "Platform/Linux/Folders/ResolvedPath.h"
#include "RawText.h"
#include "StandardisedPath.h"

#include <fcntl.h>
#include <unistd.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestSettings = qsizetype{ 64 } * 1024;

bool isNamed(const QByteArray &settings, QByteArrayView key)
{
    for (const auto &line : settings.split('\n'))
        if (line.trimmed().startsWith(key))
            return true;
    return false;
}

bool isAllowed(const std::string &folder, int rights)
{
    return ::faccessat(AT_FDCWD, folder.c_str(), rights, AT_EACCESS) == 0;
}

bool isReadable(const std::optional<std::string> &folder)
{
    return folder && isAllowed(*folder + "/.", R_OK | X_OK);
}

bool isWithin(const std::string &path, const std::string &folder)
{
    return path == folder || folder == "/" || path.starts_with(folder + '/');
}

// The folder itself may be a link.
std::string placeOf(const std::string &folder)
{
    return standardisedPath(ResolvedPath::withoutLinks(folder + "/."), {});
}

} // namespace

PhotoFolders PhotoFolders::ofUser(
    const FileReading &reading, const std::string &settings, const HomeFolder &home)
{
    const auto text = reading.contents(settings + "/user-dirs.dirs", longestSettings).value_or(QByteArray());
    const auto rawHome = home.rawRealHomeDirectory();
    const auto told = LinuxUserFolders::parse(text, home.realHomeDirectory());
    const auto homePlace = placeOf(rawHome);
    const auto place = [&](const std::optional<QString> &folder, QByteArrayView key, const char *usual) {
        auto path = folder ? std::optional(rawPathBelow(rawHome, *folder)) : std::nullopt;
        if (!folder && !isNamed(text, key))
            path = rawHome + '/' + usual;
        return path && isWithin(homePlace, placeOf(*path)) ? std::nullopt : path;
    };
    return { .pictures = place(told.pictures, "XDG_PICTURES_DIR", "Pictures"),
        .videos = place(told.videos, "XDG_VIDEOS_DIR", "Videos") };
}

PhotoAccess PhotoFolders::access() const
{
    if (!isReadable(pictures))
        return PhotoAccess::denied;
    const bool isWritable
        = isAllowed(*pictures + "/.", W_OK) && (!isReadable(videos) || isAllowed(*videos + "/.", W_OK));
    return isWritable ? PhotoAccess::granted : PhotoAccess::limited;
}

std::vector<PhotoWalk::Root> PhotoFolders::roots() const
{
    if (!isReadable(pictures))
        return {};
    std::vector<PhotoWalk::Root> roots{ { .path = placeOf(*pictures) } };
    if (!isReadable(videos))
        return roots;
    PhotoWalk::Root second{ .path = placeOf(*videos), .kinds = { PhotoKind::video } };
    if (isWithin(second.path, roots.front().path))
        return roots;
    if (isWithin(roots.front().path, second.path))
        second.without.insert(roots.front().path);
    roots.push_back(std::move(second));
    return roots;
}

} // namespace Quillbrook
