#pragma once

// Holds every reader that is about to open a certain folder until the test lets them go, so that it meets a
// scan at a known place without sleeping. To be made while nothing is being read.

#include "Support/FakeDirectories.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>

namespace Quillbrook {

class FolderHold
{
public:
    FolderHold(FakeDirectories &directories, const std::string &path)
    {
        directories.beforeOpen = [state = m_state, held = path](const std::string &opened) {
            if (opened == held)
                state->wait();
        };
    }
    FolderHold(const FolderHold &) = delete;
    FolderHold &operator=(const FolderHold &) = delete;
    ~FolderHold() { release(); }

    /// Whether a reader is waiting.
    [[nodiscard]] bool isHolding() const
    {
        const std::scoped_lock lock(m_state->lock);
        return m_state->waiting > 0;
    }

    /// Lets the waiting readers and all later ones go.
    void release()
    {
        const std::scoped_lock lock(m_state->lock);
        m_state->isReleased = true;
        m_state->changed.notify_all();
    }

private:
    // Shared with the readers, which may outlive the hold by a moment.
    struct State
    {
        void wait()
        {
            std::unique_lock guard(lock);
            ++waiting;
            changed.wait_for(guard, std::chrono::seconds(20), [&] { return isReleased; });
            --waiting;
        }

        std::mutex lock;
        std::condition_variable changed;
        int waiting = 0;
        bool isReleased = false;
    };

    std::shared_ptr<State> m_state = std::make_shared<State>();
};

} // namespace Quillbrook
