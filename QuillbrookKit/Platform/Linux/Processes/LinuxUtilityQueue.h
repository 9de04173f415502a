#pragma once

// The utility queue as one thread that the kernel serves last: nice 10 for the processor and the idle class
// for the disk, both of which pass on to the threads it starts. A condition and a lock and no event loop, so
// that the kernel gets the timer's whole leeway to bundle it with others, and the thread sanitizer sees what
// is handed over.

#include "Platform/UtilityQueue.h"

#include <memory>
#include <thread>

namespace Quillbrook {

class LinuxUtilityQueue final : public UtilityQueue
{
public:
    /// `patience`: how long the destructor waits for the work that runs. Work that takes longer hangs in the
    /// kernel, and is left behind with its thread.
    explicit LinuxUtilityQueue(std::chrono::milliseconds patience = std::chrono::seconds(20));
    LinuxUtilityQueue(const LinuxUtilityQueue &) = delete;
    LinuxUtilityQueue &operator=(const LinuxUtilityQueue &) = delete;
    ~LinuxUtilityQueue() override;

    void async(std::function<void()> work) override;
    void startTimer(const Timer &timer, std::function<void()> handler) override;
    void stopTimer() override;

private:
    struct State;

    std::chrono::milliseconds m_patience;
    /// Shared with the thread, which may be left behind.
    std::shared_ptr<State> m_state;
    std::thread m_thread;
};

} // namespace Quillbrook
