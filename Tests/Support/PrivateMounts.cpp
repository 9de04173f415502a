#include "Support/PrivateMounts.h"

#include "Platform/Linux/Folders/MountTable.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

QString reason(const char *what)
{
    return u"%1: %2"_s.arg(QLatin1StringView(what), QString::fromLocal8Bit(std::strerror(errno)));
}

bool writeText(const char *path, const std::string &text)
{
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    const bool isWritten = file >= 0 && ::write(file, text.data(), text.size()) == ssize_t(text.size());
    ::close(file);
    return isWritten;
}

} // namespace

QString PrivateMounts::enter()
{
    const auto user = ::geteuid();
    const auto group = ::getegid();
    const bool isRoot = user == 0;
    if (::unshare(CLONE_NEWNS | (isRoot ? 0 : CLONE_NEWUSER)) != 0)
        return reason("mounts of its own are not permitted");
    if (!isRoot) {
        std::ignore = writeText("/proc/self/setgroups", "deny");
        if (!writeText("/proc/self/uid_map", "0 " + std::to_string(user) + " 1")
            || !writeText("/proc/self/gid_map", "0 " + std::to_string(group) + " 1"))
            return reason("a user namespace can't be set up");
    }
    if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return reason("the mounts can't be made private");
    return {};
}

bool PrivateMounts::isMounted(const std::string &path)
{
    const auto mounts = MountTable::read();
    return mounts
        && std::ranges::any_of(*mounts, [&](const Mount &mount) { return mount.mountPoint == path; });
}

PrivateMounts::Mounted::Mounted(const std::string &source, const std::string &path, const char *type,
    unsigned long flags, const std::string &options)
    : m_path(path)
{
    if (::mount(source.c_str(), path.c_str(), type, flags, options.c_str()) != 0)
        m_failure = reason("the mount failed");
    else if (!isMounted(path))
        m_failure = u"the mount is not there"_s;
}

PrivateMounts::Mounted::~Mounted()
{
    if (m_failure.isEmpty())
        ::umount2(m_path.c_str(), MNT_DETACH);
}

} // namespace Quillbrook
