#include "StallMonitor.h"

#include <algorithm>
#include <ctime>

namespace Quillbrook::Benchmarks {

namespace {

double secondsOf(clockid_t clock)
{
    timespec now = {};
    ::clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

} // namespace

StallMonitor::StallMonitor(QObject *parent)
    : QObject(parent)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(1);
    connect(&m_timer, &QTimer::timeout, this, &StallMonitor::beat);
}

void StallMonitor::start()
{
    m_lastWall = secondsOf(CLOCK_MONOTONIC);
    m_lastBusy = secondsOf(CLOCK_THREAD_CPUTIME_ID);
    m_timer.start();
}

void StallMonitor::stop()
{
    beat();
    m_timer.stop();
}

void StallMonitor::beat()
{
    const auto wall = secondsOf(CLOCK_MONOTONIC);
    const auto busy = secondsOf(CLOCK_THREAD_CPUTIME_ID);
    m_longestWait = std::max(m_longestWait, wall - m_lastWall);
    m_longestBusy = std::max(m_longestBusy, busy - m_lastBusy);
    m_lastWall = wall;
    m_lastBusy = busy;
    ++m_beats;
}

} // namespace Quillbrook::Benchmarks
