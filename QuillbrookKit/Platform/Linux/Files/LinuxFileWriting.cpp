#include "Platform/Linux/Files/LinuxFileWriting.h"

#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Files/LinuxErrorText.h"
#include "Platform/SpaceReserve.h"
#include "StandardisedPath.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace Quillbrook {

namespace {

// One name, not a new one each time: what a killed save leaves behind is taken up by the next one, and never
// piles up.
constexpr const char *newSuffix = ".new";

// Others may finish with the file beside its place at the moment it is opened; they don't do so for ever.
constexpr int openTries = 16;

constexpr mode_t privateFile = 0600;
constexpr mode_t privateFolder = 0700;

std::expected<void, QString> answer(int error)
{
    if (error == 0)
        return {};
    return std::unexpected(LinuxErrorText::sentence(error));
}

// 0, or the error number of the folder that could not be made.
int makeFolder(const std::string &path)
{
    if (::mkdir(path.c_str(), privateFolder) == 0)
        return 0;
    struct stat status = {};
    if (errno == EEXIST)
        return ::stat(path.c_str(), &status) != 0 ? errno : S_ISDIR(status.st_mode) ? 0 : ENOTDIR;
    if (errno != ENOENT || path == "/")
        return errno;
    if (const int error = makeFolder(parentOf(path)))
        return error;
    return ::mkdir(path.c_str(), privateFolder) == 0 || errno == EEXIST ? 0 : errno;
}

bool isStill(const std::string &path, int descriptor)
{
    struct stat named = {};
    struct stat opened = {};
    return ::lstat(path.c_str(), &named) == 0 && ::fstat(descriptor, &opened) == 0
        && named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

struct Opened
{
    FileDescriptor file{};
    int error = 0;
};

// Whether opening failed because of what lies there, as a link, a pipe or a file without rights would.
bool isForWhatIsThere(int error)
{
    return error == ELOOP || error == ENXIO || error == EACCES;
}

bool isOnlyFileOfItsOwn(int descriptor)
{
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1;
}

// An empty file beside the place that nobody else writes to: it is locked, and still there under its name
// after that. A second copy of the program that saves at the same moment is told that the file is busy.
// Whatever else has taken the name gives way, and is never written to.
Opened openNew(const std::string &path)
{
    for (int i = 0; i < openTries; ++i) {
        FileDescriptor file(
            ::open(path.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, privateFile));
        int error = file.isOpen() ? 0 : errno;
        if (error == 0 && ::flock(file.number(), LOCK_EX | LOCK_NB) != 0)
            return { .error = errno };
        if (error == 0 && !isStill(path, file.number()))
            continue;
        if (isForWhatIsThere(error) || (error == 0 && !isOnlyFileOfItsOwn(file.number()))) {
            if (::unlink(path.c_str()) == 0)
                continue;
            return { .error = error != 0 ? error : errno };
        }
        if (error == 0 && (::ftruncate(file.number(), 0) != 0 || ::fchmod(file.number(), privateFile) != 0))
            error = errno;
        return { .file = std::move(file), .error = error };
    }
    return { .error = EBUSY };
}

int writeTo(int descriptor, QByteArrayView content)
{
    while (!content.isEmpty()) {
        const auto count = ::write(descriptor, content.data(), static_cast<size_t>(content.size()));
        if (count < 0 && errno != EINTR)
            return errno;
        if (count == 0)
            return EIO;
        if (count > 0)
            content = content.sliced(count);
    }
    return 0;
}

int writeAll(int descriptor, QByteArrayView content)
{
    if (const int error = writeTo(descriptor, content))
        return error;
    return ::fsync(descriptor) == 0 ? 0 : errno;
}

// Brings the renaming itself to the disk. Some file systems can't; the file is in its place all the same.
void syncFolder(const std::string &path)
{
    const FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.isOpen())
        std::ignore = ::fsync(folder.number());
}

int replaceOnce(const std::string &path, QByteArrayView content)
{
    const auto folder = parentOf(path);
    if (const int error = makeFolder(folder))
        return error;
    const auto written = path + newSuffix;
    const auto opened = openNew(written);
    if (opened.error != 0)
        return opened.error;
    int error = writeAll(opened.file.number(), content);
    if (error == 0 && ::rename(written.c_str(), path.c_str()) != 0)
        error = errno;
    if (error != 0)
        ::unlink(written.c_str());
    else
        syncFolder(folder);
    return error;
}

FileDescriptor openToAdd(const std::string &path)
{
    constexpr int flags = O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    FileDescriptor file(::open(path.c_str(), flags, privateFile));
    if (file.isOpen() || errno != ENOENT)
        return file;
    if (const int error = makeFolder(parentOf(path))) {
        errno = error;
        return {};
    }
    return FileDescriptor(::open(path.c_str(), flags, privateFile));
}

int appendOnce(const std::string &path, QByteArrayView content)
{
    const auto file = openToAdd(path);
    struct stat status = {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0)
        return errno;
    if (!S_ISREG(status.st_mode) || status.st_nlink != 1)
        return EINVAL;
    const int error = writeTo(file.number(), content);
    // Half a line is worth nothing, and would spoil the next.
    if (error != 0)
        std::ignore = ::ftruncate(file.number(), status.st_size);
    return error;
}

} // namespace

LinuxFileWriting::LinuxFileWriting(SpaceReserve *reserve)
    : m_reserve(reserve)
{
}

std::expected<void, QString> LinuxFileWriting::replace(const std::string &path, QByteArrayView content)
{
    return withReserve([&] { return replaceOnce(path, content); });
}

std::expected<void, QString> LinuxFileWriting::append(const std::string &path, QByteArrayView content)
{
    return withReserve([&] { return appendOnce(path, content); });
}

std::expected<void, QString> LinuxFileWriting::withReserve(const std::function<int()> &attempt) const
{
    int error = attempt();
    if (LinuxErrorText::isLackOfSpace(error) && m_reserve != nullptr && m_reserve->release()) {
        error = attempt();
        m_reserve->replenish();
    }
    return answer(error);
}

} // namespace Quillbrook
