#pragma once

// The one central state object of the application: all screens observe it, and it alone starts scans and
// holds the tree and the report. It lives on the main thread; long work runs in tasks of the thread pool that
// take and return values and are awaited, and after every wait a task compares its token, so that an old scan
// ends silently.

#include "Automation/UpdateCheck.h"
#include "Automation/Watcher.h"
#include "Catalogue/ReclaimReport.h"
#include "Core/FindingCollector.h"
#include "Core/Pane.h"
#include "Core/ScanProgress.h"
#include "Core/Scope.h"
#include "Core/Verification.h"
#include "Platform/AppServices.h"
#include "Removal/PathRemoval.h"
#include "Removal/SafetyNet.h"
#include "Removal/TrashLedger.h"
#include "Scan/FastScanner.h"
#include "Scan/FileTree.h"

#include <QCoroTask>
#include <QElapsedTimer>
#include <QFuture>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QThreadPool>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Quillbrook {

class Background;
class CatalogueInHand;
class ScanInHand;
struct StorageItem;

/// Where the model stands. `message` is set only for `failed`.
struct Phase
{
    enum class Kind { idle, scanning, ready, failed };

    Kind kind = Kind::idle;
    QString message{};

    bool operator==(const Phase &) const = default;
};

class AppModel : public QObject
{
    Q_OBJECT

public:
    struct ScanRequest
    {
        /// Absent: the present scope stays.
        std::optional<Scope> scope{};
        /// Automatic starts happen once per run of the application.
        bool automatic = false;
    };

    explicit AppModel(const AppServices &services, QObject *parent = nullptr);
    ~AppModel() override;

    // Scan driver. A request while scanning is dropped.
    void scan(const ScanRequest &request);
    void cancelScan();

    // Navigation.
    /// Goes into a folder, or selects a file. Without a tree nothing happens.
    void drillInto(qint32 node);
    /// Back to a position of `breadcrumb`; beyond its end nothing happens, a negative one ends the process.
    void popTo(qsizetype position);
    void setSelection(const std::optional<NodeSnapshot> &selection);
    void setSearchText(const QString &text);
    void setRequestedPane(std::optional<Pane> pane);
    /// In raw bytes.
    void setScanRoot(const std::string &path);

    // Queries over the whole tree, whatever the focus is, largest first.
    [[nodiscard]] QList<NodeSnapshot> largestFiles(qsizetype limit) const;
    /// The first `limit` names met that hold `query` in any letter case; fewer than 2 characters find
    /// nothing.
    [[nodiscard]] QList<NodeSnapshot> search(const QString &query, qsizetype limit) const;
    /// The raw path of what a snapshot names, for system calls. From the tree as long as it still holds that
    /// node at that path, else the path's text encoded.
    [[nodiscard]] std::string rawPath(const NodeSnapshot &snapshot) const;
    /// The same for a finding, whose node is looked for in the tree by its path's text.
    [[nodiscard]] std::string rawPath(const Finding &finding) const;

    // Removal. Each blocks for as long as the file operations take, and tells in `reclaimLog` what came of
    // it.
    /// Clears findings, remembers what went to the Trash, and scans again; the end of that scan holds what
    /// was claimed against what the volume says.
    void reclaim(const QList<Finding> &findings, bool permanently);
    /// Moves members of a finding to the Trash; those that must not go now are passed over.
    void removeItems(const QList<StorageItem> &items, const Finding &finding);
    /// Removes what is selected, unless a guard refuses it. Scans nothing again.
    void removeSelected(bool permanent);
    /// Takes over what removals by others than the catalogue did, into the ledger and `uninstallLog`.
    void absorb(const std::vector<PathRemoval::Removal> &removals, const QString &subject);
    /// Deletes for good what the ledger still has in the Trash, and nothing else, and scans again.
    void finishRemoving();
    void dismissVerification();
    void clearFreeNowOffer();
    /// Asks the guards why a thing must stay; absent when it may be removed. May block on the disk: the
    /// answer is a function to be called on any thread, at any time, which outlives the model.
    [[nodiscard]] std::function<std::optional<QString>()> guardedPath(const NodeSnapshot &snapshot) const;
    /// The members of a finding in the present tree; none without one.
    [[nodiscard]] QList<StorageItem> items(const Finding &finding) const;
    /// Bytes of what lies at a path (raw), before it goes: a folder's by a scan of its own, a file's length,
    /// 0 for nothing. Blocks on the disk.
    [[nodiscard]] qint64 measure(const std::string &path) const;
    /// Asks off the main thread whether a backup stands behind a deletion.
    void refreshSafetyNet();

