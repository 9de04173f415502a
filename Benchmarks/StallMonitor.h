#pragma once

// Watches how long the event loop of the thread it lives on stands still. A timer of one millisecond that
// comes late was held up by what the loop was doing, or by the machine having no processor free for it; the
// thread's own processor time tells the two apart.

#include <QObject>
#include <QTimer>

namespace Quillbrook::Benchmarks {

class StallMonitor : public QObject
{
    Q_OBJECT

public:
    explicit StallMonitor(QObject *parent = nullptr);

    void start();
    void stop();

    /// Seconds of the longest time between two beats: the wall clock's, and what the thread itself ran.
    [[nodiscard]] double longestWait() const { return m_longestWait; }
    [[nodiscard]] double longestBusy() const { return m_longestBusy; }
    [[nodiscard]] qint64 beats() const { return m_beats; }

private:
    void beat();

    QTimer m_timer;
    double m_lastWall = 0;
    double m_lastBusy = 0;
    double m_longestWait = 0;
    double m_longestBusy = 0;
    qint64 m_beats = 0;
};

} // namespace Quillbrook::Benchmarks
