#include "Core/AppModel.h"

#include "Core/ReleaseOnPool.h"
#include "Core/ScanInHand.h"
#include "Core/TreeStageEstimate.h"
#include "Platform/HomeFolder.h"
#include "Platform/UserDefaults.h"
#include "Scan/Format.h"

#include <QCoroFuture>
#include <QCoroTimer>
#include <QtConcurrent>

#include <utility>

namespace Quillbrook {

namespace {

using namespace std::chrono_literals;

const auto lastFileCountKey = QStringLiteral("Quillbrook.lastFileCount");

} // namespace

AppModel::AppModel(const AppServices &services, QObject *parent)
    : QObject(parent)
    , m_services(services)
    , m_scanRoot(services.kit.home.realHomeDirectory())
{
    m_ticker.setObjectName(QStringLiteral("ticker"));
    m_ticker.setParent(this);
    m_ticker.setInterval(1s);
    connect(&m_ticker, &QTimer::timeout, this, &AppModel::tick);
    m_volumeClock.setObjectName(QStringLiteral("volumeClock"));
    m_volumeClock.setParent(this);
    m_volumeClock.setInterval(60s);
    connect(&m_volumeClock, &QTimer::timeout, this, &AppModel::refreshVolume);
}

// The walk uses the services, which may go right after the model.
AppModel::~AppModel()
{
    if (m_scanner)
        m_scanner->cancel();
    m_walk.waitForFinished();
}

void AppModel::scan(const ScanRequest &request)
{
    if (m_phase.kind == Phase::Kind::scanning || (request.automatic && m_hasScanned))
        return;
    m_hasScanned = true;
    if (m_scanner)
        m_scanner->cancel();
    ++m_scanToken;
    const auto earlierScope = std::exchange(m_scope, request.scope.value_or(m_scope));
    m_phase = { .kind = Phase::Kind::scanning };
    ++m_treeGeneration;
    releaseOnPool(std::exchange(m_scanner, std::make_shared<ScanInHand>(m_services.kit.directories)));
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
    if (m_scanner)
        m_scanner->cancel();
    releaseOnPool(std::exchange(m_scanner, nullptr));
    ++m_scanToken;
    m_ticker.stop();
    m_scanProgress.reset();
    const Phase phase{ .kind = m_tree ? Phase::Kind::ready : Phase::Kind::idle };
    if (std::exchange(m_phase, phase) != phase)
        Q_EMIT phaseChanged();
}

// A quiet scan never opens a folder that makes a privacy layer ask; a complete one walks the whole of it.
AppModel::ScanJob AppModel::newJob() const
{
    ScanJob job{ .token = m_scanToken,
        .scanner = m_scanner,
        .request = { .rootPath = m_scanRoot,
            .threads = FastScanner::defaultThreadCount(m_services.kit.processors),
            .exclusions = FastScanner::defaultExclusions(),
            .home = m_services.kit.home.realHomeDirectory() } };
    if (m_scope == Scope::quiet) {
        job.request.exclusions.unite(FastScanner::tccProtectedPaths(m_scanRoot));
        job.request.allowlist = FastScanner::quietAllowlist(m_scanRoot);
    }
    return job;
}

bool AppModel::isCurrent(const QPointer<AppModel> &model, const ScanJob &job)
{
    return model && model->m_scanToken == job.token;
}

// The road of one scan. After every wait it may find itself out of date, or the model gone, and then ends
// without touching anything: that alone makes an old scan harmless.
QCoro::Task<> AppModel::runScan(QPointer<AppModel> model, QCoro::Task<> previous, ScanJob job)
{
    {
        // Moved in, or each finished task would keep the one before it.
        const auto earlier = std::move(previous);
        if (!earlier.isReady())
            co_await earlier;
    }
    // Whoever asked for the scan sees it begun before anything of it happens.
    co_await QCoro::sleepFor(0ms);
    if (!isCurrent(model, job))
        co_return;
    model->endQuickStage();

    // The result travels beside the future, whose watcher would hold on to it, and so to the tree, beyond
    // this task's end.
    const auto result = std::make_shared<FastScanner::Result>();
    model->m_walk = QtConcurrent::run([job, result] { *result = job.scanner->run(job.request); });
    const auto walk = model->m_walk;
    co_await walk;
    if (!isCurrent(model, job)) {
        releaseOnPool(std::exchange(*result, {}));
        co_return;
    }
    model->finishScan(std::exchange(*result, {}));
}

void AppModel::endQuickStage()
{
    m_progress = TreeStageEstimate::start;
    m_scanProgress.setFraction(m_progress);
    m_scanProgress.setDetail(QStringLiteral("measuring the rest of the disk"));
}

// Everything is set before anyone is told, so that no observer meets the new tree with an old focus.
void AppModel::finishScan(const FastScanner::Result &result)
{
    m_ticker.stop();
    const auto oldTree = std::exchange(m_tree, result.tree);
    m_rootNode = result.root;
    m_focus = m_rootNode;
    m_breadcrumb = { m_rootNode };
    m_lastScanDuration = result.duration;
    m_scannedFileCount = m_tree->fileCount();
    m_services.kit.defaults.setInteger(lastFileCountKey, m_scannedFileCount);
    m_breadcrumbNames = { m_tree->name(m_rootNode) };
    m_scanProgress.reset();
    m_progress = 1.0;
    m_phase = { .kind = Phase::Kind::ready };

    Q_EMIT treeChanged();
    Q_EMIT focusChanged();
    Q_EMIT breadcrumbChanged();
    Q_EMIT lastScanDurationChanged();
    Q_EMIT scannedFileCountChanged();
    Q_EMIT phaseChanged();
    releaseOnPool(oldTree);
    endOfScanCalls();
}

void AppModel::endOfScanCalls()
{
    refreshVolume();
}

void AppModel::tick()
{
    if (!m_scanner)
        return;
    const auto seen = m_scanner->progress();
    m_scanProgress.setCounts(
        Format::count(seen.filesSeen) + QStringLiteral(" files · ") + Format::bytes(seen.bytesSeen));
    if (m_progress < TreeStageEstimate::start)
        return;
    const auto fraction = TreeStageEstimate::fraction({ .filesSeen = seen.filesSeen,
        .expectedFiles = m_services.kit.defaults.integer(lastFileCountKey).value_or(0),
        .secondsElapsed = static_cast<double>(m_sinceScanStart.elapsed()) / 1000 });
    m_progress = std::max(m_progress, fraction);
    m_scanProgress.setFraction(m_progress);
}

} // namespace Quillbrook