    /// Asks, at most once a day unless a notice is on hand, whether there is a newer version.
    void checkForUpdate();

    // The watcher.
    /// Takes its observations from now on, and posts those that are worth it. Both outlive the watching.
    void configureWatcher(Background &background);
    /// Switching on gives a reading at once.
    void setWatching(bool watching);

    // The volume. A report's figures go before the live ones.
    void refreshVolume();
    void refreshMenuBarTitle();
    /// Starts the clock that refreshes the volume's figures every 60 seconds; starting again replaces it.
    void startRuleClock();
    [[nodiscard]] qint64 volumeFree() const;
    [[nodiscard]] qint64 volumeTotal() const;

    [[nodiscard]] const Phase &phase() const { return m_phase; }
    [[nodiscard]] const std::shared_ptr<const FileTree> &tree() const { return m_tree; }
    [[nodiscard]] qint32 rootNode() const { return m_rootNode; }
    /// Of the last finished scan, or of the quick stage of the scan in hand; absent before one.
    [[nodiscard]] const std::optional<ReclaimReport> &report() const { return m_report; }
    [[nodiscard]] qint32 focus() const { return m_focus; }
    [[nodiscard]] const QList<qint32> &breadcrumb() const { return m_breadcrumb; }
    [[nodiscard]] const QStringList &breadcrumbNames() const { return m_breadcrumbNames; }
    [[nodiscard]] const std::optional<NodeSnapshot> &selection() const { return m_selection; }
    /// As text, for people to read and for tables to compare with.
    [[nodiscard]] QString scanRoot() const;
    [[nodiscard]] const QString &searchText() const { return m_searchText; }
    /// What removals did, a line each.
    [[nodiscard]] const QStringList &reclaimLog() const { return m_reclaimLog; }
    [[nodiscard]] const QStringList &uninstallLog() const { return m_uninstallLog; }
    /// Bytes that the person has cleared, over all runs.
    [[nodiscard]] qint64 reclaimedSoFar() const { return m_reclaimedSoFar; }
    /// What the last clearance really achieved; absent before one, and once dismissed.
    [[nodiscard]] const std::optional<Verification> &lastVerification() const { return m_lastVerification; }
    /// Bytes just moved to the Trash, as long as the offer to free them stands.
    [[nodiscard]] std::optional<qint64> freeNowOffer() const { return m_freeNowOffer; }
    /// Absent until it is known.
    [[nodiscard]] const std::optional<SafetyNet> &safetyNet() const { return m_safetyNet; }
    [[nodiscard]] const TrashLedger &ledger() const { return m_ledger; }
    /// What there is newer than this; absent when nothing is known of such.
    [[nodiscard]] const std::optional<AvailableUpdate> &update() const { return m_update; }
    [[nodiscard]] bool watching() const { return m_watching; }
    /// The latest observation; absent before one.
    [[nodiscard]] const std::optional<Watcher::Observation> &lastWatch() const { return m_lastWatch; }
    [[nodiscard]] Watcher &watcher() { return m_watcher; }
    [[nodiscard]] Scope scope() const { return m_scope; }
    [[nodiscard]] std::optional<Pane> requestedPane() const { return m_requestedPane; }
    /// Seconds of the last tree scan; 0 before one.
    [[nodiscard]] double lastScanDuration() const { return m_lastScanDuration; }
    [[nodiscard]] quint64 treeGeneration() const { return m_treeGeneration; }
    [[nodiscard]] qsizetype scannedFileCount() const { return m_scannedFileCount; }
    [[nodiscard]] qint64 liveFree() const { return m_liveFree; }
    [[nodiscard]] qint64 liveOptimistic() const { return m_liveOptimistic; }
    [[nodiscard]] qint64 liveTotal() const { return m_liveTotal; }
    [[nodiscard]] const QString &menuBarTitle() const { return m_menuBarTitle; }
    [[nodiscard]] ScanProgress &scanProgress() { return m_scanProgress; }
    [[nodiscard]] const AppServices &services() const { return m_services; }

Q_SIGNALS:
    void phaseChanged();
    void treeChanged();
    void reportChanged();
    void focusChanged();
    void breadcrumbChanged();
    void selectionChanged();
    void scanRootChanged();
    void searchTextChanged();
    void reclaimLogChanged();
    void uninstallLogChanged();
    void reclaimedSoFarChanged();
    void lastVerificationChanged();
    void freeNowOfferChanged();
    void safetyNetChanged();
    void ledgerChanged();
    void updateChanged();
    void watchingChanged();
    void lastWatchChanged();
    void scopeChanged();
    void requestedPaneChanged();
    void lastScanDurationChanged();
    void treeGenerationChanged();
    void scannedFileCountChanged();
    void volumeChanged();
    void menuBarTitleChanged();

private:
    /// What one scan was started with. Its task carries it from stage to stage, so that nothing that changes
    /// in the model meanwhile reaches a scan in hand.
    struct ScanJob
    {
        quint64 token = 0;
        std::shared_ptr<ScanInHand> scanner{};
        std::shared_ptr<CatalogueInHand> catalogue{};
        FastScanner::Request request{};
    };

