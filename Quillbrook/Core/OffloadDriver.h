#pragma once

// Measures a drive, moves cold findings there and brings them back: one at a time, off the main thread, in
// the turns that all removals take. A line of a log says what came of each. Main thread only; what it is made
// with outlives it.

#include "Catalogue/Finding.h"
#include "Core/CopyRate.h"
#include "Core/MovedThingsFinder.h"
#include "Core/RemovalQueue.h"
#include "Offload/DestinationProfile.h"

#include <QCoroTask>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QThreadPool>
#include <QTimer>

#include <chrono>
#include <deque>
#include <expected>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>

class QDeadlineTimer;

namespace Quillbrook {

class ScanDriver;
struct KitServices;
struct OffloadJob;

class OffloadDriver : public QObject
{
    Q_OBJECT

public:
    struct Others
    {
        const ScanDriver &scans;
        RemovalQueue &queue;
        /// How long a move that was told to stop is waited for. A drive that does not answer holds it, and
        /// nothing else can be removed meanwhile.
        std::chrono::milliseconds patience = std::chrono::minutes(1);
    };

    /// What is being moved right now, or is the next to be.
    struct Running
    {
        /// The finding's id, or the place of what is brought back.
        QString id{};
        /// Bytes; `total` is at least 1.
        qint64 done = 0;
        qint64 total = 1;
        /// Absent until it is known.
        std::optional<qint64> bytesPerSecond{};
        /// It does not wait for a removal any more.
        bool hasBegun = false;
        /// It can be ended, and has not been yet.
        bool canStop = true;
    };

    OffloadDriver(const KitServices &kit, const Others &others, QObject *parent = nullptr);
    /// Ends what runs as `stop` does, and waits for it, however long a drive takes to answer.
    ~OffloadDriver() override;

    /// The findings that may be offered, in the report's order.
    [[nodiscard]] QList<Finding> offloadCandidates() const;
    /// Measures a folder (absolute, raw bytes) anew; an earlier measurement that runs is given up.
    void profileDestination(const std::string &path);
    /// Moves a finding to the destination as it is now; nothing without one. Waits for its turn.
    void offload(const Finding &finding, bool allowSlowBus);
    /// Waits for its turn too.
    void bringBack(const MovedThing &thing);
    /// Ends what runs, and at once what waits. What has not ended after a while because a drive does not
    /// answer is given up: it touches nothing any more but the copy that it made.
    void stop();
    /// For the end of the program: ends all that runs, and tells whether it has ended in time. A drive that
    /// does not answer holds a thread for as long as the system lets it.
    [[nodiscard]] bool endsWithin(const QDeadlineTimer &patience);
    /// Looks for what lies on other drives, and whether the destination is still there.
    void recheckDrives();
    void setOffloadFocus(const std::optional<QString> &ruleId);

    /// Absent until one was measured, and while the next one is.
    [[nodiscard]] const std::optional<DestinationProfile> &destination() const { return m_destination; }
    /// Why there is none; for a person, in their language.
    [[nodiscard]] const std::optional<QString> &destinationError() const { return m_destinationError; }
    [[nodiscard]] bool isProfiling() const { return m_profiling.has_value(); }
    /// A line for each thing that was moved or was not, oldest first.
    [[nodiscard]] const QStringList &offloadLog() const { return m_offloadLog; }
    [[nodiscard]] const std::optional<QString> &offloadFocus() const { return m_offloadFocus; }
    [[nodiscard]] const std::vector<MovedThing> &movedThings() const { return m_finder.things(); }
    [[nodiscard]] std::optional<Running> running() const;

Q_SIGNALS:
    /// The disk is to be measured again.
    void diskChanged();
    void destinationChanged();
    void offloadLogChanged();
    void offloadFocusChanged();
    void movedThingsChanged();
    /// Something else runs, or nothing any more.
    void runningChanged();
    /// What runs has come further.
    void progressed();

private:
    /// What the work of a move is given.
    struct Watch
    {
        std::function<void(qint64 bytes, qint64 total)> progress{};
        /// As `Offload::bringBack` has them.
        std::function<bool()> mayFinish{};
        std::function<void()> onReturned{};
        std::stop_token stop{};
    };
    /// One move: what is done off the main thread, and what on it once that has ended.
    struct Move
    {
        RemovalQueue::Verb verb = RemovalQueue::Verb::moving;
        std::function<void(const Watch &watch)> work{};
        std::function<void()> end{};
        /// In the place of `end` where only the drive's part was left to do, and the drive does not answer.
        std::function<void()> endWithoutDrive{};
    };

    QCoro::Task<> profileAt(std::string path);
    QCoro::Task<> lookForDestination();
    void enqueue(const std::shared_ptr<OffloadJob> &job, const Move &move);
    void beginJob(const std::shared_ptr<OffloadJob> &job);
    bool endJob(const std::shared_ptr<OffloadJob> &job);
    void giveUp(const std::shared_ptr<OffloadJob> &job);
    /// Whether something that was given up is still held there, which is logged then.
    bool isHeld(const std::string &folder, const QString &title);
    void takeReturned(
        const MovedThing &thing, const std::expected<Offload::Returned, OffloadError> &returned);
    void setDestination(std::optional<DestinationProfile> profile, std::optional<QString> error);
    void appendLog(const QString &line);
    void followProgress();

    const KitServices &m_kit;
    const ScanDriver &m_scans;
    RemovalQueue &m_queue;
    const std::chrono::milliseconds m_patience;
    std::optional<DestinationProfile> m_destination;
    std::optional<QString> m_destinationError;
    /// When it was measured, the destination lay on another file system than the home folder.
    bool m_isElsewhere = false;
    /// The path of a destination that went away, to be measured again when it comes back.
    std::optional<std::string> m_awayDestination;
    std::optional<std::stop_source> m_profiling;
    QStringList m_offloadLog;
    std::optional<QString> m_offloadFocus;
    MovedThingsFinder m_finder;
    /// What runs, and what waits for it.
    std::deque<std::shared_ptr<OffloadJob>> m_jobs;
    /// What was given up and may still be held by a drive.
    std::vector<std::weak_ptr<OffloadJob>> m_givenUp;
    /// The path of the destination that is being looked for, and whether something has changed since.
    std::optional<std::string> m_lookedFor;
    bool m_isLookedForAgain = false;
    QTimer m_progressClock{ this };
    CopyRate m_rate;
    /// Held by the measurement whose turn it is.
    std::timed_mutex m_measuring;
    // Threads of their own, so that no scan waits for a drive. Their ends are waited for.
    QThreadPool m_measuringPool;
    QThreadPool m_movingPool;
    QThreadPool m_lookingPool;
};

} // namespace Quillbrook
