#include "Screens/Stats/StatsState.h"

#include "Scan/Format.h"
#include "Screens/Stats/TrendLine.h"

namespace Quillbrook {

namespace {

QString percent(double value)
{
    return Format::decimal(value, 0) + u'%';
}

void append(QList<double> &course, double value)
{
    if (course.size() == TrendLine::mostValues)
        course.removeFirst();
    course.append(value);
}

} // namespace

StatsState::StatsState(const HostCounters &counters, QObject *parent, std::chrono::milliseconds every)
    : PaneState(parent)
    , m_stats(counters, nullptr, every)
{
    connect(&m_stats, &SystemStats::changed, this, &StatsState::changed);
    connect(&m_stats, &SystemStats::ticked, this, &StatsState::addPoint);
}

QString StatsState::cpuBusy() const
{
    return percent(m_stats.cpuBusy());
}

QString StatsState::memoryUsed() const
{
    return percent(m_stats.memoryUsed());
}

QString StatsState::installed() const
{
    return Format::bytes(static_cast<qint64>(m_stats.totalMemory()));
}

void StatsState::appear()
{
    m_stats.start();
}

void StatsState::disappear()
{
    m_stats.stop();
    m_cpuCourse.clear();
    m_memoryCourse.clear();
    Q_EMIT courseChanged();
}

void StatsState::addPoint()
{
    append(m_cpuCourse, m_stats.cpuBusy());
    append(m_memoryCourse, m_stats.memoryUsed());
    Q_EMIT courseChanged();
}

} // namespace Quillbrook
