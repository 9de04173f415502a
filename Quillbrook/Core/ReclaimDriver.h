#pragma once

// Clears what the catalogue found, proves what that achieved, and takes what lies in the Trash back or away
// for good. Each waits for its turn and is then done off the main thread; what came of it is told by lines of
// a log, by the figures here, and by signals. Main thread only; what it is made with outlives it.

#include "Catalogue/Finding.h"
#include "Core/Verification.h"
#include "Removal/Reclaimer.h"
#include "Removal/SafetyNet.h"
#include "Removal/TrashLedger.h"

#include <QCoroTask>
#include <QList>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QThreadPool>

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Quillbrook {

class RemovalBooks;
class ScanDriver;
class StayedSpace;
class VolumeFigures;
struct Books;
struct HeldItem;
struct KitServices;
struct StorageItem;

class ReclaimDriver : public QObject
{
    Q_OBJECT

public:
    /// What removals read, write and refresh.
    struct Others
    {
        const ScanDriver &scans;
        VolumeFigures &volume;
        RemovalBooks &books;
    };

    using Cleared = std::function<void(const std::vector<Reclaimer::Outcome> &outcomes)>;
    using Purged = std::function<void(const TrashLedger::Purged &purged)>;

    ReclaimDriver(const KitServices &kit, const Others &others, QObject *parent = nullptr);
    ~ReclaimDriver() override;

    /// Clears findings and remembers what went to the Trash. `verifyClaim` is to follow after the next scan.
    void reclaim(const QList<Finding> &findings, bool permanently);
    /// Moves findings to the Trash for rules, without a line of the log, and answers with the outcomes of
    /// those that were begun. The ledger marks all that went, also what went of a finding that then failed.
    void clearForRules(const QList<Finding> &findings, const Cleared &cleared);
    /// Moves members of a finding to the Trash; those that must not go now are passed over.
    void removeItems(const QList<StorageItem> &items, const Finding &finding);
    /// Deletes for good what the ledger has in the Trash when this is called, and nothing else; what is kept
    /// there stays.
    void finishRemoving();
    /// Deletes rows of the ledger for good, without a line of the log.
    void purge(const std::vector<TrashedItem> &items, const Purged &purged);
    /// Puts what lies in the Trash and is not kept there back where it was; nothing is replaced. A line of
    /// the log says what came of each.
    void putBack();
    /// Holds what the last `reclaim` claimed against what the volume says now.
    void verifyClaim();
    void dismissVerification();
    void clearFreeNowOffer();
    /// Adds a line to what removals did, at its end or before all others.
    void appendLog(const QString &line);
    void prependLog(const QString &line);
    /// Asks off the main thread whether a backup stands behind a deletion.
    void refreshSafetyNet();

    /// The members of a finding in the present tree; none without one.
    [[nodiscard]] QList<StorageItem> items(const Finding &finding) const;

    /// What removals did, a line each.
    [[nodiscard]] const QStringList &reclaimLog() const { return m_reclaimLog; }
    /// The ids of what the move went with that `freeNowOffer` speaks of.
    [[nodiscard]] const QSet<QString> &justMoved() const { return m_justMoved; }
    /// What the last clearance really achieved; absent before one, and once dismissed.
    [[nodiscard]] const std::optional<Verification> &lastVerification() const { return m_lastVerification; }
    /// Why space did not come back, as sentences for a person; empty where nothing was found.
    [[nodiscard]] const QStringList &stayedReasons() const { return m_stayedReasons; }
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

    [[nodiscard]] qint64 presentFree() const;
    void clear(const std::shared_ptr<Clearing> &clearing, const Cleared &cleared);
    void takeOutcomes(const Clearing &clearing);
    void takeMembers(const std::vector<std::expected<TrashedItem, QString>> &moved, const QStringList &names);
    void takeReturns(
        const std::vector<HeldItem> &things, const std::vector<std::expected<void, QString>> &results);
    void purgeBy(
        const std::function<std::vector<TrashedItem>(const Books &books)> &items, const Purged &purged);
    void appendLines(const QStringList &lines);
    void offerToFree(qint64 bytes, const std::vector<QString> &ids);
    void setStayedReasons(const QStringList &reasons);
    QCoro::Task<> askForSafetyNet();

    const KitServices &m_kit;
    const ScanDriver &m_scans;
    VolumeFigures &m_volume;
    RemovalBooks &m_books;
    QStringList m_reclaimLog;
    QSet<QString> m_justMoved;
    std::optional<Verification> m_lastVerification;
    QStringList m_stayedReasons;
    std::optional<qint64> m_freeNowOffer;
    std::optional<SafetyNet> m_safetyNet;
    std::optional<Claim> m_pendingClaim;
    /// A thread of its own, so that no scan waits for a backup program to answer. Its end is waited for.
    QThreadPool m_askingPool;
};

} // namespace Quillbrook
