#pragma once

// The books of all removals: the ledger and the journal, what of both still lies in the Trash, what of that a
// person wants kept there, and how much has been reclaimed. Whatever moves something to the Trash, or takes
// something out of it, runs through here, one after the other. Main thread only, but for what a run does on
// the queue's thread; what it is made with outlives it.
//
// A kill may have left so much that taking it up lasts seconds. So the files are read on the queue's thread
// too, before anything else has its turn there; what is held, and the total, are told by the signals.

#include "Core/RemovalQueue.h"
#include "Removal/Books.h"
#include "Removal/RemovalJournal.h"
#include "Removal/TrashLedger.h"

#include <QFuture>
#include <QObject>
#include <QSet>
#include <QThreadPool>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Quillbrook {

struct KitServices;

class RemovalBooks : public QObject
{
    Q_OBJECT

public:
    /// A removal, or a way back.
    struct Run
    {
        RemovalQueue::Verb verb = RemovalQueue::Verb::moving;
        /// On the main thread, when its turn has come.
        std::function<void()> begin{};
        /// On the queue's thread, where `books` is nobody else's meanwhile. Answers with the bytes that a
        /// person has reclaimed by it.
        std::function<qint64(const RemovalQueue::Watch &watch, const Books &books)> work{};
        /// On the queue's thread, after the work: a folder (raw) of each volume that it may have changed,
        /// beside the home folder's. Absent for none.
        std::function<std::vector<std::string>()> changed{};
        /// On the main thread, once the books are closed.
        std::function<void()> end{};
    };

    /// Takes up what a kill has left, as the first thing that the queue does. The queue is a new one.
    RemovalBooks(const KitServices &kit, RemovalQueue &queue, QObject *parent = nullptr);
    ~RemovalBooks() override;

    void run(const Run &run);
    /// Asks off the main thread what still lies in the Trash.
    void refresh();
    /// Keeps a thing in the Trash, or no longer: neither putting back nor deleting all takes what is kept.
    void toggleKept(const QString &id);

    /// For what the queue is asked, or while nothing is being removed and what a kill has left is taken up.
    [[nodiscard]] const TrashLedger &ledger() const { return *m_ledger; }
    /// What Quillbrook moved to the Trash and what still lies there, as far as it is known, in the order in
    /// which it went.
    [[nodiscard]] const std::vector<HeldItem> &held() const { return m_held; }
    /// The ids of what of that is kept there.
    [[nodiscard]] const QSet<QString> &kept() const { return m_kept; }
    /// What of it is not, and could be put back.
    [[nodiscard]] std::vector<HeldItem> ticked() const;
    /// Whether that one of `held()` could be deleted for good, and is not kept.
    [[nodiscard]] bool isDeletable(const HeldItem &held) const;
    /// All of those, and how much they are.
    [[nodiscard]] std::vector<HeldItem> deletable() const;
    [[nodiscard]] TrashLedger::Pending deletableSum() const;
    /// All that could be deleted for good, what is kept among it.
    [[nodiscard]] TrashLedger::Pending pending() const;
    /// Bytes that the person has cleared, over all runs.
    [[nodiscard]] qint64 reclaimedSoFar() const { return m_reclaimedSoFar; }
    /// Ends once the disk has all that the last removal did.
    [[nodiscard]] const QFuture<void> &flushing() const { return m_flushing; }

Q_SIGNALS:
    /// What `held` or `kept` says.
    void changed();
    void reclaimedSoFarChanged();

private:
    [[nodiscard]] Books books();
    void takeUp();
    void close(qint64 bytes, std::vector<HeldItem> held);
    void count(qint64 bytes);
    void setHeld(std::vector<HeldItem> held);
    template <typename Choice>
    [[nodiscard]] TrashLedger::Pending sum(const Choice &isMeant) const;
    void startFlush(const std::vector<std::string> &changed);

    const KitServices &m_kit;
    RemovalQueue &m_queue;
    /// There once they have been read. The queue's thread alone changes them.
    std::optional<TrashLedger> m_ledger;
    std::optional<RemovalJournal> m_journal;
    std::vector<HeldItem> m_held;
    QSet<QString> m_kept;
    qint64 m_reclaimedSoFar = 0;
    QFuture<void> m_flushing;
    /// A thread of its own for a disk that takes its time to write. Its end is waited for.
    QThreadPool m_flushPool;
};

} // namespace Quillbrook
