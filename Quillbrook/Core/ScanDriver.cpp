// The way of a scan from the request to the report, from top to bottom.

#include "Core/ScanDriver.h"

#include "Catalogue/HostKnowledge.h"
#include "Catalogue/ScanFences.h"
#include "Catalogue/StorageCatalogue.h"
#include "Core/ReleaseOnPool.h"
#include "Core/Translation.h"
#include "Core/TreeStageEstimate.h"
#include "Platform/HomeFolder.h"
#include "Platform/KitServices.h"
#include "Platform/UserDefaults.h"
#include "RawText.h"
#include "Scan/FastScanner.h"
#include "Scan/Format.h"

#include <QCoroFuture>
#include <QCoroTimer>
#include <QScopeGuard>
#include <QtConcurrent>

#include <algorithm>
#include <chrono>
#include <functional>
#include <stop_token>
#include <thread>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

const auto lastFileCountKey = u"Quillbrook.lastFileCount"_s;
constexpr auto pollInterval = 200ms;
// A disk that takes longer to write is not waited for.
constexpr auto longestSettling = 5s;
constexpr auto settlingPoll = 10ms;

} // namespace

// One scan: what it was started with, and what its stages leave for the next. The driver and the threads of
// the pool share it. Nothing that changes in the driver meanwhile reaches a scan that runs.
struct ScanDriver::Run
{
    const KitServices &kit;
    quint64 token = 0;
    Scope scope = Scope::quiet;
    /// In raw bytes, like `home`; the catalogue goes by the text.
    std::string rawRoot{};
    QString root{};
    std::string home{};
    /// Called on a thread of the pool.
    std::function<void()> onAdvance{};
    /// The one stop: the quick stage, the walk and the evaluation all obey it.
    std::stop_source stop{};
    QFuture<void> settled{};
    FastScanner scanner{ kit.directories };
    FindingCollector collector{};
    HostFacts host{};
    ScanFences fences{};
    qsizetype quickSteps = 1;
    FastScanner::Result walked{};
    /// Of the quick stage, and then of the evaluation.
    ReclaimReport report{};

