#include "Media/SystemStats.h"

#include <algorithm>
#include <utility>

namespace Quillbrook {

namespace {

constexpr double percent = 100;
constexpr double elevatedFrom = 65;
constexpr double highFrom = 85;

} // namespace

SystemStats::SystemStats(const HostCounters &counters, QObject *parent, std::chrono::milliseconds every)
    : QObject(parent)
    , m_counters(counters)
{
    m_timer.setInterval(every);
    connect(&m_timer, &QTimer::timeout, this, &SystemStats::tick);
}

void SystemStats::start()
{
    if (m_timer.isActive())
        return;
    m_totalMemory = m_counters.physicalMemory();
    sampleCPU();
    sampleMemory();
    m_timer.start();
    Q_EMIT changed();
}

void SystemStats::stop()
{
    m_timer.stop();
}

void SystemStats::tick()
{
    sampleCPU();
    sampleMemory();
    Q_EMIT changed();
    Q_EMIT ticked();
}

// The first sample has nothing to be compared with, and only says from where the next one counts. The
// counters of a processor that goes to sleep or comes back may step back a little, each by itself.
void SystemStats::sampleCPU()
{
    const auto ticks = m_counters.processorTicks();
    if (!ticks)
        return;
    const auto used = ticks->user + ticks->system + ticks->nice;
    const Ticks now{ .used = used, .total = used + ticks->idle };
    const auto before = std::exchange(m_previousTicks, now);
    if (before.total == 0 || now.total <= before.total || now.used < before.used)
        return;
    const auto share
        = static_cast<double>(now.used - before.used) / static_cast<double>(now.total - before.total);
    m_cpuBusy = std::min(share, 1.0) * percent;
}

void SystemStats::sampleMemory()
{
    const auto pages = m_counters.memoryPages();
    if (!pages)
        return;
    const auto used = (pages->active + pages->wired + pages->compressed) * pages->pageBytes;
    m_memoryUsed
        = m_totalMemory == 0 ? 0 : static_cast<double>(used) / static_cast<double>(m_totalMemory) * percent;
    m_memoryPressure = pressureWord(m_memoryUsed);
}

// A scale of the program's own, and no more than this on purpose.
QString SystemStats::pressureWord(double memoryUsed)
{
    if (memoryUsed < elevatedFrom)
        return tr("Normal");
    return memoryUsed < highFrom ? tr("Elevated") : tr("High");
}

} // namespace Quillbrook
