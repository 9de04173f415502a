#pragma once

// Measures a drive, moves cold findings there and brings them back: one at a time, off the main thread. A
// line of a log says what came of each. Main thread only; what it is made with outlives it.

#include "Catalogue/Finding.h"
#include "Core/CopyRate.h"
#include "Offload/DestinationProfile.h"
#include "Offload/MovedThings.h"

#include <QCoroTask>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QThreadPool>
#include <QTimer>

#include <deque>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

namespace Quillbrook {

class Navigation;
class ScanDriver;
struct KitServices;

class OffloadDriver : public QObject
{
    Q_OBJECT

public:
    struct Others
    {
        const ScanDriver &scans;
        const Navigation &navigation;
    };

    /// What is being moved right now.
    struct Running
    {
        /// The finding's id, or the place of what is brought back.
        QString id{};
        /// Bytes; `total` is at least 1.
        qint64 done = 0;
        qint64 total = 1;
        /// Absent until it is known.
        std::optional<qint64> bytesPerSecond{};
        /// It can be ended, and has not been yet.
        bool canStop = true;
    };

    OffloadDriver(const KitServices &kit, const Others &others, QObject *parent = nullptr);
    /// Ends what runs as `stop` does, and waits for it.
    ~OffloadDriver() override;

    /// The findings that may be offered, in the report's order.
    [[nodiscard]] QList<Finding> offloadCandidates() const;
    /// Measures a folder (absolute, raw bytes) anew; an earlier measurement that runs is given up.
    void profileDestination(const std::string &path);
    /// Moves a finding to the destination as it is now; nothing without one. Waits for what runs already.
    void offload(const Finding &finding, bool allowSlowBus);
    void bringBack(const MovedThing &thing);
    /// Ends what runs, and forgets what waits.
    void stop();
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
    [[nodiscard]] const std::vector<MovedThing> &movedThings() const { return m_movedThings; }
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
    struct Job;

    QCoro::Task<> profileAt(std::string path);
    QCoro::Task<> moveAway(std::shared_ptr<Job> job, Finding finding, bool allowSlowBus);
    QCoro::Task<> moveBack(std::shared_ptr<Job> job, MovedThing thing);
    QCoro::Task<> lookForMovedThings();
    QCoro::Task<> lookForDestination();
    [[nodiscard]] std::shared_ptr<Job> startJob(const QString &id, qint64 total);
    void endJob(const std::shared_ptr<Job> &job);
    void setDestination(std::optional<DestinationProfile> profile, std::optional<QString> error);
    void setMovedThings(std::vector<MovedThing> things);
    void appendLog(const QString &line);
    void followProgress();

    const KitServices &m_kit;
    const ScanDriver &m_scans;
    const Navigation &m_navigation;
    std::optional<DestinationProfile> m_destination;
    std::optional<QString> m_destinationError;
    /// When it was measured, the destination lay on another file system than the home folder.
    bool m_isElsewhere = false;
    /// The path of a destination that went away, to be measured again when it comes back.
    std::optional<std::string> m_awayDestination;
    std::optional<std::stop_source> m_profiling;
    QStringList m_offloadLog;
    std::optional<QString> m_offloadFocus;
    std::vector<MovedThing> m_movedThings;
    /// What runs, and what waits for it.
    std::deque<std::shared_ptr<Job>> m_jobs;
    std::stop_source m_looking;
    QTimer m_progressClock{ this };
    CopyRate m_rate;
    // Threads of their own, so that no scan waits for a drive. Their ends are waited for.
    QThreadPool m_measuringPool;
    QThreadPool m_movingPool;
    QThreadPool m_lookingPool;
};

} // namespace Quillbrook
