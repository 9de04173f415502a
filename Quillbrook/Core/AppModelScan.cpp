#include "Core/AppModel.h"
#include "Core/CatalogueInHand.h"
#include "Core/ReleaseOnPool.h"
#include "Core/TreeStageEstimate.h"
#include "Platform/HomeFolder.h"
#include "Scan/ScanInHand.h"

#include <QCoroFuture>
#include <QCoroTimer>
#include <QtConcurrent>

#include <algorithm>
#include <chrono>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

constexpr auto pollInterval = 200ms;

} // namespace

AppModel::ScanJob AppModel::newJob()
{
    return { .token = m_scanToken,
        .scanner = m_scanner,
        .catalogue = m_catalogue,
        .request = { .rootPath = m_scanRoot,
            .threads = FastScanner::defaultThreadCount(m_services.kit.processors),
            .home = m_services.kit.home.rawRealHomeDirectory() } };
}

bool AppModel::isCurrent(const QPointer<AppModel> &model, const ScanJob &job)
{
    return model && model->m_scanToken == job.token;
}

// What runs on the pool uses the services, which may go right after the model; its end is waited for then.
template <typename Work>
QFuture<void> AppModel::onPool(Work work)
{
    m_poolWork.removeIf([](const QFuture<void> &earlier) { return earlier.isFinished(); });
    m_poolWork.append(QtConcurrent::run(std::move(work)));
    return m_poolWork.last();
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
    const auto quickStage = runQuickStage(model, job);
    co_await quickStage;
    if (!isCurrent(model, job))
        co_return;
    job.request.exclusions = job.catalogue->fences().exclusions;
    job.request.allowlist = job.catalogue->fences().allowlist;

    // The result travels beside the future, whose watcher would hold on to it, and so to the tree, beyond
    // this task's end.
    const auto result = std::make_shared<FastScanner::Result>();
    const auto walk = model->onPool([job, result] { *result = job.scanner->run(job.request); });
    co_await walk;
    if (isCurrent(model, job)) {
        const auto evaluation
            = model->onPool([catalogue = job.catalogue, result] { catalogue->evaluate(*result); });
        co_await evaluation;
    }
    if (!isCurrent(model, job)) {
        releaseOnPool(std::exchange(*result, {}));
        co_return;
    }
    model->finishScan(std::exchange(*result, {}), *job.catalogue);
}

// Findings are looked for now and then and not sent one by one, so that a thousand of them cost the main
// thread no more than one.
QCoro::Task<> AppModel::runQuickStage(QPointer<AppModel> model, const ScanJob &job)
{
    const auto catalogue = job.catalogue;
    const auto preparation = model->onPool([catalogue] { catalogue->prepare(); });
    co_await preparation;
    if (!isCurrent(model, job))
        co_return;
    const auto measuring = model->onPool([catalogue] { catalogue->measure(); });
    for (bool finished = false; !finished;) {
        co_await QCoro::sleepFor(pollInterval);
        if (!isCurrent(model, job))
            co_return;
        const auto look = catalogue->look();
        model->showQuickFindings(look, catalogue->quickSteps());
        finished = look.finished;
    }
    co_await measuring;
    if (isCurrent(model, job))
        model->endQuickStage(catalogue->report());
}

// By findings and not by steps, of which some find nothing: the bar need not reach the stage's share.
void AppModel::showQuickFindings(const FindingCollector::Look &look, qsizetype steps)
{
    const auto share = static_cast<double>(look.findings.size()) / static_cast<double>(steps);
    m_progress = std::min(share * TreeStageEstimate::start, TreeStageEstimate::start);
    m_scanProgress.setFraction(m_progress);
    if (look.latest)
        m_scanProgress.setDetail(*look.latest);
    m_scanProgress.setFindings(look.findings);
}

void AppModel::endQuickStage(const ReclaimReport &report)
{
    setReport(report);
    m_scanProgress.setDetail(u"measuring the rest of the disk"_s);
}

} // namespace Quillbrook
