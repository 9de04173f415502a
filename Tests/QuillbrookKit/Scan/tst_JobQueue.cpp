#include "Scan/JobQueue.h"
#include "Support/Suite.h"

#include <QTest>

#include <future>

using namespace Quillbrook;
using namespace std::chrono_literals;

namespace {

constexpr auto limit = 20s;

std::string pathOf(const std::optional<FolderJob> &job)
{
    return job ? job->path : std::string("nothing");
}

std::vector<FolderJob> jobs(std::initializer_list<const char *> paths)
{
    std::vector<FolderJob> result;
    for (const auto *path : paths)
        result.push_back({ path, 1 });
    return result;
}

// A queue whose root was taken and found the folders `paths`, all of them queued.
void fill(JobQueue &queue, std::initializer_list<const char *> paths)
{
    queue.restart({ "/root", 0 });
    std::ignore = queue.take();
    auto found = jobs(paths);
    queue.finishOne(found.size(), found);
}

} // namespace

class TestJobQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newestJobComesFirst()
    {
        JobQueue queue;
        fill(queue, { "/a", "/b", "/c" });
        QCOMPARE(queue.size(), 3);
        QCOMPARE(pathOf(queue.take()), std::string("/c"));
        QCOMPARE(pathOf(queue.take()), std::string("/b"));
        QCOMPARE(pathOf(queue.take()), std::string("/a"));
        QCOMPARE(queue.size(), 0);
    }

    void keptJobsCountUntilTheyAreFinished()
    {
        JobQueue queue;
        queue.restart({ "/root", 0 });
        std::ignore = queue.take();
        auto found = jobs({ "/kept", "/kept too", "/spilled" });
        queue.finishOne(found.size(), std::span(found).subspan(2));
        QCOMPARE(queue.size(), 1);
        QCOMPARE(pathOf(queue.take()), std::string("/spilled"));
        queue.finishOne();
        queue.finishOne();
        auto waiting = std::async(std::launch::async, [&] { return queue.take(); });
        queue.finishOne();
        QVERIFY(waiting.wait_for(limit) == std::future_status::ready);
        QVERIFY(!waiting.get().has_value());
    }

    void lastFinishedJobEndsTheQueue()
    {
        JobQueue queue;
        fill(queue, {});
        QVERIFY(!queue.take().has_value());
        QVERIFY(!queue.take().has_value());
    }

    void waitingWorkerGetsAJobThatIsAddedLater()
    {
        JobQueue queue;
        queue.restart({ "/root", 0 });
        std::ignore = queue.take();
        auto waiting = std::async(std::launch::async, [&] { return queue.take(); });
        auto found = jobs({ "/a" });
        queue.finishOne(found.size(), found);
        QVERIFY(waiting.wait_for(limit) == std::future_status::ready);
        QCOMPARE(pathOf(waiting.get()), std::string("/a"));
    }

    void endWakesAllWaitingWorkers()
    {
        JobQueue queue;
        queue.restart({ "/root", 0 });
        std::ignore = queue.take();
        std::vector<std::future<std::optional<FolderJob>>> waiting;
        for (int i = 0; i < 8; ++i)
            waiting.push_back(std::async(std::launch::async, [&] { return queue.take(); }));
        queue.finish();
        for (auto &worker : waiting) {
            QVERIFY(worker.wait_for(limit) == std::future_status::ready);
            QVERIFY(!worker.get().has_value());
        }
    }

    void queuedJobsAreHandedOutAfterTheEnd()
    {
        JobQueue queue;
        fill(queue, { "/a", "/b" });
        queue.finish();
        QCOMPARE(pathOf(queue.take()), std::string("/b"));
        QCOMPARE(pathOf(queue.take()), std::string("/a"));
        QVERIFY(!queue.take().has_value());
    }

    void restartForgetsEverything()
    {
        JobQueue queue;
        fill(queue, { "/a", "/b" });
        queue.finish();
        queue.restart({ "/new", 0 });
        QCOMPARE(queue.size(), 1);
        QCOMPARE(pathOf(queue.take()), std::string("/new"));
        queue.finishOne();
        QVERIFY(!queue.take().has_value());
    }
};

QUILLBROOK_SUITE(TestJobQueue, QCoreApplication)
#include "tst_JobQueue.moc"
