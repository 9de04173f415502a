#include "Platform/Linux/Folders/ResolvedPath.h"

#include "Platform/Linux/Files/FileDescriptor.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace Quillbrook {

namespace {

constexpr size_t longestPath = PATH_MAX - 1;

std::string_view withoutSlashesAtTheEnd(std::string_view path)
{
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    return path;
}

bool isNothingThere(int error)
{
    return error == ENOENT || error == ENOTDIR || error == EACCES || error == ELOOP;
}

std::optional<std::string> resolvedShort(const std::string &path)
{
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr), &std::free);
    if (resolved)
        return std::string(resolved.get());
    return isNothingThere(errno) ? std::optional(path) : std::nullopt;
}

FileDescriptor openWithoutLinks(int folder, const std::string &path)
{
    open_how how{};
    how.flags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    how.resolve = RESOLVE_NO_SYMLINKS;
    return FileDescriptor(static_cast<int>(::syscall(SYS_openat2, folder, path.c_str(), &how, sizeof(how))));
}

// Of a path longer than the system takes only the beginning is resolved, and the rest has to be free of
// links.
std::optional<std::string> resolvedLong(const std::string &path)
{
    auto cut = path.rfind('/', longestPath);
    const auto beginning
        = cut == 0 || cut == std::string::npos ? std::nullopt : resolvedShort(path.substr(0, cut));
    if (!beginning)
        return std::nullopt;
    FileDescriptor folder(::open(beginning->c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const auto rest = path.substr(cut);
    for (std::string_view left = rest; folder.isOpen() && !left.empty();) {
        while (left.starts_with('/'))
            left.remove_prefix(1);
        cut = left.size() <= longestPath ? left.size() : left.rfind('/', longestPath);
        if (cut == std::string_view::npos || cut == 0)
            break;
        folder = openWithoutLinks(folder.number(), std::string(left.substr(0, cut)));
        left.remove_prefix(cut);
    }
    return folder.isOpen() ? std::optional(*beginning + rest) : std::nullopt;
}

std::string ownDescriptor(int descriptor)
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}

// Absent, with errno, where the kernel does not tell it.
std::optional<std::string> toldPath(int folder)
{
    std::array<char, PATH_MAX> path; // NOLINT: filled by the call below
    const auto length = ::readlink(ownDescriptor(folder).c_str(), path.data(), path.size());
    if (length <= 0 || path[0] != '/')
        return std::nullopt;
    if (static_cast<size_t>(length) == path.size()) {
        errno = ENAMETOOLONG;
        return std::nullopt;
    }
    return std::string(path.data(), static_cast<size_t>(length));
}

bool isSame(const struct stat &a, const struct stat &b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// The name that the folder of `status` has in the open folder `parent`, empty where it has none.
std::string nameIn(int parent, const struct stat &status)
{
    const auto close = [](DIR *folder) { ::closedir(folder); };
    const std::unique_ptr<DIR, decltype(close)> entries(
        ::fdopendir(::openat(parent, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)));
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the stream is this function's own
    while (const auto *entry = entries ? ::readdir(entries.get()) : nullptr) {
        struct stat found = {};
        if (std::string_view(entry->d_name) != "." && std::string_view(entry->d_name) != ".."
            && ::fstatat(parent, entry->d_name, &found, AT_SYMLINK_NOFOLLOW) == 0 && isSame(found, status))
            return entry->d_name;
    }
    return {};
}

} // namespace

std::optional<SplitPath> SplitPath::of(const std::string &path)
{
    const auto given = withoutSlashesAtTheEnd(path);
    const auto slash = given.rfind('/');
    if (!given.starts_with('/') || given.find('\0') != std::string_view::npos)
        return std::nullopt;
    const auto name = given.substr(slash + 1);
    if (name.empty() || name == "." || name == "..")
        return std::nullopt;
    return SplitPath{ .folder = std::string(slash == 0 ? "/" : given.substr(0, slash)),
        .name = std::string(name) };
}

std::string ResolvedPath::withoutLinks(const std::string &path)
{
    if (!path.starts_with('/') || path.find('\0') != std::string::npos)
        return {};
    const auto split = SplitPath::of(path);
    const auto &folder = split ? split->folder : path;
    const auto resolved = folder.size() > longestPath ? resolvedLong(folder) : resolvedShort(folder);
    if (!resolved || !split)
        return resolved.value_or(std::string());
    return *resolved + (resolved->ends_with('/') ? "" : "/") + split->name;
}

// Longer ones are told from where the kernel still does, and name by name below that.
std::optional<std::string> ResolvedPath::ofFolder(int folder)
{
    auto told = toldPath(folder);
    std::string below;
    FileDescriptor parent;
    while (!told && errno == ENAMETOOLONG) {
        struct stat status = {};
        const int from = parent.isOpen() ? parent.number() : folder;
        FileDescriptor next(::openat(from, "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (!next.isOpen() || ::fstat(from, &status) != 0)
            return std::nullopt;
        const auto name = nameIn(next.number(), status);
        if (name.empty())
            return std::nullopt;
        below.insert(0, '/' + name);
        parent = std::move(next);
        told = toldPath(parent.number());
    }
    return told ? std::optional(*told + below) : std::nullopt;
}

} // namespace Quillbrook
