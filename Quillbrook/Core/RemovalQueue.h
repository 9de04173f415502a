#pragma once

// One removal at a time, off the main thread, in the order in which they were asked for. Whatever takes
// something away goes through here, and so does what reads the books of that: the work of a removal may use
// the ledger, the journal and the Trash as nobody else does meanwhile. A move to another drive, or back from
// one, takes its turn here too, since it removes what it has copied.
//
// Used on the main thread only; what the work uses outlives the queue.

#include <QFuture>
#include <QObject>
#include <QString>
#include <QThreadPool>
#include <QTimer>
#include <QtConcurrentRun>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace Quillbrook {

class RemovalQueue : public QObject
{
    Q_OBJECT

public:
    enum class Verb : std::uint8_t { moving, deleting, puttingBack, bringingBack };

    /// What a removal has come to: the thing that goes now, from 1, of how many, and the bytes that went
    /// before it.
    struct Progress
    {
        qsizetype number = 0;
        qsizetype count = 0;
        QString name{};
        qint64 bytes = 0;
        /// How much of the present thing has gone, 0 to 1.
        double inside = 0;

        bool operator==(const Progress &) const = default;

        /// Of all things, 0 to 1.
        [[nodiscard]] double share() const
        {
            return count < 1 ? 0 : (static_cast<double>(number - 1) + inside) / static_cast<double>(count);
        }
    };

    /// For the work. Its progress may be told as often as it changes.
    struct Watch
    {
        std::function<void(const Progress &)> progress{};
        /// Obeyed between two entries.
        std::stop_token stop{};
    };

    struct Removal
    {
        Verb verb = Verb::moving;
        /// Where the work of a copy is done, which may take hours: scans and whoever asks the queue go on
        /// meanwhile. It uses neither the ledger nor the journal. Its owner waits for it and goes before the
        /// queue. Absent for all other work.
        QThreadPool *copying = nullptr;
        /// No removal, but what has to be done before the first one begins. `isBusy` speaks of what waits for
        /// it, and not of it.
        bool isPreparation = false;
        /// On the main thread, when its turn has come.
        std::function<void()> begin{};
        /// On the queue's thread, or on that of the copies.
        std::function<void(const Watch &)> work{};
        /// On the main thread, once the work is done.
        std::function<void()> end{};
    };

    explicit RemovalQueue(QObject *parent = nullptr);
    /// Stops what runs after its present entry, waits for it unless it is a copy, and forgets what waits.
    ~RemovalQueue() override;

    void enqueue(Removal removal);
    /// Only reads, on the queue's thread, after the removal that runs. Keeps nothing waiting that `isBusy`
    /// speaks of.
    template <typename Question>
    [[nodiscard]] auto ask(Question question)
    {
        return QtConcurrent::run(&m_thread, std::move(question));
    }
    /// Ends what runs after its present entry. What waits goes on.
    void stop();
    /// Goes on without the copy that runs, which ends later, or never. Its `end` is not called.
    void leaveCopy();
    /// As `stop`, forgets what waits and takes nothing more: the program is about to end.
    void close();
    /// Blocks until nothing but a copy runs any more; what has ended tells nobody then.
    void wait() { m_thread.waitForDone(); }

    /// Whether something is being removed, or waits for it.
    [[nodiscard]] bool isBusy() const;
    /// Whether it is a copy that runs.
    [[nodiscard]] bool isCopying() const;
    /// Whether what runs has been told to stop.
    [[nodiscard]] bool isStopping() const;
    [[nodiscard]] Verb verb() const;
    /// Absent before the first thing of a removal goes.
    [[nodiscard]] const std::optional<Progress> &progress() const { return m_progress; }

Q_SIGNALS:
    void busyChanged();
    /// Another removal has begun, or waits for a preparation, or none is left.
    void turnChanged();
    /// Also when another removal has begun, or the one that runs is stopping.
    void progressChanged();

private:
    struct Running;

    void startNext();
    void becomeIdle();
    void finish(const std::shared_ptr<Running> &running);
    void showProgress();

    std::deque<Removal> m_waiting;
    std::shared_ptr<Running> m_running;
    std::optional<Progress> m_progress;
    bool m_isClosed = false;
    /// What runs may tell of thousands of things a second; people are told ten times.
    QTimer m_clock{ this };
    QThreadPool m_thread;
};

} // namespace Quillbrook
