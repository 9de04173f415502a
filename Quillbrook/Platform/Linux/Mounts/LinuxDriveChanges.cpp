#include "Platform/Linux/Mounts/LinuxDriveChanges.h"

#include <array>
#include <chrono>
#include <fcntl.h>
#include <unistd.h>

namespace Quillbrook {

using namespace std::chrono_literals;

LinuxDriveChanges::LinuxDriveChanges()
{
    m_settling.setSingleShot(true);
    m_settling.setInterval(200ms);
    connect(&m_settling, &QTimer::timeout, this, &DriveChanges::changed);
}

void LinuxDriveChanges::setWatched(bool isWatched)
{
    m_notifier.reset();
    m_settling.stop();
    m_table = FileDescriptor();
    if (!isWatched)
        return;
    m_table = FileDescriptor(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
    if (!m_table.isOpen())
        return;
    // The kernel tells a change as urgent, once until somebody polls again.
    m_notifier = std::make_unique<QSocketNotifier>(m_table.number(), QSocketNotifier::Exception);
    connect(m_notifier.get(), &QSocketNotifier::activated, &m_settling, qOverload<>(&QTimer::start));
}

} // namespace Quillbrook
