#include "Platform/Linux/Processes/LinuxUtilityQueue.h"
#include "Support/Suite.h"

#include <QTest>

#include <condition_variable>
#include <future>
#include <linux/ioprio.h>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace Quillbrook;
using namespace std::chrono_literals;

namespace {

// Far beyond what a busy machine takes, so that only what never happens takes as long.
constexpr auto patience = 20s;

// What happened, in order, for a test to wait for.
class Events
{
public:
    void add(int event)
    {
        const std::lock_guard guard(m_lock);
        m_events.push_back(event);
        m_changed.notify_all();
    }
    /// Whether there are so many in the end.
    [[nodiscard]] bool waitFor(size_t count)
    {
        std::unique_lock guard(m_lock);
        return m_changed.wait_for(guard, patience, [&] { return m_events.size() >= count; });
    }
    [[nodiscard]] std::vector<int> all() const
    {
        const std::lock_guard guard(m_lock);
        return m_events;
    }

private:
    mutable std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<int> m_events;
};

// What the kernel keeps of the calling thread.
struct Standing
{
    pid_t thread = ::gettid();
    int nice = ::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()));
    long ioClass = IOPRIO_PRIO_CLASS(::syscall(SYS_ioprio_get, IOPRIO_WHO_PROCESS, ::gettid()));
    int slack = ::prctl(PR_GET_TIMERSLACK);
};

template <typename Result>
std::optional<Result> on(UtilityQueue &queue, std::function<Result()> work)
{
    const auto task = std::make_shared<std::packaged_task<Result()>>(std::move(work));
    auto result = task->get_future();
    queue.async([task] { (*task)(); });
    if (result.wait_for(patience) != std::future_status::ready)
        return std::nullopt;
    return result.get();
}

Standing ofStandardThread()
{
    Standing standing;
    std::thread([&standing] { standing = Standing(); }).join();
    return standing;
}

Standing ofPosixThread()
{
    Standing standing;
    pthread_t thread{};
    const auto look = [](void *result) -> void * {
        *static_cast<Standing *>(result) = Standing();
        return nullptr;
    };
    if (pthread_create(&thread, nullptr, look, &standing) == 0)
        pthread_join(thread, nullptr);
    return standing;
}

} // namespace

class TestLinuxUtilityQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void worksFromManyThreadsRunOneByOne()
    {
        Events events;
        std::atomic<int> running = 0;
        std::atomic<bool> overlapped = false;
        LinuxUtilityQueue queue;
        std::vector<std::thread> threads;
        threads.reserve(4);
        for (int thread = 0; thread < 4; ++thread)
            threads.emplace_back([&, thread] {
                for (int number = 0; number < 50; ++number)
                    queue.async([&, event = thread * 50 + number] {
                        if (++running != 1)
                            overlapped = true;
                        events.add(event);
                        --running;
                    });
            });
        for (auto &thread : threads)
            thread.join();
        QVERIFY(events.waitFor(200));
        QVERIFY(!overlapped);
        // Each thread's own in the order in which it gave them.
        std::vector<int> last(4, -1);
        for (const auto event : events.all()) {
            auto &before = last[static_cast<size_t>(event / 50)];
            QVERIFY(event > before);
            before = event;
        }
    }

    void threadsStartedFromItHaveLowPriority()
    {
        LinuxUtilityQueue queue;
        const auto own = on<pid_t>(queue, [] { return ::gettid(); });
        for (const auto &start : { ofStandardThread, ofPosixThread }) {
            const auto standing = on<Standing>(queue, start);
            QVERIFY(standing);
            QVERIFY(standing->thread != own);
            QCOMPARE(standing->nice, 10);
            QCOMPARE(standing->ioClass, long(IOPRIO_CLASS_IDLE));
        }
    }

    void leewayOfTheTimerIsNotPassedOn()
    {
        LinuxUtilityQueue queue;
        const auto before = on<Standing>(queue, [] { return Standing(); });
        queue.startTimer({ .first = 1h, .interval = 1h, .leeway = 60s }, [] {});
        const auto own = on<Standing>(queue, [] { return Standing(); });
        const auto started = on<Standing>(queue, ofStandardThread);
        QVERIFY(before && own && started);
        QCOMPARE(own->slack, before->slack);
        QCOMPARE(started->slack, before->slack);
    }

    void othersKeepTheirPriority()
    {
        const Standing before;
        LinuxUtilityQueue queue;
        QVERIFY(on<Standing>(queue, [] { return Standing(); }));
        const Standing after;
        QCOMPARE(after.nice, before.nice);
        QCOMPARE(after.ioClass, before.ioClass);
        QCOMPARE(after.slack, before.slack);
    }

    void timerFiresFirstAndAgain()
    {
        using Clock = std::chrono::steady_clock;
        Events events;
        std::mutex lock;
        std::vector<Clock::duration> moments;
        LinuxUtilityQueue queue;
        const auto start = Clock::now();
        queue.startTimer({ .first = 100ms, .interval = 50ms }, [&] {
            {
                const std::lock_guard guard(lock);
                moments.push_back(Clock::now() - start);
            }
            events.add(0);
        });
        QVERIFY(events.waitFor(3));
        queue.stopTimer();
        const std::lock_guard guard(lock);
        QVERIFY(moments[0] >= 100ms);
        QVERIFY(moments[1] >= 150ms);
        QVERIFY(moments[2] >= 200ms);
    }

    void timerRunsOnTheQueue()
    {
        LinuxUtilityQueue queue;
        const auto own = on<pid_t>(queue, [] { return ::gettid(); });
        std::promise<pid_t> fired;
        auto thread = fired.get_future();
        queue.startTimer({ .first = 0ms, .interval = 1h }, [&fired] { fired.set_value(::gettid()); });
        QVERIFY(thread.wait_for(patience) == std::future_status::ready);
        QVERIFY(thread.get() == own);
    }

    void timerDoesNotOverlapWithWork()
    {
        Events events;
        LinuxUtilityQueue queue;
        std::promise<void> release;
        queue.async([&events, released = release.get_future().share()] {
            events.add(1);
            released.wait_for(patience);
            events.add(2);
        });
        QVERIFY(events.waitFor(1));
        queue.startTimer({ .first = 0ms, .interval = 1h }, [&events] { events.add(3); });
        std::this_thread::sleep_for(50ms);
        QVERIFY(events.all() == std::vector{ 1 });
        release.set_value();
        QVERIFY(events.waitFor(3));
        QVERIFY((events.all() == std::vector{ 1, 2, 3 }));
    }

    void missedFiringsAreMadeUpForByOne()
    {
        Events events;
        LinuxUtilityQueue queue;
        std::promise<void> release;
        queue.async([&events, released = release.get_future().share()] {
            events.add(0);
            released.wait_for(patience);
        });
        QVERIFY(events.waitFor(1));
        // Due at 0, 300, 600 and 900 milliseconds; the queue is free at 1000, so that the next is due at
        // 1200.
        queue.startTimer({ .first = 0ms, .interval = 300ms }, [&events] { events.add(1); });
        std::this_thread::sleep_for(1000ms);
        release.set_value();
        QVERIFY(events.waitFor(2));
        const auto early = events.all().size();
        queue.stopTimer();
        // A machine that stood still meanwhile may have seen the next one; but never all four.
        QVERIFY(early <= 3);
    }

    void laterTimerReplacesTheEarlier()
    {
        Events events;
        LinuxUtilityQueue queue;
        queue.startTimer({ .first = 1h, .interval = 1h }, [&events] { events.add(1); });
        queue.startTimer({ .first = 10ms, .interval = 10ms }, [&events] { events.add(2); });
        QVERIFY(events.waitFor(2));
        queue.startTimer({ .first = 10ms, .interval = 1h }, [&events] { events.add(3); });
        while (events.all().back() != 3)
            QVERIFY(events.waitFor(events.all().size() + 1));
        QVERIFY(on<int>(queue, [] { return 0; }));
        QVERIFY(std::ranges::count(events.all(), 1) == 0);
        QCOMPARE(std::ranges::count(events.all(), 3), 1);
    }

    void stoppedTimerFiresNoMore()
    {
        Events events;
        LinuxUtilityQueue queue;
        queue.startTimer({ .first = 0ms, .interval = 1ms }, [&events] { events.add(1); });
        QVERIFY(events.waitFor(3));
        queue.stopTimer();
        // Behind whatever has begun.
        QVERIFY(on<int>(queue, [] { return 0; }));
        const auto fired = events.all().size();
        std::this_thread::sleep_for(50ms);
        QCOMPARE(events.all().size(), fired);
        queue.stopTimer();
    }

    void handlerMayTakeItsTime()
    {
        Events events;
        LinuxUtilityQueue queue;
        queue.startTimer({ .first = 0ms, .interval = 1ms }, [&events] {
            std::this_thread::sleep_for(20ms);
            events.add(1);
        });
        queue.async([&events] { events.add(2); });
        QVERIFY(events.waitFor(3));
    }

    void workGoesOnBesideATimerFarAhead()
    {
        LinuxUtilityQueue queue;
        queue.startTimer({ .first = 24h * 10'000, .interval = 24h * 10'000, .leeway = 60s }, [] {});
        QVERIFY(on<int>(queue, [] { return 0; }));
        QVERIFY(on<int>(queue, [] { return 0; }));
    }

    void endWaitsForWhatRunsAndDropsWhatWaits()
    {
        Events events;
        const auto held = std::make_shared<int>(0);
        std::promise<void> release;
        std::thread releasing;
        {
            LinuxUtilityQueue queue;
            queue.async([&events, released = release.get_future().share()] {
                events.add(1);
                released.wait_for(patience);
                events.add(3);
            });
            QVERIFY(events.waitFor(1));
            queue.async([&events, held] { events.add(2); });
            releasing = std::thread([&release] {
                std::this_thread::sleep_for(50ms);
                release.set_value();
            });
        }
        releasing.join();
        QVERIFY((events.all() == std::vector{ 1, 3 }));
        QCOMPARE(held.use_count(), 1L);
    }

    void endLeavesWorkBehindThatNeverEnds()
    {
        const auto events = std::make_shared<Events>();
        const auto release = std::make_shared<std::promise<void>>();
        {
            LinuxUtilityQueue queue(50ms);
            queue.async([events, release] {
                events->add(1);
                release->get_future().wait_for(patience);
                events->add(2);
            });
            QVERIFY(events->waitFor(1));
        }
        QVERIFY(events->all() == std::vector{ 1 });
        release->set_value();
        QVERIFY(events->waitFor(2));
    }

    void endWithATimerSet()
    {
        const auto held = std::make_shared<int>(0);
        {
            LinuxUtilityQueue queue;
            queue.startTimer({ .first = 1h, .interval = 1h, .leeway = 60s }, [held] {});
        }
        QCOMPARE(held.use_count(), 1L);
    }
};

QUILLBROOK_SUITE(TestLinuxUtilityQueue, QCoreApplication)
#include "tst_LinuxUtilityQueue.moc"
