#pragma once

// This Mac: the figures of the machine in words, sampled only while the screen shows, and the course of two
// of them since it came up.

#include "Media/SystemStats.h"
#include "Screens/PaneState.h"

#include <QList>

namespace Quillbrook {

class StatsState : public PaneState
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    Q_PROPERTY(QString cpuBusy READ cpuBusy NOTIFY changed FINAL)
    Q_PROPERTY(QString memoryUsed READ memoryUsed NOTIFY changed FINAL)
    Q_PROPERTY(QString memoryPressure READ memoryPressure NOTIFY changed FINAL)
    Q_PROPERTY(QString installed READ installed NOTIFY changed FINAL)
    /// Percents of the last two minutes, the oldest first.
    Q_PROPERTY(QList<double> cpuCourse READ cpuCourse NOTIFY courseChanged FINAL)
    Q_PROPERTY(QList<double> memoryCourse READ memoryCourse NOTIFY courseChanged FINAL)

public:
    explicit StatsState(const HostCounters &counters, QObject *parent = nullptr,
        std::chrono::milliseconds every = SystemStats::interval);

    [[nodiscard]] QString cpuBusy() const;
    [[nodiscard]] QString memoryUsed() const;
    [[nodiscard]] QString memoryPressure() const { return m_stats.memoryPressure(); }
    [[nodiscard]] QString installed() const;
    [[nodiscard]] const QList<double> &cpuCourse() const { return m_cpuCourse; }
    [[nodiscard]] const QList<double> &memoryCourse() const { return m_memoryCourse; }

Q_SIGNALS:
    void changed();
    void courseChanged();

protected:
    void appear() override;
    void disappear() override;

private:
    void addPoint();

    SystemStats m_stats;
    QList<double> m_cpuCourse;
    QList<double> m_memoryCourse;
};

} // namespace Quillbrook
