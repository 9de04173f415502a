#pragma once

// Clears pictures and videos of a range of dates through the library of the system. It counts what lies in
// the range, estimates by a sample how much room that takes here, and has the library move the range to its
// Recently Deleted.
//
// Main thread only; no file is asked about on it. What the services refer to outlives this object, and what
// it runs itself is stopped and waited for when it goes.

#include "Photos/PhotoLibrary.h"
#include "Photos/PhotoSample.h"

#include <QCoroTask>
#include <QObject>
#include <QThreadPool>
#include <QTimer>

#include <functional>
#include <optional>

namespace Quillbrook {

class Clock;

class PhotoCleanup : public QObject
{
    Q_OBJECT

public:
    /// What runs. A deletion begins by counting what it is about.
    enum class Task : std::uint8_t { none, counting, moving, puttingBack };

    /// One change of files: what it does, off the main thread, and by what it is followed and stopped.
    struct Turn
    {
        Task task = Task::moving;
        std::shared_ptr<PhotoWork> work{};
        std::function<void()> act{};
    };
    /// Has a turn done off the main thread, and not beside other removals; answers when it is done, or has
    /// been dropped.
    using Runner = std::function<QFuture<void>(const Turn &turn)>;

    struct Services
    {
        PhotoLibrary &library;
        PhotoQuestions &questions;
        const Clock &clock;
        /// A thread of this object's own where there is none.
        Runner run{};
    };

    explicit PhotoCleanup(const Services &services, QObject *parent = nullptr);
    ~PhotoCleanup() override;

    [[nodiscard]] PhotoAccess access() const { return m_access; }
    /// False until the library has said what it allows; until then `access` is not asked.
    [[nodiscard]] bool isAccessKnown() const { return m_isAccessKnown; }
    /// Of the last measure; replaced as a whole, and by nothing else.
    [[nodiscard]] const PhotoSummary &summary() const { return m_summary; }
    /// A measure is running.
    [[nodiscard]] bool working() const { return !m_measures.empty(); }
    /// Both ends are part of the range.
    [[nodiscard]] const QDateTime &from() const { return m_from; }
    [[nodiscard]] const QDateTime &to() const { return m_to; }
    [[nodiscard]] bool includeVideos() const { return m_includeVideos; }
    /// What came of the last deletion.
    [[nodiscard]] const std::optional<QString> &lastResult() const { return m_lastResult; }

    void setFrom(const QDateTime &from);
    void setTo(const QDateTime &to);
    void setIncludeVideos(bool included);

    /// Asks the library what it allows, how much can be put back and what the desktop does with its Trash.
    /// Asks no person.
    void refreshAccess();
    /// Has the library ask for access, and measures nothing.
    void requestAccess();
    /// Counts what is in the range now. Does nothing without access.
    void measure();
    /// Ends what is being measured, which leaves `summary` as it is, what is being moved, which brings back
    /// what has, or what is being put back, which leaves the rest in the Trash.
    void stop();
    /// Deletes what is in the range now, which may be another than was measured. Does nothing unless access
    /// is granted, and while a deletion or a return runs.
    void deleteRange();
    /// Puts back what earlier deletions took and is still there.
    void putBack();

    [[nodiscard]] Task task() const;
    /// How many files have been looked at, or have moved, by that.
    [[nodiscard]] qsizetype done() const;
    /// A deletion or a return is running.
    [[nodiscard]] bool changing() const { return m_change != nullptr; }
    /// Sentences that follow the last result.
    [[nodiscard]] const QStringList &furtherLines() const { return m_furtherLines; }
    /// What can be put back.
    [[nodiscard]] const HeldPhotos &held() const { return m_held; }
    /// After how many days the desktop empties its Trash by itself; absent where it does not.
    [[nodiscard]] const std::optional<int> &daysInTrash() const { return m_daysInTrash; }

Q_SIGNALS:
    void accessChanged();
    void summaryChanged();
    void workingChanged();
    void rangeChanged();
    void lastResultChanged();
    /// `task`, `done`, `changing`, `held` or `daysInTrash`.
    void progressChanged();

private:
    using Work = std::shared_ptr<PhotoWork>;

    QCoro::Task<> askStatus();
    QCoro::Task<> askForAccess();
    QCoro::Task<> measureNow();
    QCoro::Task<> deleteNow();
    QCoro::Task<> putBackNow();
    QCoro::Task<> askHeld();
    void setAccess(PhotoAccess access);
    void setLastResult(const QString &text, const QStringList &furtherLines);
    [[nodiscard]] Work startChange(Task task);
    void endChange();
    void followProgress();
    [[nodiscard]] PhotoQuery range() const;

    PhotoLibrary &m_library;
    PhotoQuestions &m_questions;
    Runner m_run;
    PhotoAccess m_access = PhotoAccess::notAsked;
    bool m_isAccessKnown = false;
    PhotoSummary m_summary;
    QDateTime m_from;
    QDateTime m_to;
    bool m_includeVideos = true;
    std::optional<QString> m_lastResult;
    QStringList m_furtherLines;
    HeldPhotos m_held;
    std::optional<int> m_daysInTrash;
    std::vector<Work> m_measures;
    Task m_changeTask = Task::none;
    Work m_change;
    QTimer m_progress;
    QThreadPool m_pool;
};

} // namespace Quillbrook
