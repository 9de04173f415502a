#pragma once

// Carries out removals and proves what they achieved. Each waits for its turn and is then done off the main
// thread; what came of it is told by lines of a log, by the figures here, and by signals. Main thread only;
// what it is made with outlives it.

#include "Catalogue/Finding.h"
#include "Core/RemovalQueue.h"
#include "Core/Verification.h"
#include "Removal/Books.h"
#include "Removal/PathRemoval.h"
#include "Removal/Reclaimer.h"
#include "Removal/RemovalJournal.h"
#include "Removal/SafetyNet.h"
#include "Removal/TrashLedger.h"
#include "Scan/FileTree.h"

#include <QCoroTask>
#include <QFuture>
#include <QList>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QThreadPool>

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Quillbrook {

class Navigation;
class ScanDriver;
class StayedSpace;
class VolumeFigures;
struct KitServices;
struct StorageItem;

class ReclaimDriver : public QObject
{
    Q_OBJECT

public:
    /// The other drivers that removals read, move and refresh.
    struct Others
    {
        const ScanDriver &scans;
        Navigation &navigation;
        VolumeFigures &volume;
        RemovalQueue &queue;
    };

    using Cleared = std::function<void(const std::vector<Reclaimer::Outcome> &outcomes)>;
    using Purged = std::function<void(const TrashLedger::Purged &purged)>;
    /// A removal by other ways than the catalogue's, on the queue's thread. The journal is to be written
    /// before each move to the Trash.
    using Work = std::function<std::vector<PathRemoval::Removal>(
        const RemovalQueue::Watch &watch, RemovalJournal &journal)>;

    /// Takes up what a kill has left in the books.
    ReclaimDriver(const KitServices &kit, const Others &others, QObject *parent = nullptr);
    ~ReclaimDriver() override;

    /// Clears findings and remembers what went to the Trash. `verifyClaim` is to follow after the next scan.
    void reclaim(const QList<Finding> &findings, bool permanently);
    /// Moves findings to the Trash for rules, without a line of the log, and answers with the outcomes of
    /// those that were begun. The ledger marks all that went, also what went of a finding that then failed.
    void clearForRules(const QList<Finding> &findings, const Cleared &cleared);
    /// Moves members of a finding to the Trash; those that must not go now are passed over.
    void removeItems(const QList<StorageItem> &items, const Finding &finding);
    /// Removes what is selected, unless a guard refuses it or it is not what `inode` was read of. The tree
    /// goes on showing it.
    void removeSelected(bool permanent, std::uint64_t inode);
    /// Has `work` done in its turn, takes what it did into the ledger and `uninstallLog`, and then calls
    /// `done`.
    void removeBy(const Work &work, const QString &subject, bool permanent = false,
        const std::function<void()> &done = {});
    /// Puts a line of another's removal at the front of `uninstallLog`: whether it was done, and what.
    void tellOfUninstalling(bool isDone, const QString &what);
    /// Deletes for good what the ledger still has in the Trash, and nothing else; the rows with the ids in
    /// `kept` stay.
    void finishRemoving(const QSet<QString> &kept = {});
    /// Deletes rows of the ledger for good, without a line of the log.
    void purge(const std::vector<TrashedItem> &items, const Purged &purged);
    /// Puts what `held` has under these ids back where it was; nothing is replaced. A line of the log says
    /// what came of each.
    void putBack(const QSet<QString> &ids);
    /// Asks off the main thread what still lies in the Trash.
    void refreshHeld();
    /// Holds what the last `reclaim` claimed against what the volume says now.
    void verifyClaim();
    void dismissVerification();
    void clearFreeNowOffer();
    /// Adds a line to what removals did.
    void appendLog(const QString &line);
    /// Asks off the main thread whether a backup stands behind a deletion.
    void refreshSafetyNet();

    /// Asks the guards why a thing must stay; absent when it may be removed. May block on the disk: the
    /// answer is a function to be called on any thread, at any time, which outlives this.
    [[nodiscard]] std::function<std::optional<QString>()> guardedPath(const NodeSnapshot &snapshot) const;
    /// The same for the inode of what lies there, by which it is known again; 0 for nothing.
    [[nodiscard]] std::function<std::uint64_t()> inodeOf(const NodeSnapshot &snapshot) const;
    /// The members of a finding in the present tree; none without one.
    [[nodiscard]] QList<StorageItem> items(const Finding &finding) const;
    /// Bytes of what lies at a path (raw), before it goes: a folder's by a scan of its own, a file's length,
    /// 0 for nothing. Blocks on the disk.
    [[nodiscard]] qint64 measure(const std::string &path) const;

    /// What removals did, a line each.
    [[nodiscard]] const QStringList &reclaimLog() const { return m_reclaimLog; }
    [[nodiscard]] const QStringList &uninstallLog() const { return m_uninstallLog; }
    /// Not to be read while something is being removed.
    [[nodiscard]] const TrashLedger &ledger() const { return m_ledger; }
    /// What Quillbrook moved to the Trash and what still lies there, as far as it is known, in the order in
    /// which it went.
    [[nodiscard]] const std::vector<HeldItem> &held() const { return m_held; }
    /// What of that `finishRemoving` deletes.
    [[nodiscard]] TrashLedger::Pending pending() const;
    /// The ids of what the move went with that `freeNowOffer` speaks of.
    [[nodiscard]] const QSet<QString> &justMoved() const { return m_justMoved; }
    /// Bytes that the person has cleared, over all runs.
    [[nodiscard]] qint64 reclaimedSoFar() const { return m_reclaimedSoFar; }
    /// What the last clearance really achieved; absent before one, and once dismissed.
    [[nodiscard]] const std::optional<Verification> &lastVerification() const { return m_lastVerification; }
    /// Why space did not come back, as sentences for a person; empty where nothing was found.
    [[nodiscard]] const QStringList &stayedReasons() const { return m_stayedReasons; }
    /// Ends once the disk has all that the last removal did.
    [[nodiscard]] const QFuture<void> &flushing() const { return m_flushing; }
    /// Bytes just moved to the Trash, as long as the offer to free them stands.
    [[nodiscard]] std::optional<qint64> freeNowOffer() const { return m_freeNowOffer; }
    /// Absent until it is known.
    [[nodiscard]] const std::optional<SafetyNet> &safetyNet() const { return m_safetyNet; }

Q_SIGNALS:
    /// The disk is to be measured again.
    void diskChanged();
    /// What a `reclaim` cleared without an error.
    void findingsCleared(const QList<Finding> &findings);
    void reclaimLogChanged();
    void uninstallLogChanged();
    /// What `held` says.
    void ledgerChanged();
    void reclaimedSoFarChanged();
    void lastVerificationChanged();
    void freeNowOfferChanged();
    void safetyNetChanged();

private:
    /// One clearance, on its way from thread to thread.
    struct Clearing;
    /// What is held against the volume after the next scan.
    struct Claim
    {
        qint64 bytes = 0;
        qint64 freeBefore = 0;
        bool isInTrash = false;
        std::shared_ptr<StayedSpace> stayed{};
    };

    /// The home folder of the process, in raw bytes.
    [[nodiscard]] std::string rawHome() const;
    [[nodiscard]] qint64 presentFree() const;
    [[nodiscard]] Books books();
    void clear(const std::shared_ptr<Clearing> &clearing, const Cleared &cleared);
    void takeOutcomes(const Clearing &clearing);
    void takeMembers(const std::vector<std::expected<TrashedItem, QString>> &moved, const QStringList &names);
    void takeSelected(const PathRemoval::Removal &removal, const NodeSnapshot &item, bool permanent);
    void takeRemovals(const std::vector<PathRemoval::Removal> &removals, const QString &subject);
    /// The end of whatever changed the books: counts, and lets the journal go.
    void closeBooks(qint64 bytes, std::vector<HeldItem> held);
    void setHeld(std::vector<HeldItem> held);
    void recordReclaimed(qint64 bytes);
    void prependLog(const QString &line);
    void offerToFree(qint64 bytes, const std::vector<QString> &ids);
    void startFlush();
    void setStayedReasons(const QStringList &reasons);
    QCoro::Task<> askForSafetyNet();

    const KitServices &m_kit;
    const ScanDriver &m_scans;
    Navigation &m_navigation;
    VolumeFigures &m_volume;
    RemovalQueue &m_queue;
    QStringList m_reclaimLog;
    QStringList m_uninstallLog;
    TrashLedger m_ledger;
    RemovalJournal m_journal;
    std::vector<HeldItem> m_held;
    QSet<QString> m_justMoved;
    qint64 m_reclaimedSoFar = 0;
    std::optional<Verification> m_lastVerification;
    QStringList m_stayedReasons;
    std::optional<qint64> m_freeNowOffer;
    std::optional<SafetyNet> m_safetyNet;
    std::optional<Claim> m_pendingClaim;
    QFuture<void> m_flushing;
    /// A thread of its own, so that no scan waits for a backup program to answer. Its end is waited for.
    QThreadPool m_askingPool;
    /// The same for a disk that takes its time to write.
    QThreadPool m_flushPool;
};

} // namespace Quillbrook
