#include "Core/RemovalQueue.h"

#include <chrono>
#include <mutex>
#include <utility>

namespace Quillbrook {

using namespace std::chrono_literals;

struct RemovalQueue::Running
{
    Removal removal{};
    std::stop_source stop{};
    std::mutex mutex{};
    std::optional<Progress> told{};
};

RemovalQueue::RemovalQueue(QObject *parent)
    : QObject(parent)
{
    m_thread.setMaxThreadCount(1);
    m_clock.setInterval(100ms);
    connect(&m_clock, &QTimer::timeout, this, &RemovalQueue::showProgress);
}

RemovalQueue::~RemovalQueue()
{
    if (m_running)
        m_running->stop.request_stop();
    m_thread.waitForDone();
}

void RemovalQueue::enqueue(Removal removal)
{
    if (m_isClosed)
        return;
    const bool wasBusy = isBusy();
    m_waiting.push_back(std::move(removal));
    if (!m_running)
        startNext();
    else if (!wasBusy)
        Q_EMIT turnChanged();
    if (isBusy() != wasBusy)
        Q_EMIT busyChanged();
}

void RemovalQueue::startNext()
{
    m_progress.reset();
    if (m_waiting.empty())
        return becomeIdle();
    m_running = std::make_shared<Running>();
    m_running->removal = std::move(m_waiting.front());
    m_waiting.pop_front();
    if (m_running->removal.begin)
        m_running->removal.begin();
    auto *thread = m_running->removal.copying != nullptr ? m_running->removal.copying : &m_thread;
    // Not waited for: it tells by itself when it is done.
    static_cast<void>(QtConcurrent::run(thread, [this, running = m_running] {
        const Watch watch{ .progress =
                               [&running](const Progress &progress) {
                                   const std::scoped_lock lock(running->mutex);
                                   running->told = progress;
                               },
            .stop = running->stop.get_token() };
        running->removal.work(watch);
        // Outlived by the queue, which waits for its thread, and goes after the owner of any other.
        QMetaObject::invokeMethod(
            this, [this, running] { finish(running); }, Qt::QueuedConnection);
    }));
    if (m_running->removal.isPreparation)
        return;
    m_clock.start();
    Q_EMIT turnChanged();
    Q_EMIT progressChanged();
}

void RemovalQueue::becomeIdle()
{
    const bool wasBusy = isBusy();
    m_running.reset();
    m_clock.stop();
    if (!wasBusy)
        return;
    Q_EMIT progressChanged();
    Q_EMIT turnChanged();
    Q_EMIT busyChanged();
}

// Busy still, so that what the end of a removal asks for waits for its turn.
void RemovalQueue::finish(const std::shared_ptr<Running> &running)
{
    // The queue has gone on without it.
    if (running != m_running)
        return;
    if (running->removal.end)
        running->removal.end();
    startNext();
}

void RemovalQueue::leaveCopy()
{
    if (isCopying())
        startNext();
}

void RemovalQueue::stop()
{
    if (!m_running || !m_running->stop.request_stop())
        return;
    Q_EMIT progressChanged();
}

void RemovalQueue::close()
{
    m_isClosed = true;
    m_waiting.clear();
    stop();
}

bool RemovalQueue::isBusy() const
{
    return (m_running && !m_running->removal.isPreparation) || !m_waiting.empty();
}

bool RemovalQueue::isCopying() const
{
    return m_running && m_running->removal.copying != nullptr;
}

bool RemovalQueue::isStopping() const
{
    return m_running && m_running->stop.stop_requested();
}

RemovalQueue::Verb RemovalQueue::verb() const
{
    return m_running ? m_running->removal.verb : Verb::moving;
}

void RemovalQueue::showProgress()
{
    if (!m_running)
        return;
    std::optional<Progress> told;
    {
        const std::scoped_lock lock(m_running->mutex);
        told = m_running->told;
    }
    if (told == m_progress)
        return;
    m_progress = std::move(told);
    Q_EMIT progressChanged();
}

} // namespace Quillbrook
