#include "Platform/Linux/Files/LinuxFileFacts.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace Quillbrook {

namespace {

// A mount whose server is gone would block a plain stat for ever; cached attributes are good enough here.
constexpr int gently = AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;

} // namespace

std::optional<FileKind> LinuxFileFacts::kind(const std::string &path) const
{
    struct statx facts = {};
    if (::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW | gently, STATX_TYPE, &facts) != 0)
        return std::nullopt;
    if (S_ISDIR(facts.stx_mode))
        return FileKind::directory;
    return S_ISLNK(facts.stx_mode) ? FileKind::symlink : FileKind::other;
}

std::optional<FileDates> LinuxFileFacts::dates(const std::string &path) const
{
    struct statx facts = {};
    if (::statx(AT_FDCWD, path.c_str(), gently, STATX_MTIME | STATX_BTIME, &facts) != 0
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
    if (::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW | gently, STATX_SIZE, &facts) != 0)
        return std::nullopt;
    return static_cast<qint64>(facts.stx_size);
}

} // namespace Quillbrook