    static QCoro::Task<> runScan(QPointer<AppModel> model, QCoro::Task<> previous, ScanJob job);
    /// `job` outlives it.
    static QCoro::Task<> runQuickStage(QPointer<AppModel> model, const ScanJob &job);
    [[nodiscard]] static bool isCurrent(const QPointer<AppModel> &model, const ScanJob &job);
    template <typename Work>
    QFuture<void> onPool(Work work);
    [[nodiscard]] ScanJob newJob();
    void showQuickFindings(const FindingCollector::Look &look, qsizetype steps);
    void endQuickStage(const ReclaimReport &report);
    void finishScan(const FastScanner::Result &result, const CatalogueInHand &catalogue);
    void endOfScanCalls();
    void dropScanInHand();
    void tick();
    void clearFocus();
    void setReport(const ReclaimReport &report);
    /// Of the user default that holds `reclaimedSoFar`.
    [[nodiscard]] static QString reclaimedBytesKey();
    void verifyClaim();
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
    QCoro::Task<> askForUpdate();
    void takeObservation(const Watcher::Observation &observation);

    AppServices m_services;
    Phase m_phase;
    std::shared_ptr<const FileTree> m_tree;
    qint32 m_rootNode = FileTree::noNode;
    std::optional<ReclaimReport> m_report;
    qint32 m_focus = FileTree::noNode;
    QList<qint32> m_breadcrumb;
    std::optional<NodeSnapshot> m_selection;
    std::string m_scanRoot;
    double m_lastScanDuration = 0;
    QString m_searchText;
    QStringList m_reclaimLog;
    std::optional<SafetyNet> m_safetyNet;
    Scope m_scope = Scope::quiet;
    std::optional<Pane> m_requestedPane;
    std::shared_ptr<ScanInHand> m_scanner;
    std::shared_ptr<CatalogueInHand> m_catalogue;
    bool m_hasScanned = false;
    quint64 m_scanToken = 0;
    TrashLedger m_ledger;
    qint64 m_reclaimedSoFar = 0;
    std::optional<Verification> m_lastVerification;
    quint64 m_treeGeneration = 0;
    qsizetype m_scannedFileCount = 0;
    QStringList m_breadcrumbNames;
    ScanProgress m_scanProgress;
    /// The bar's value, 0 to 1, master copy.
    double m_progress = 0;
    QElapsedTimer m_sinceScanStart;
    std::optional<qint64> m_freeBeforeReclaim;
    QTimer m_ticker;
    QCoro::Task<> m_scanTask;
    /// What of this and of earlier scans may still run on the pool.
    QList<QFuture<void>> m_poolWork;
    qint64 m_liveFree = 0;
    qint64 m_liveOptimistic = 0;
    qint64 m_liveTotal = 0;
    QString m_menuBarTitle = QStringLiteral("—");
    QTimer m_volumeClock;
    QStringList m_uninstallLog;
    std::optional<qint64> m_pendingClaim;
    std::optional<qint64> m_freeNowOffer;
    std::optional<AvailableUpdate> m_update;
    Watcher m_watcher;
    QPointer<Background> m_background;
    bool m_watching = false;
    std::optional<Watcher::Observation> m_lastWatch;
    /// A thread beside the pool's, so that no scan waits for a backup program to answer. Its end is waited
    /// for.
    QThreadPool m_askingPool;
};

} // namespace Quillbrook
