#pragma once

// A thread with a small stack that runs one piece of work. Bare threads and not Qt's, so that the thread
// sanitizer sees where they start and end.

#include <functional>
#include <pthread.h>

namespace Quillbrook {

class WorkerThread
{
public:
    /// Starts at once, or not at all when the system gives no more threads.
    explicit WorkerThread(std::function<void()> work);
    WorkerThread(const WorkerThread &) = delete;
    WorkerThread &operator=(const WorkerThread &) = delete;
    /// Waits for the work to end.
    ~WorkerThread();

    [[nodiscard]] bool hasStarted() const { return m_hasStarted; }

private:
    std::function<void()> m_work;
    pthread_t m_thread{};
    bool m_hasStarted = false;
};

} // namespace Quillbrook
