#include "Platform/Linux/Processes/LinuxUtilityQueue.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <linux/ioprio.h>
#include <mutex>
#include <optional>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace Quillbrook {

namespace {

using Moment = std::chrono::steady_clock::time_point;

constexpr int lowNice = 10;
constexpr auto shortestInterval = std::chrono::milliseconds(1);

// Both calls take 0 for the calling thread. Where the system refuses them, the thread runs like any other.
void takeLowPriority()
{
    ::setpriority(PRIO_PROCESS, 0, lowNice);
    ::syscall(SYS_ioprio_set, IOPRIO_WHO_PROCESS, 0, IOPRIO_PRIO_VALUE(IOPRIO_CLASS_IDLE, 0));
}

// While it lives, the kernel may wake the calling thread this much later than asked. It lives only while the
// thread waits for the timer, because a thread that is started inherits the slack of the one that starts it.
class Slack
{
public:
    explicit Slack(std::chrono::nanoseconds leeway)
    {
        ::prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(std::max<long long>(leeway.count(), 0)));
    }
    Slack(const Slack &) = delete;
    Slack &operator=(const Slack &) = delete;
    /// Back to what the thread began with.
    ~Slack() { ::prctl(PR_SET_TIMERSLACK, 0UL); }
};

} // namespace

struct LinuxUtilityQueue::State
{
    struct Alarm
    {
        Timer timer{};
        std::function<void()> handler{};
        Moment due{};

        void goOn();
    };

    void run();
    [[nodiscard]] std::function<void()> next();
    [[nodiscard]] bool isDue() const { return alarm && std::chrono::steady_clock::now() >= alarm->due; }
    void wait(std::unique_lock<std::mutex> &held);

    std::mutex lock;
    /// Something has changed for the thread.
    std::condition_variable changed;
    std::condition_variable hasEnded;
    // Under the lock:
    std::deque<std::function<void()>> waiting;
    std::optional<Alarm> alarm;
    bool ending = false;
    bool ended = false;
};

// Firings that were missed are made up for by one.
void LinuxUtilityQueue::State::Alarm::goOn()
{
    const auto interval = std::max(timer.interval, shortestInterval);
    const auto missed = (std::chrono::steady_clock::now() - due) / interval;
    due += (missed + 1) * interval;
}

void LinuxUtilityQueue::State::run()
{
    takeLowPriority();
    while (const auto work = next())
        work();
    const std::lock_guard guard(lock);
    ended = true;
    hasEnded.notify_all();
}

// Empty when there will be no more.
std::function<void()> LinuxUtilityQueue::State::next()
{
    std::unique_lock held(lock);
    while (!ending) {
        if (isDue()) {
            alarm->goOn();
            return alarm->handler;
        }
        if (!waiting.empty()) {
            auto work = std::move(waiting.front());
            waiting.pop_front();
            return work;
        }
        wait(held);
    }
    return {};
}

void LinuxUtilityQueue::State::wait(std::unique_lock<std::mutex> &held)
{
    if (!alarm) {
        changed.wait(held);
        return;
    }
    const Slack slack(alarm->timer.leeway);
    const auto due = alarm->due;
    changed.wait_until(held, due);
}

LinuxUtilityQueue::LinuxUtilityQueue(std::chrono::milliseconds patience)
    : m_patience(patience)
    , m_state(std::make_shared<State>())
    , m_thread([state = m_state] { state->run(); })
{
}

LinuxUtilityQueue::~LinuxUtilityQueue()
{
    bool ended = false;
    std::deque<std::function<void()>> dropped;
    stopTimer();
    {
        std::unique_lock held(m_state->lock);
        m_state->ending = true;
        m_state->waiting.swap(dropped);
        m_state->changed.notify_all();
        ended = m_state->hasEnded.wait_for(held, m_patience, [this] { return m_state->ended; });
    }
    if (ended)
        m_thread.join();
    else
        m_thread.detach();
}

void LinuxUtilityQueue::async(std::function<void()> work)
{
    const std::lock_guard guard(m_state->lock);
    m_state->waiting.push_back(std::move(work));
    m_state->changed.notify_all();
}

void LinuxUtilityQueue::startTimer(const Timer &timer, std::function<void()> handler)
{
    std::optional alarm = State::Alarm{
        .timer = timer, .handler = std::move(handler), .due = std::chrono::steady_clock::now() + timer.first
    };
    const std::lock_guard guard(m_state->lock);
    m_state->alarm.swap(alarm);
    m_state->changed.notify_all();
}

void LinuxUtilityQueue::stopTimer()
{
    std::optional<State::Alarm> dropped;
    const std::lock_guard guard(m_state->lock);
    m_state->alarm.swap(dropped);
    m_state->changed.notify_all();
}

} // namespace Quillbrook
