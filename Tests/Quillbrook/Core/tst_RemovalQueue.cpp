#include "Core/RemovalQueue.h"
#include "Support/Suite.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QThread>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestRemovalQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneAtATimeInTheOrderOfAsking()
    {
        RemovalQueue queue;
        QStringList steps;
        QSignalSpy busy(&queue, &RemovalQueue::busyChanged);
        for (const auto &name : { u"a"_s, u"b"_s })
            queue.enqueue({ .begin = [&steps, name] { steps.append(name + u" begins"_s); },
                .work = [&steps, name](const auto & /*watch*/) { steps.append(name); },
                .end = [&steps, name] { steps.append(name + u" ends"_s); } });
        QVERIFY(queue.isBusy());
        QTRY_VERIFY(!queue.isBusy());
        QCOMPARE(
            steps, QStringList({ u"a begins"_s, u"a"_s, u"a ends"_s, u"b begins"_s, u"b"_s, u"b ends"_s }));
        QCOMPARE(busy.count(), 2);
    }

    void worksElsewhereAndTellsHere()
    {
        RemovalQueue queue;
        QThread *worker = nullptr;
        QThread *teller = nullptr;
        queue.enqueue({ .work = [&](const auto & /*watch*/) { worker = QThread::currentThread(); },
            .end = [&] { teller = QThread::currentThread(); } });
        QTRY_VERIFY(teller);
        QCOMPARE(teller, thread());
        QVERIFY(worker != thread());
    }

    void whatAnEndAsksForIsStillTheSameBusyTime()
    {
        RemovalQueue queue;
        QSignalSpy busy(&queue, &RemovalQueue::busyChanged);
        bool isDone = false;
        queue.enqueue({ .work = [](const auto & /*watch*/) {},
            .end = [&] { queue.enqueue({ .work = [&](const auto & /*watch*/) { isDone = true; } }); } });
        QTRY_VERIFY(!queue.isBusy());
        QVERIFY(isDone);
        QCOMPARE(busy.count(), 2);
    }

    void progressIsTold()
    {
        RemovalQueue queue;
        QSemaphore go;
        queue.enqueue({ .verb = RemovalQueue::Verb::deleting, .work = [&](const RemovalQueue::Watch &watch) {
                           for (int number = 1; number <= 1000; ++number)
                               watch.progress(
                                   { .number = number, .count = 1000, .name = u"x"_s, .bytes = 7 });
                           go.acquire();
                       } });
        QVERIFY(!queue.progress());
        QSignalSpy told(&queue, &RemovalQueue::progressChanged);
        QTRY_VERIFY(queue.progress());
        QCOMPARE(queue.progress()->number, qsizetype(1000));
        QCOMPARE(queue.verb(), RemovalQueue::Verb::deleting);
        // Not a thousand times.
        QVERIFY(told.count() <= 10);
        go.release();
        QTRY_VERIFY(!queue.isBusy());
        QVERIFY(!queue.progress());
    }

    void preparationComesFirstAndIsNoRemoval()
    {
        RemovalQueue queue;
        QSignalSpy busy(&queue, &RemovalQueue::busyChanged);
        QSignalSpy turns(&queue, &RemovalQueue::turnChanged);
        QSemaphore go;
        QStringList steps;
        queue.enqueue({ .isPreparation = true,
            .work = [&](const auto & /*watch*/) { go.acquire(); },
            .end = [&] { steps.append(u"prepared"_s); } });
        QVERIFY(!queue.isBusy());
        QCOMPARE(busy.count() + turns.count(), 0);
        queue.enqueue({ .begin = [&] { steps.append(u"begins"_s); }, .work = [](const auto & /*watch*/) {} });
        QVERIFY(queue.isBusy());
        QVERIFY(steps.isEmpty());
        // Whoever waits for a removal, or shows one, waits for this one already.
        QCOMPARE(busy.count(), 1);
        QCOMPARE(turns.count(), 1);
        go.release();
        QTRY_VERIFY(!queue.isBusy());
        QCOMPARE(steps, QStringList({ u"prepared"_s, u"begins"_s }));
        QCOMPARE(busy.count(), 2);
        QCOMPARE(turns.count(), 3);
    }

    void preparationAloneTellsNobody()
    {
        RemovalQueue queue;
        QSignalSpy busy(&queue, &RemovalQueue::busyChanged);
        QSignalSpy turns(&queue, &RemovalQueue::turnChanged);
        bool isDone = false;
        queue.enqueue(
            { .isPreparation = true, .work = [](const auto & /*watch*/) {}, .end = [&] { isDone = true; } });
        QTRY_VERIFY(isDone);
        QCOMPARE(busy.count() + turns.count(), 0);
    }

    void stopReachesWhatRunsAndNotWhatWaits()
    {
        RemovalQueue queue;
        int stopped = 0;
        int whole = 0;
        const auto work = [&](const RemovalQueue::Watch &watch) {
            for (int turn = 0; turn < 50 && !watch.stop.stop_requested(); ++turn)
                QThread::msleep(2);
            ++(watch.stop.stop_requested() ? stopped : whole);
        };
        queue.enqueue({ .work = work });
        queue.enqueue({ .work = work });
        queue.stop();
        QVERIFY(queue.isStopping());
        QTRY_VERIFY(!queue.isBusy());
        QCOMPARE(stopped, 1);
        QCOMPARE(whole, 1);
    }

    void closingForgetsWhatWaits()
    {
        RemovalQueue queue;
        int runs = 0;
        const auto work = [&](const auto & /*watch*/) { ++runs; };
        for (int turn = 0; turn < 3; ++turn)
            queue.enqueue({ .work = work });
        queue.close();
        queue.enqueue({ .work = work });
        QTRY_VERIFY(!queue.isBusy());
        QCOMPARE(runs, 1);
    }

    void endsWithWhatRuns()
    {
        bool isDone = false;
        {
            RemovalQueue queue;
            queue.enqueue({ .work = [&](const RemovalQueue::Watch &watch) {
                while (!watch.stop.stop_requested())
                    QThread::msleep(1);
                isDone = true;
            } });
        }
        QVERIFY(isDone);
    }

    void aCopyTakesItsTurnAndKeepsNobodyWaitingWhoAsks()
    {
        RemovalQueue queue;
        QThreadPool copies;
        QSemaphore go;
        QStringList ended;
        QSignalSpy turns(&queue, &RemovalQueue::turnChanged);
        queue.enqueue({ .copying = &copies,
            .work = [&](const auto & /*watch*/) { go.acquire(); },
            .end = [&] { ended.append(u"copy"_s); } });
        queue.enqueue({ .work = [](const auto & /*watch*/) {}, .end = [&] { ended.append(u"removal"_s); } });
        QVERIFY(queue.isCopying());
        const auto answer = queue.ask([] { return 7; });
        QTRY_VERIFY(answer.isFinished());
        QVERIFY(ended.isEmpty());
        go.release();
        QTRY_VERIFY(!queue.isBusy());
        QVERIFY(!queue.isCopying());
        QCOMPARE(ended, QStringList({ u"copy"_s, u"removal"_s }));
        QCOMPARE(turns.count(), 3);
    }

    void aCopyThatIsLeftKeepsNothingWaiting()
    {
        QThreadPool copies;
        RemovalQueue queue;
        QSemaphore go;
        QStringList ended;
        queue.leaveCopy();
        queue.enqueue({ .copying = &copies,
            .work = [&](const auto & /*watch*/) { go.acquire(); },
            .end = [&] { ended.append(u"copy"_s); } });
        queue.enqueue({ .work = [](const auto & /*watch*/) {}, .end = [&] { ended.append(u"removal"_s); } });
        queue.leaveCopy();
        QTRY_VERIFY(!queue.isBusy());
        QCOMPARE(ended, QStringList{ u"removal"_s });
        // And its end is nobody's.
        QSemaphore next;
        queue.enqueue({ .work = [&](const auto & /*watch*/) { next.acquire(); },
            .end = [&] { ended.append(u"next"_s); } });
        go.release();
        copies.waitForDone();
        QCoreApplication::sendPostedEvents();
        QVERIFY(queue.isBusy());
        next.release();
        QTRY_VERIFY(!queue.isBusy());
        QCOMPARE(ended, QStringList({ u"removal"_s, u"next"_s }));
    }

    void questionsWaitAndKeepNobodyWaiting()
    {
        RemovalQueue queue;
        QSemaphore go;
        queue.enqueue({ .work = [&](const auto & /*watch*/) { go.acquire(); } });
        const auto answer = queue.ask([] { return 7; });
        QTest::qWait(20);
        QVERIFY(!answer.isFinished());
        go.release();
        QTRY_VERIFY(answer.isFinished());
        QCOMPARE(answer.result(), 7);
        QTRY_VERIFY(!queue.isBusy());
        const auto other = queue.ask([] {});
        QVERIFY(!queue.isBusy());
        QTRY_VERIFY(other.isFinished());
    }
};

QUILLBROOK_SUITE(TestRemovalQueue, QCoreApplication)
#include "tst_RemovalQueue.moc"
