#pragma once

// The watcher of the disk, its switch, and what it has observed. Main thread only; the services outlive it.

#include "Automation/Watcher.h"

#include <QObject>
#include <QPointer>

#include <optional>

namespace Quillbrook {

class Background;
struct AppServices;

class WatchDriver : public QObject
{
    Q_OBJECT

public:
    explicit WatchDriver(const AppServices &services, QObject *parent = nullptr);

    /// Takes the watcher's observations from now on, and posts those that are worth it.
    void configureWatcher(Background &background);
    /// Switching on gives a reading at once.
    void setWatching(bool watching);

    [[nodiscard]] Watcher &watcher() { return m_watcher; }
    [[nodiscard]] bool watching() const { return m_watching; }
    /// The latest observation; absent before one.
    [[nodiscard]] const std::optional<Watcher::Observation> &lastWatch() const { return m_lastWatch; }

Q_SIGNALS:
    void watchingChanged();
    void lastWatchChanged();

private:
    void takeObservation(const Watcher::Observation &observation);

    const AppServices &m_services;
    Watcher m_watcher;
    QPointer<Background> m_background;
    bool m_watching = false;
    std::optional<Watcher::Observation> m_lastWatch;
};

} // namespace Quillbrook
