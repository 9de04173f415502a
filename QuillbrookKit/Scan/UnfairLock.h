#pragma once

// A lock for moments: it is held so briefly that a worker who finds it taken does better to try again for a
// while than to be put to sleep and woken. No order among those who wait.

#include <mutex>

namespace Quillbrook {

class UnfairLock
{
public:
    void lock()
    {
        // About as long as adding one large folder takes.
        constexpr int attempts = 1000;
        for (int attempt = 0; attempt < attempts; ++attempt) {
            if (m_lock.try_lock())
                return;
        }
        m_lock.lock();
    }
    void unlock() { m_lock.unlock(); }

private:
    std::mutex m_lock;
};

} // namespace Quillbrook
