#include "Core/AppModel.h"

#include "Core/CatalogueInHand.h"
#include "Core/ReleaseOnPool.h"
#include "Core/TreeStageEstimate.h"
#include "Platform/HomeFolder.h"
#include "Platform/UserDefaults.h"
#include "Scan/Format.h"
#include "Scan/ScanInHand.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

const auto lastFileCountKey = u"Quillbrook.lastFileCount"_s;

} // namespace

AppModel::AppModel(const AppServices &services, QObject *parent)
    : QObject(parent)
    , m_services(services)
    , m_scanRoot(services.kit.home.rawRealHomeDirectory())
    , m_ledger(LedgerServices::of(services.kit), TrashLedger::standardStore(services.kit.dataFolder))
    , m_reclaimedSoFar(std::max<qint64>(services.kit.defaults.integer(reclaimedBytesKey()).value_or(0), 0))
    , m_watcher(services.kit)
{
    m_askingPool.setMaxThreadCount(1);
    m_ticker.setObjectName(u"ticker"_s);
    m_ticker.setParent(this);
    m_ticker.setInterval(1s);
    connect(&m_ticker, &QTimer::timeout, this, &AppModel::tick);
    m_volumeClock.setObjectName(u"volumeClock"_s);
    m_volumeClock.setParent(this);
    m_volumeClock.setInterval(60s);
    connect(&m_volumeClock, &QTimer::timeout, this, &AppModel::refreshVolume);
}

AppModel::~AppModel()
{
    dropScanInHand();
    for (auto &work : m_poolWork)
        work.waitForFinished();
}

void AppModel::scan(const ScanRequest &request)
{
    if (m_phase.kind == Phase::Kind::scanning || (request.automatic && m_hasScanned))
        return;
    m_hasScanned = true;
    dropScanInHand();
    ++m_scanToken;
    const auto earlierScope = std::exchange(m_scope, request.scope.value_or(m_scope));
    m_phase = { .kind = Phase::Kind::scanning };
    ++m_treeGeneration;
    m_scanner = std::make_shared<ScanInHand>(m_services.kit.directories);
    m_catalogue = std::make_shared<CatalogueInHand>(m_services.kit, m_scope, scanRoot());
    m_scanProgress.reset();
    m_progress = 0;
    m_sinceScanStart.start();
    m_ticker.start();
    m_scanTask = runScan(this, std::move(m_scanTask), newJob());

    if (m_scope != earlierScope)
        Q_EMIT scopeChanged();
    setSelection(std::nullopt);
    clearFocus();
    Q_EMIT treeGenerationChanged();
    Q_EMIT phaseChanged();
}

void AppModel::cancelScan()
{
    dropScanInHand();
    ++m_scanToken;
    m_ticker.stop();
    m_scanProgress.reset();
    const Phase phase{ .kind = m_tree ? Phase::Kind::ready : Phase::Kind::idle };
    if (std::exchange(m_phase, phase) != phase)
        Q_EMIT phaseChanged();
}

void AppModel::dropScanInHand()
{
    if (m_scanner)
        m_scanner->cancel();
    if (m_catalogue)
        m_catalogue->cancel();
    releaseOnPool(std::exchange(m_scanner, nullptr));
    m_catalogue.reset();
}

// Everything is set before anyone is told, so that no observer meets the new tree with an old focus.
void AppModel::finishScan(const FastScanner::Result &result, const CatalogueInHand &catalogue)
{
    m_ticker.stop();
    const auto oldTree = std::exchange(m_tree, result.tree);
    m_rootNode = result.root;
    m_focus = m_rootNode;
    m_breadcrumb = { m_rootNode };
    m_report = catalogue.report();
    m_lastScanDuration = result.duration;
    m_scannedFileCount = m_tree->fileCount();
    m_services.kit.defaults.setInteger(lastFileCountKey, m_scannedFileCount);
    m_breadcrumbNames = { m_tree->name(m_rootNode) };
    m_scanProgress.reset();
    m_progress = 1.0;
    m_phase = { .kind = Phase::Kind::ready };

    Q_EMIT treeChanged();
    Q_EMIT reportChanged();
    Q_EMIT focusChanged();
    Q_EMIT breadcrumbChanged();
    Q_EMIT lastScanDurationChanged();
    Q_EMIT scannedFileCountChanged();
    Q_EMIT phaseChanged();
    releaseOnPool(oldTree);
    endOfScanCalls();
}

void AppModel::setReport(const ReclaimReport &report)
{
    m_report = report;
    Q_EMIT reportChanged();
}

void AppModel::endOfScanCalls()
{
    verifyClaim();
    refreshVolume();
}

void AppModel::tick()
{
    if (!m_scanner)
        return;
    const auto seen = m_scanner->progress();
    m_scanProgress.setCounts(Format::count(seen.filesSeen) + u" files · "_s + Format::bytes(seen.bytesSeen));
    if (m_progress < TreeStageEstimate::start)
        return;
    const auto fraction = TreeStageEstimate::fraction({ .filesSeen = seen.filesSeen,
        .expectedFiles = m_services.kit.defaults.integer(lastFileCountKey).value_or(0),
        .secondsElapsed = static_cast<double>(m_sinceScanStart.elapsed()) / 1000 });
    m_progress = std::max(m_progress, fraction);
    m_scanProgress.setFraction(m_progress);
}

} // namespace Quillbrook
