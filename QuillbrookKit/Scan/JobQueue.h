#pragma once

// The folders that wait to be read, shared by all workers of a scan. Newest first, so that the walk as a
// whole is depth-first and the queue stays small. Also counts the folders that exist and are not finished,
// wherever they are, which is how a scan knows that it has ended. Thread-safe.

#include <QtGlobal>

#include <condition_variable>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Quillbrook {

/// A folder waiting to be read: its absolute path in raw bytes and its node in the tree.
struct FolderJob
{
    std::string path{};
    qint32 node = -1;
};

class JobQueue
{
public:
    JobQueue() = default;
    JobQueue(const JobQueue &) = delete;
    JobQueue &operator=(const JobQueue &) = delete;

    /// Makes the queue new again, holding `first` alone.
    void restart(FolderJob first);
    /// The newest job; waits while others may still add some. Absent when there is nothing left. Jobs that
    /// are queued when the end is announced are still handed out, so that they are counted down.
    [[nodiscard]] std::optional<FolderJob> take();
    /// Counts `found` new jobs in and the present one out, and queues those of the new ones that the worker
    /// does not keep, moving them from `spilled`.
    void finishOne(size_t found = 0, std::span<FolderJob> spilled = {});
    /// Announces the end: wakes every waiting worker.
    void finish();
    /// How many jobs are queued.
    [[nodiscard]] qsizetype size() const;

private:
    mutable std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<FolderJob> m_jobs;
    qsizetype m_outstanding = 0;
    bool m_finished = false;
};

} // namespace Quillbrook
