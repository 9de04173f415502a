#pragma once

// A serial queue of its own for work that nobody waits for: it runs at low priority for the processor and for
// the disk, and so does every thread started from it. One timer can be set on it.

#include <chrono>
#include <functional>

namespace Quillbrook {

class UtilityQueue
{
public:
    struct Timer
    {
        std::chrono::milliseconds first{};
        std::chrono::milliseconds interval{};
        /// How much later than told it may fire, so that the machine may sleep on.
        std::chrono::milliseconds leeway{};
    };

    /// Ends the timer, drops what has not begun and waits for the work that runs.
    virtual ~UtilityQueue() = default;
    /// Runs `work` on the queue after what waits there already. From any thread.
    virtual void async(std::function<void()> work) = 0;
    /// Replaces the timer. The handler runs on the queue. Main thread only.
    virtual void startTimer(const Timer &timer, std::function<void()> handler) = 0;
    /// What runs already goes on; nothing begins after this. Main thread only.
    virtual void stopTimer() = 0;
};

} // namespace Quillbrook
