#pragma once

// Starts scans, follows them and holds the tree and the report that they end with. The only place that does.
// Main thread only; the services outlive it.

#include "Catalogue/HostCatalogue.h"
#include "Catalogue/ReclaimReport.h"
#include "Core/FindingCollector.h"
#include "Core/Phase.h"
#include "Core/ScanProgress.h"
#include "Core/Scope.h"
#include "Scan/FileTree.h"

#include <QCoroTask>
#include <QElapsedTimer>
#include <QFuture>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

#include <memory>
#include <optional>
#include <string>

namespace Quillbrook {

struct KitServices;

class ScanDriver : public QObject
{
    Q_OBJECT

public:
    struct Request
    {
        /// Absent: the present scope stays.
        std::optional<Scope> scope{};
        /// Automatic scans start once per run of the application, and only as its first scan.
        bool automatic = false;
    };

    /// What a scan could not measure, so that it counts as nothing.
    struct Shortfall
    {
        /// Whose size the system did not tell.
        qsizetype files = 0;
        /// That could not be opened.
        qsizetype folders = 0;

        bool operator==(const Shortfall &) const = default;
    };

    explicit ScanDriver(const KitServices &kit, QObject *parent = nullptr);
    /// Stops a scan that runs and waits until nothing of it is left on the pool.
    ~ScanDriver() override;

    /// Returns at once. A request while scanning is dropped.
    void scan(const Request &request);
    void cancelScan();
    /// While it holds, what is asked for waits; at the end of that the last request is followed.
    void hold(bool holds);
    /// For the next scan: it ends its walk, but judges what it found only once `settled` has ended, or after
    /// 5 seconds.
    void settleBeforeEvaluation(const QFuture<void> &settled);
    /// For the next scan; in raw bytes.
    void setScanRoot(const std::string &path);

    [[nodiscard]] const Phase &phase() const { return m_phase; }
    /// Of the last finished scan; null before one.
    [[nodiscard]] const std::shared_ptr<const FileTree> &tree() const { return m_tree; }
    [[nodiscard]] qint32 rootNode() const { return m_rootNode; }
    /// Of the last finished scan, or of the quick stage of the one that runs; absent before one.
    [[nodiscard]] const std::optional<ReclaimReport> &report() const { return m_report; }
    /// What the host added to the catalogue when the scan of the present tree began.
    [[nodiscard]] const HostCatalogue &hostCatalogue() const { return m_hostCatalogue; }
    /// How many items a finding opens into in the present tree; 0 without one.
    [[nodiscard]] qsizetype itemCount(const Finding &finding) const;
    [[nodiscard]] Scope scope() const { return m_scope; }
    /// As text, for people to read and for tables to compare with, and in raw bytes.
    [[nodiscard]] QString scanRoot() const;
    [[nodiscard]] const std::string &rawScanRoot() const { return m_scanRoot; }
    /// Seconds of the last tree scan; 0 before one.
    [[nodiscard]] double lastScanDuration() const { return m_lastScanDuration; }
    /// One more at every start of a scan.
    [[nodiscard]] quint64 treeGeneration() const { return m_treeGeneration; }
    [[nodiscard]] qsizetype scannedFileCount() const { return m_scannedFileCount; }
    /// Of the last finished scan.
    [[nodiscard]] const Shortfall &shortfall() const { return m_shortfall; }
    [[nodiscard]] ScanProgress &scanProgress() { return m_scanProgress; }

Q_SIGNALS:
    /// A scan has begun: comes before the changes of its start are told.
    void started();
    /// A scan has ended with a tree: comes when all else has been told.
    void finished();
    void phaseChanged();
    void treeChanged();
    void reportChanged();
    void scopeChanged();
    void scanRootChanged();
    void lastScanDurationChanged();
    void treeGenerationChanged();
    void scannedFileCountChanged();
    void shortfallChanged();
    /// The quick stage has its first finding, or has ended. Emitted on a thread of the pool.
    void quickStageAdvanced(QPrivateSignal);

private:
    struct Run;

    static QCoro::Task<> follow(
        QPointer<ScanDriver> driver, QCoro::Task<> previous, std::shared_ptr<Run> run);
    static QCoro::Task<> followQuickStage(QPointer<ScanDriver> driver, std::shared_ptr<Run> run);
    [[nodiscard]] static bool isCurrent(const QPointer<ScanDriver> &driver, const Run &run);
    template <typename Work>
    QFuture<void> onPool(Work work);
    void showQuickFindings(const FindingCollector::Found &found, qsizetype steps);
    void endQuickStage(const Run &run);
    void finish(Run &run);
    void stopRun();
    void tick();

    const KitServices &m_kit;
    Phase m_phase;
    std::shared_ptr<const FileTree> m_tree;
    qint32 m_rootNode = FileTree::noNode;
    std::optional<ReclaimReport> m_report;
    HostCatalogue m_hostCatalogue;
    Scope m_scope = Scope::quiet;
    std::string m_scanRoot;
    double m_lastScanDuration = 0;
    quint64 m_treeGeneration = 0;
    qsizetype m_scannedFileCount = 0;
    Shortfall m_shortfall;
    ScanProgress m_scanProgress;
    /// The bar's value, 0 to 1, master copy.
    double m_progress = 0;
    bool m_hasScanned = false;
    bool m_isHeld = false;
    /// What was asked for meanwhile.
    std::optional<Request> m_held;
    QFuture<void> m_settled;
    quint64 m_scanToken = 0;
    /// The scan that runs; null when none does.
    std::shared_ptr<Run> m_run;
    QElapsedTimer m_sinceScanStart;
    QTimer m_ticker{ this };
    QCoro::Task<> m_scanTask;
    /// What of this and of earlier scans may still run on the pool.
    QList<QFuture<void>> m_poolWork;
};

} // namespace Quillbrook
