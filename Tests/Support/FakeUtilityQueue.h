#pragma once

// A queue that runs nothing until the test says so, on the test's own thread.

#include "Platform/UtilityQueue.h"

#include <deque>
#include <optional>
#include <utility>

namespace Quillbrook {

class FakeUtilityQueue final : public UtilityQueue
{
public:
    void async(std::function<void()> work) override { waiting.push_back(std::move(work)); }
    void startTimer(const Timer &started, std::function<void()> handler) override
    {
        timer = started;
        m_handler = std::move(handler);
        ++starts;
    }
    void stopTimer() override
    {
        timer.reset();
        m_handler = nullptr;
    }

    /// The timer fires. REQUIRES: it is set.
    void fire() { m_handler(); }
    /// Runs what waits.
    void run()
    {
        for (auto works = std::exchange(waiting, {}); const auto &work : works)
            work();
    }

    std::optional<Timer> timer;
    int starts = 0;
    std::deque<std::function<void()>> waiting;

private:
    std::function<void()> m_handler;
};

} // namespace Quillbrook
