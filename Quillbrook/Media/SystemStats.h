#pragma once

// How busy the processors are and how much memory is in use, sampled once a second while it runs. Only the
// latest values are kept. Main thread only; the counters outlive it.

#include "Platform/HostCounters.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>

namespace Quillbrook {

class SystemStats : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds interval{ 1000 };

    explicit SystemStats(
        const HostCounters &counters, QObject *parent = nullptr, std::chrono::milliseconds every = interval);

    /// Samples at once and from then on, until `stop`. Starting again does nothing.
    void start();
    /// The values stay as they are.
    void stop();

    /// Percent of the time of all processors together since the sample before.
    [[nodiscard]] double cpuBusy() const { return m_cpuBusy; }
    /// Percent of the installed memory.
    [[nodiscard]] double memoryUsed() const { return m_memoryUsed; }
    /// A word for that.
    [[nodiscard]] const QString &memoryPressure() const { return m_memoryPressure; }
    /// Bytes.
    [[nodiscard]] std::uint64_t totalMemory() const { return m_totalMemory; }

    [[nodiscard]] static QString pressureWord(double memoryUsed);

Q_SIGNALS:
    void changed();
    /// A second has passed, and the values are of now.
    void ticked();

private:
    struct Ticks
    {
        std::uint64_t used = 0;
        std::uint64_t total = 0;
    };

    void tick();
    void sampleCPU();
    void sampleMemory();

    const HostCounters &m_counters;
    double m_cpuBusy = 0;
    double m_memoryUsed = 0;
    QString m_memoryPressure = QStringLiteral("—");
    std::uint64_t m_totalMemory = 0;
    Ticks m_previousTicks;
    QTimer m_timer;
};

} // namespace Quillbrook
