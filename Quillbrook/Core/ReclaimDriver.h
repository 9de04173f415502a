#pragma once

// Carries out removals and proves what they achieved. Each removal blocks the main thread for as long as the
// file operations take, and a line of a log says what came of it. Main thread only; what it is made with
// outlives it.

#include "Catalogue/Finding.h"
#include "Core/Verification.h"
#include "Removal/PathRemoval.h"
#include "Removal/SafetyNet.h"
#include "Removal/TrashLedger.h"
#include "Scan/FileTree.h"

#include <QCoroTask>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QThreadPool>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Quillbrook {

class Navigation;
class ScanDriver;
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
    };

    ReclaimDriver(const KitServices &kit, const Others &others, QObject *parent = nullptr);

    /// Clears findings and remembers what went to the Trash. `verifyClaim` is to follow after the next scan.
    void reclaim(const QList<Finding> &findings, bool permanently);
    /// Moves members of a finding to the Trash; those that must not go now are passed over.
    void removeItems(const QList<StorageItem> &items, const Finding &finding);
    /// Removes what is selected, unless a guard refuses it. The tree goes on showing it.
    void removeSelected(bool permanent);
    /// Takes over what removals by others than the catalogue did, into the ledger and `uninstallLog`.
    void absorb(const std::vector<PathRemoval::Removal> &removals, const QString &subject);
    /// Deletes for good what the ledger still has in the Trash, and nothing else.
    void finishRemoving();
    /// Holds what the last `reclaim` claimed against what the volume says now.
    void verifyClaim();
    void dismissVerification();
    void clearFreeNowOffer();
    /// Asks off the main thread whether a backup stands behind a deletion.
    void refreshSafetyNet();

    /// Asks the guards why a thing must stay; absent when it may be removed. May block on the disk: the
    /// answer is a function to be called on any thread, at any time, which outlives this.
    [[nodiscard]] std::function<std::optional<QString>()> guardedPath(const NodeSnapshot &snapshot) const;
    /// The members of a finding in the present tree; none without one.
    [[nodiscard]] QList<StorageItem> items(const Finding &finding) const;
    /// Bytes of what lies at a path (raw), before it goes: a folder's by a scan of its own, a file's length,
    /// 0 for nothing. Blocks on the disk.
    [[nodiscard]] qint64 measure(const std::string &path) const;

    /// What removals did, a line each.
    [[nodiscard]] const QStringList &reclaimLog() const { return m_reclaimLog; }
    [[nodiscard]] const QStringList &uninstallLog() const { return m_uninstallLog; }
    [[nodiscard]] const TrashLedger &ledger() const { return m_ledger; }
    /// Bytes that the person has cleared, over all runs.
    [[nodiscard]] qint64 reclaimedSoFar() const { return m_reclaimedSoFar; }
    /// What the last clearance really achieved; absent before one, and once dismissed.
    [[nodiscard]] const std::optional<Verification> &lastVerification() const { return m_lastVerification; }
    /// Bytes just moved to the Trash, as long as the offer to free them stands.
    [[nodiscard]] std::optional<qint64> freeNowOffer() const { return m_freeNowOffer; }
    /// Absent until it is known.
    [[nodiscard]] const std::optional<SafetyNet> &safetyNet() const { return m_safetyNet; }

Q_SIGNALS:
    /// The disk is to be measured again.
    void diskChanged();
    void reclaimLogChanged();
    void uninstallLogChanged();
    void ledgerChanged();
    void reclaimedSoFarChanged();
    void lastVerificationChanged();
    void freeNowOfferChanged();
    void safetyNetChanged();

private:
    /// The home folder of the process, in raw bytes.
    [[nodiscard]] std::string rawHome() const;
    [[nodiscard]] qint64 presentFree() const;
    [[nodiscard]] std::optional<TrashedItem> moveItem(const StorageItem &item);
    void record(const std::vector<TrashedItem> &items);
    void recordReclaimed(qint64 bytes);
    void appendLog(const QString &line);
    void prependLog(const QString &line);
    void offerToFree(qint64 bytes);
    QCoro::Task<> askForSafetyNet();

    const KitServices &m_kit;
    const ScanDriver &m_scans;
    Navigation &m_navigation;
    VolumeFigures &m_volume;
    QStringList m_reclaimLog;
    QStringList m_uninstallLog;
    TrashLedger m_ledger;
    qint64 m_reclaimedSoFar = 0;
    std::optional<Verification> m_lastVerification;
    std::optional<qint64> m_freeNowOffer;
    std::optional<SafetyNet> m_safetyNet;
    std::optional<qint64> m_freeBeforeReclaim;
    std::optional<qint64> m_pendingClaim;
    /// A thread of its own, so that no scan waits for a backup program to answer. Its end is waited for.
    QThreadPool m_askingPool;
};

} // namespace Quillbrook
