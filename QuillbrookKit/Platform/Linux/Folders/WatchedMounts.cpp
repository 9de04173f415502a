#include "Platform/Linux/Folders/WatchedMounts.h"

#include "Platform/Linux/Files/Uninterrupted.h"

#include <fcntl.h>
#include <poll.h>

namespace Quillbrook {

WatchedMounts::WatchedMounts()
    : m_table(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC))
{
}

WatchedMounts::Mounts WatchedMounts::now()
{
    const std::scoped_lock lock(m_lock);
    // Asked before the table is read: what changes meanwhile is told the next time.
    if (haveChanged() || !m_mounts)
        m_mounts = std::make_shared<const std::optional<std::vector<Mount>>>(MountTable::read());
    return m_mounts;
}

// Where it can't be told they count as changed.
bool WatchedMounts::haveChanged()
{
    pollfd change{ .fd = m_table.number(), .events = POLLPRI, .revents = 0 };
    return !m_table.isOpen() || uninterrupted([&] { return ::poll(&change, 1, 0); }) != 0;
}

} // namespace Quillbrook
