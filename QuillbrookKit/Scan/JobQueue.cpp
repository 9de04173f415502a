#include "Scan/JobQueue.h"

#include <utility>

namespace Quillbrook {

void JobQueue::restart(FolderJob first)
{
    const std::scoped_lock lock(m_lock);
    m_jobs.clear();
    m_jobs.push_back(std::move(first));
    m_outstanding = 1;
    m_finished = false;
}

std::optional<FolderJob> JobQueue::take()
{
    std::unique_lock lock(m_lock);
    while (m_jobs.empty()) {
        if (m_outstanding == 0 || m_finished) {
            m_finished = true;
            m_changed.notify_all();
            return std::nullopt;
        }
        m_changed.wait(lock);
    }
    std::optional<FolderJob> job(std::move(m_jobs.back()));
    m_jobs.pop_back();
    return job;
}

void JobQueue::finishOne(size_t found, std::span<FolderJob> spilled)
{
    const std::scoped_lock lock(m_lock);
    m_outstanding += static_cast<qsizetype>(found) - 1;
    for (auto &job : spilled) {
        m_jobs.push_back(std::move(job));
        m_changed.notify_one();
    }
    if (m_outstanding == 0) {
        m_finished = true;
        m_changed.notify_all();
    }
}

void JobQueue::finish()
{
    const std::scoped_lock lock(m_lock);
    m_finished = true;
    m_changed.notify_all();
}

qsizetype JobQueue::size() const
{
    const std::scoped_lock lock(m_lock);
    return static_cast<qsizetype>(m_jobs.size());
}

} // namespace Quillbrook
