#include "Platform/Linux/Files/LinuxSpaceReserve.h"

#include "Platform/Linux/Files/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace Quillbrook {

namespace {

constexpr mode_t ownerOnly = 0600;
constexpr mode_t ownersFolder = 0700;

bool isKept(const std::string &path)
{
    struct stat status = {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)
        && status.st_size >= LinuxSpaceReserve::bytes;
}

} // namespace

LinuxSpaceReserve::LinuxSpaceReserve(std::string path)
    : m_path(std::move(path))
{
}

bool LinuxSpaceReserve::release()
{
    const std::lock_guard lock(m_lock);
    return isKept(m_path) && ::unlink(m_path.c_str()) == 0;
}

void LinuxSpaceReserve::replenish()
{
    const std::lock_guard lock(m_lock);
    if (isKept(m_path))
        return;
    for (auto slash = m_path.find('/', 1); slash != std::string::npos; slash = m_path.find('/', slash + 1))
        ::mkdir(m_path.substr(0, slash).c_str(), ownersFolder);
    // Not waiting for a reader, should a pipe have taken the name.
    constexpr int flags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    const FileDescriptor file(::open(m_path.c_str(), flags, ownerOnly));
    struct stat status = {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode))
        return;
    // Half a reserve is none, and would only take the last space from others.
    if (::posix_fallocate(file.number(), 0, bytes) != 0)
        ::unlink(m_path.c_str());
}

} // namespace Quillbrook
