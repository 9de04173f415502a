#pragma once

// Looks at the disk now and then while the program sits in the tray, and says something only if it is worth
// saying. Every check is a complete, quiet scan of the home folder of its own, whatever the window shows.

#include "Catalogue/ReclaimReport.h"

#include <QDateTime>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace Quillbrook {

class UtilityQueue;
struct KitServices;

class Watcher
{
public:
    struct Settings
    {
        /// Free space below this is low. Bytes.
        qint64 lowSpaceBytes = 21'474'836'480;
        /// Reclaimable bytes below this aren't worth a notice.
        qint64 minimumWorthMentioning = 2'147'483'648;
        /// Seconds between checks.
        double interval = 1800;
        /// The least number of seconds between two notices.
        double quietPeriod = 21600;
        /// The timer runs.
        bool enabled = false;

        bool operator==(const Settings &) const = default;
    };

    struct Observation
    {
        /// Of the volume, by the report.
        qint64 freeBytes = 0;
        /// What the report calls safe.
        qint64 reclaimableBytes = 0;
        /// Title of the rule of the largest safe finding.
        std::optional<QString> biggestGroup{};
        /// When the check finished.
        QDateTime checkedAt{};
        bool shouldNotify = false;
        QString headline{};

        bool operator==(const Observation &) const = default;
    };

    using Observer = std::function<void(const Observation &)>;

    /// The services outlive it, and so does the queue. Main thread only, but for `check`.
    explicit Watcher(const KitServices &kit);
    Watcher(const KitServices &kit, const Settings &settings);
    ~Watcher();
    Watcher(const Watcher &) = delete;
    Watcher &operator=(const Watcher &) = delete;

    /// Takes new settings: the timer starts anew, or ends where they say that it shall not run.
    void update(const Settings &settings);
    /// Starts the timer anew, first firing after 5 seconds; nothing where the settings have it off.
    void start();
    /// Ends the timer; the settings stay.
    void stop();
    /// One check, on the calling thread, for as long as a scan takes. From any thread, even while another
    /// check runs. A forced check is always worth a notice.
    void check(bool force);
    /// One check that is not forced, soon and on the watcher's own queue.
    void checkSoon();
    /// Called with each observation, on the main thread, later.
    void setOnObservation(Observer observer);

    [[nodiscard]] Settings settings() const;
    [[nodiscard]] std::optional<Observation> lastObservation() const;
    [[nodiscard]] std::optional<QDateTime> lastNotifiedAt() const;

    /// What a report comes to at a moment, by the settings and the time of the last notice.
    [[nodiscard]] static Observation observe(const ReclaimReport &report, const Settings &settings,
        const std::optional<QDateTime> &lastNotifiedAt, const QDateTime &now, bool force);

private:
    struct State;

    /// Shared with checks that run: they may outlast the watcher, and then tell no one.
    std::shared_ptr<State> m_state;
    UtilityQueue &m_queue;
};

} // namespace Quillbrook