    // The stages, in their order. They block, and run on threads of the pool, one after the other.
    void prepare()
    {
        host = kit.host.about(rawRoot);
        fences = scope == Scope::quiet ? ScanFences::quiet(root, host) : ScanFences::complete();
        const auto steps = StorageCatalogue::quickScanStepCount(CatalogueServices::of(kit), places());
        quickSteps = std::max<qsizetype>(steps, 1);
    }
    void scanQuickly()
    {
        const auto add = [this](const Finding &finding) {
            if (collector.add(finding) == 1)
                onAdvance();
        };
        report = StorageCatalogue::quickScan(
            CatalogueServices::of(kit), { .places = places(), .onFinding = add, .stop = stop.get_token() });
        collector.finish();
        onAdvance();
    }
    void walk()
    {
        walked = scanner.scan({ .rootPath = rawRoot,
            .threads = FastScanner::defaultThreadCount(kit.processors),
            .exclusions = fences.exclusions,
            .allowlist = fences.allowlist,
            .home = home,
            .stop = stop.get_token() });
    }
    void settle() const
    {
        const auto end = std::chrono::steady_clock::now() + longestSettling;
        while (!settled.isFinished() && !stop.stop_requested() && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(settlingPoll);
    }
    void evaluate()
    {
        settle();
        report = StorageCatalogue::evaluate(CatalogueServices::of(kit),
            { .tree = *walked.tree, .root = walked.root, .places = places(), .stop = stop.get_token() });
    }

    [[nodiscard]] StorageCatalogue::Places places() const
    {
        return {
            .homeDirectory = root, .rawHome = rawRoot, .skipping = fences.skipping, .host = &host.catalogue
        };
    }
};

ScanDriver::ScanDriver(const KitServices &kit, QObject *parent)
    : QObject(parent)
    , m_kit(kit)
    , m_scanRoot(kit.home.rawRealHomeDirectory())
{
    m_ticker.setObjectName(u"ticker"_s);
    m_ticker.setInterval(1s);
    connect(&m_ticker, &QTimer::timeout, this, &ScanDriver::tick);
}

// What runs on the pool uses the services, which may go right after the driver.
ScanDriver::~ScanDriver()
{
    stopRun();
    for (auto &work : m_poolWork)
        work.waitForFinished();
}

QString ScanDriver::scanRoot() const
{
    return repairedText(m_scanRoot);
}

void ScanDriver::setScanRoot(const std::string &path)
{
    if (m_scanRoot == path)
        return;
    m_scanRoot = path;
    Q_EMIT scanRootChanged();
}

qsizetype ScanDriver::itemCount(const Finding &finding) const
{
    if (!m_tree || m_rootNode < 0)
        return 0;
    return StorageCatalogue::itemCount(finding, *m_tree, m_rootNode,
        { .homeDirectory = m_tree->path(m_rootNode), .host = &m_hostCatalogue });
}

// Everything is set before anyone is told.
void ScanDriver::scan(const Request &request)
{
    if (m_isHeld) {
        // What a person asks for goes before what asks by itself, and a scope before none.
        if (!m_held || (!request.automatic && (request.scope || !m_held->scope)))
            m_held = request;
        return;
    }
    if (m_phase.kind == Phase::Kind::scanning || (request.automatic && m_hasScanned))
        return;
    m_hasScanned = true;
    stopRun();
    ++m_scanToken;
    const auto earlierScope = std::exchange(m_scope, request.scope.value_or(m_scope));
    m_phase = { .kind = Phase::Kind::scanning };
    ++m_treeGeneration;
    m_run = std::make_shared<Run>(m_kit, m_scanToken, m_scope, m_scanRoot, scanRoot(),
        m_kit.home.rawRealHomeDirectory(), [this] { Q_EMIT quickStageAdvanced({}); });
    m_run->settled = std::exchange(m_settled, {});
    m_progress = 0;
    m_sinceScanStart.start();
    m_ticker.start();
    m_scanTask = follow(this, std::move(m_scanTask), m_run);

    Q_EMIT started();
    m_scanProgress.reset();
    if (m_scope != earlierScope)
        Q_EMIT scopeChanged();
    Q_EMIT treeGenerationChanged();
    Q_EMIT phaseChanged();
}

void ScanDriver::hold(bool holds)
{
    m_isHeld = holds;
    if (holds)
        return;
    if (const auto held = std::exchange(m_held, std::nullopt))
        scan(*held);
}

void ScanDriver::settleBeforeEvaluation(const QFuture<void> &settled)
{
    m_settled = settled;
}

void ScanDriver::cancelScan()
{
    stopRun();
    ++m_scanToken;
    m_ticker.stop();
    const Phase phase{ .kind = m_tree ? Phase::Kind::ready : Phase::Kind::idle };
    const bool phaseChanges = std::exchange(m_phase, phase) != phase;
    m_scanProgress.reset();
    if (phaseChanges)
        Q_EMIT phaseChanged();
}

void ScanDriver::stopRun()
{
    if (const auto run = std::exchange(m_run, nullptr))
        run->stop.request_stop();
}

// Follows one scan from stage to stage. After every wait the scan may be out of date, or the driver gone:
// then this ends and touches nothing, which is all that makes an old scan harmless.
QCoro::Task<> ScanDriver::follow(
    QPointer<ScanDriver> driver, QCoro::Task<> previous, std::shared_ptr<Run> run)
{
    // However this ends, what the scan has gathered is taken apart off the main thread.
    const auto release = qScopeGuard([&run] { releaseOnPool(std::move(run)); });
    {
        // Moved in, or each finished task would keep the one before it.
        const auto earlier = std::move(previous);
        if (!earlier.isReady())
            co_await earlier;
    }
    // Whoever asked for the scan sees it begun before anything of it happens.
    co_await QCoro::sleepFor(0ms);
    if (!isCurrent(driver, *run))
        co_return;
    const auto quickStage = followQuickStage(driver, run);
    co_await quickStage;
    if (!isCurrent(driver, *run))
        co_return;
    const auto walk = driver->onPool([run] { run->walk(); });
    co_await walk;
    if (!isCurrent(driver, *run))
        co_return;
    const auto evaluation = driver->onPool([run] { run->evaluate(); });
    co_await evaluation;
    if (isCurrent(driver, *run))
        driver->finish(*run);
}

bool ScanDriver::isCurrent(const QPointer<ScanDriver> &driver, const Run &run)
{
    return driver && driver->m_scanToken == run.token;
}

template <typename Work>
QFuture<void> ScanDriver::onPool(Work work)
{
    m_poolWork.removeIf([](const QFuture<void> &earlier) { return earlier.isFinished(); });
    m_poolWork.append(QtConcurrent::run(std::move(work)));
    return m_poolWork.last();
}

// Findings are fetched now and then and not sent one by one, so that a thousand of them cost the main thread
// no more than one. Only the first finding and the end of the stage are not kept waiting.
QCoro::Task<> ScanDriver::followQuickStage(QPointer<ScanDriver> driver, std::shared_ptr<Run> run)
{
    const auto preparation = driver->onPool([run] { run->prepare(); });
    co_await preparation;
    if (!isCurrent(driver, *run))
        co_return;
    QTimer poll;
    poll.setSingleShot(true);
    connect(driver.data(), &ScanDriver::quickStageAdvanced, &poll, [&poll] { poll.start(0ms); });
    const auto quickScan = driver->onPool([run] { run->scanQuickly(); });
    for (bool finished = false; !finished;) {
        poll.start(pollInterval);
        co_await poll;
        if (!isCurrent(driver, *run))
            co_return;
        const auto found = run->collector.found();
        driver->showQuickFindings(found, run->quickSteps);
        finished = found.finished;
    }
    co_await quickScan;
    if (isCurrent(driver, *run))
        driver->endQuickStage(*run);
}

// The bar goes by findings and not by steps, of which some find nothing: it need not reach the stage's share.
void ScanDriver::showQuickFindings(const FindingCollector::Found &found, qsizetype steps)
{
    const auto share = static_cast<double>(found.findings.size()) / static_cast<double>(steps);
    m_progress = std::min(share * TreeStageEstimate::start, TreeStageEstimate::start);
    m_scanProgress.setFraction(m_progress);
    if (found.latest)
        m_scanProgress.setDetail(translatedTableText(*found.latest));
    m_scanProgress.setFindings(found.findings);
}

void ScanDriver::endQuickStage(const Run &run)
{
    m_report = run.report;
    Q_EMIT reportChanged();
    m_scanProgress.setDetail(tr("measuring the rest of the disk"));
}

// Once a second while a scan runs.
void ScanDriver::tick()
{
    if (!m_run)
        return;
    const auto seen = m_run->scanner.progress();
    m_scanProgress.setCounts(
        tr("%1 files · %2").arg(Format::count(seen.filesSeen), Format::bytes(seen.bytesSeen)));
    if (m_progress < TreeStageEstimate::start)
        return;
    const auto fraction = TreeStageEstimate::fraction({ .filesSeen = seen.filesSeen,
        .expectedFiles = m_kit.defaults.integer(lastFileCountKey).value_or(0),
        .secondsElapsed = static_cast<double>(m_sinceScanStart.elapsed()) / 1000 });
    m_progress = std::max(m_progress, fraction);
    m_scanProgress.setFraction(m_progress);
}

// Everything is set before anyone is told, so that no observer meets the new tree with an old report.
void ScanDriver::finish(Run &run)
{
    m_ticker.stop();
    m_run.reset();
    auto oldTree = std::exchange(m_tree, std::move(run.walked.tree));
    m_rootNode = run.walked.root;
    m_report = std::move(run.report);
    m_hostCatalogue = std::move(run.host.catalogue);
    m_lastScanDuration = run.walked.duration;
    m_scannedFileCount = m_tree->fileCount();
    m_shortfall = { .files = run.walked.unmeasuredFiles, .folders = run.walked.unreadableDirectories };
    m_kit.defaults.setInteger(lastFileCountKey, m_scannedFileCount);
    m_progress = 1.0;
    m_phase = { .kind = Phase::Kind::ready };

    m_scanProgress.reset();
    Q_EMIT treeChanged();
    Q_EMIT reportChanged();
    Q_EMIT lastScanDurationChanged();
    Q_EMIT scannedFileCountChanged();
    Q_EMIT shortfallChanged();
    Q_EMIT phaseChanged();
    // Moved, so that no reference to it stays here and it is taken apart off the main thread.
    releaseOnPool(std::move(oldTree));
    Q_EMIT finished();
}

} // namespace Quillbrook
