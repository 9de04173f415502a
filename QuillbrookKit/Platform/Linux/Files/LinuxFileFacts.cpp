#include "Platform/Linux/Files/LinuxFileFacts.h"

#include "Platform/Linux/Files/LongPath.h"
#include "Platform/Linux/Files/Uninterrupted.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace Quillbrook {

namespace {

// A mount whose server is gone would block a plain stat for ever; cached attributes are good enough here.
constexpr int gently = AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;

bool ask(int folder, const char *name, int flags, unsigned mask, struct statx &facts)
{
    return uninterrupted([&] { return ::statx(folder, name, flags | gently, mask, &facts); }) == 0;
}

// Of a path of any length, a link at its end not followed.
std::optional<struct statx> factsOf(const std::string &path)
{
    FileDescriptor folder;
    auto name = path;
    if (!LongPath::isShort(path)) {
        while (name.size() > 1 && name.ends_with('/'))
            name.pop_back();
        const auto slash = name.rfind('/');
        folder = LongPath::openFolder(name.substr(0, slash));
        name.erase(0, slash + 1);
        if (!folder.isOpen())
            return std::nullopt;
    }
    struct statx facts = {};
    const int from = folder.isOpen() ? folder.number() : AT_FDCWD;
    if (!ask(from, name.c_str(), AT_SYMLINK_NOFOLLOW, STATX_TYPE | STATX_INO, facts))
        return std::nullopt;
    return facts;
}

} // namespace

std::optional<FileKind> LinuxFileFacts::kind(const std::string &path) const
{
    const auto facts = factsOf(path);
    if (!facts)
        return std::nullopt;
    if (S_ISDIR(facts->stx_mode))
        return FileKind::directory;
    return S_ISLNK(facts->stx_mode) ? FileKind::symlink : FileKind::other;
}

std::optional<std::uint64_t> inodeAt(const std::string &path)
{
    const auto facts = factsOf(path);
    return facts ? std::optional<std::uint64_t>(facts->stx_ino) : std::nullopt;
}

std::optional<FileDates> LinuxFileFacts::dates(const std::string &path) const
{
    struct statx facts = {};
    if (!ask(AT_FDCWD, path.c_str(), 0, STATX_MTIME | STATX_BTIME, facts)
        || (facts.stx_mask & STATX_MTIME) == 0)
        return std::nullopt;
    FileDates dates{ .lastModified = QDateTime::fromSecsSinceEpoch(facts.stx_mtime.tv_sec, Qt::UTC) };
    if ((facts.stx_mask & STATX_BTIME) != 0)
        dates.created = birthTime(facts.stx_btime.tv_sec);
    return dates;
}

std::optional<qint64> LinuxFileFacts::length(const std::string &path) const
{
    struct statx facts = {};
    if (!ask(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_SIZE, facts))
        return std::nullopt;
    return static_cast<qint64>(facts.stx_size);
}

} // namespace Quillbrook
