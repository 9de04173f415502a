#include "Core/OffloadDriver.h"

#include "Core/OffloadJob.h"
#include "Core/ScanDriver.h"
#include "Core/Translation.h"
#include "Offload/Profiling.h"
#include "Offload/Relocation.h"
#include "Platform/Drives.h"
#include "Platform/FileFacts.h"
#include "Platform/HomeFolder.h"
#include "RawText.h"

#include <QCoroFuture>
#include <QDeadlineTimer>
#include <QPointer>
#include <QtConcurrent>

#include <algorithm>
#include <array>
#include <chrono>
#include <tuple>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

constexpr int sampleMB = 24;
constexpr auto progressInterval = 250ms;
/// A measurement that was given up ends with the block that it writes; one of a drive that does not answer
/// never does, and keeps its thread.
constexpr auto measuringPatience = 3s;
constexpr int mostAsking = 8;

QString failureLine(const QString &title, const OffloadError &error)
{
    return u"✗ %1: %2"_s.arg(title, error.description());
}

QString silence(const std::string &path)
{
    return u"%1 does not answer."_s.arg(repairedText(path));
}

// What came of a move as long as nothing did.
std::unexpected<OffloadError> notBegun()
{
    return std::unexpected(OffloadError{ .kind = OffloadError::Kind::stopped });
}

bool isOnOtherDrive(const OffloadServices &services, const std::string &folder, const std::string &home)
{
    return services.files.kind(folder + "/.") == FileKind::directory
        && services.drives.areOnOneFileSystem(folder, home) == false;
}

} // namespace

OffloadDriver::OffloadDriver(const KitServices &kit, const Others &others, QObject *parent)
    : QObject(parent)
    , m_kit(kit)
    , m_scans(others.scans)
    , m_queue(others.queue)
    , m_patience(others.patience)
    , m_finder(kit)
{
    for (auto *pool : { &m_measuringPool, &m_lookingPool })
        pool->setMaxThreadCount(mostAsking);
    m_movingPool.setMaxThreadCount(1);
    connect(&m_finder, &MovedThingsFinder::thingsChanged, this, &OffloadDriver::movedThingsChanged);
    m_progressClock.setInterval(progressInterval);
    connect(&m_progressClock, &QTimer::timeout, this, &OffloadDriver::followProgress);
}

OffloadDriver::~OffloadDriver()
{
    std::ignore = endsWithin(QDeadlineTimer::Forever);
}

bool OffloadDriver::endsWithin(const QDeadlineTimer &patience)
{
    for (const auto &job : m_jobs)
        job->stop.request_stop();
    if (m_profiling)
        m_profiling->request_stop();
    const bool hasEnded = std::ranges::all_of(
        std::array{ &m_measuringPool, &m_movingPool, &m_lookingPool }, [&patience](QThreadPool *pool) {
            return pool->waitForDone(static_cast<int>(patience.remainingTime()));
        });
    return m_finder.endsWithin(patience) && hasEnded;
}

QList<Finding> OffloadDriver::offloadCandidates() const
{
    return m_scans.report() ? Offload::candidates(*m_scans.report(), &m_scans.hostCatalogue())
                            : QList<Finding>();
}

void OffloadDriver::profileDestination(const std::string &path)
{
    if (m_profiling)
        m_profiling->request_stop();
    m_profiling.emplace();
    m_awayDestination.reset();
    setDestination(std::nullopt, std::nullopt);
    profileAt(path);
}

QCoro::Task<> OffloadDriver::profileAt(std::string path)
{
    const QPointer self(this);
    const auto mine = *m_profiling;
    // The futures have names because the compiler destroys what is made in an awaiting expression twice.
    const auto measuring = QtConcurrent::run(&m_measuringPool,
        [services = OffloadServices::of(m_kit), path, home = m_kit.home.rawHomeDirectory(),
            stop = mine.get_token(), &measuring = m_measuring] {
            // Two at once would each be told too slow.
            const std::unique_lock turn(measuring, measuringPatience);
            const bool isElsewhere = isOnOtherDrive(services, path, home);
            return std::pair(
                Offload::profile(services, { .destination = path, .sampleMB = sampleMB, .stop = stop }),
                isElsewhere);
        });
    const auto [profile, isElsewhere] = co_await measuring;
    if (!self || m_profiling != mine)
        co_return;
    m_profiling.reset();
    m_isElsewhere = isElsewhere;
    if (profile)
        setDestination(*profile, std::nullopt);
    else
        setDestination(std::nullopt, profile.error().description());
}

void OffloadDriver::setDestination(std::optional<DestinationProfile> profile, std::optional<QString> error)
{
    m_destination = std::move(profile);
    m_destinationError = std::move(error);
    Q_EMIT destinationChanged();
}

void OffloadDriver::offload(const Finding &finding, bool allowSlowBus)
{
    if (!m_destination || isHeld(m_destination->path, finding.rule.title))
        return;
    const Offload::Relocation order{ .source = finding.rawPath,
        .into = m_destination->path,
        .bytes = finding.bytes,
        .suitability = Offload::suitability(finding.rule.id, &m_scans.hostCatalogue()),
        .profile = *m_destination,
        .allowSlowBus = allowSlowBus };
    const auto target = std::make_shared<std::expected<std::string, OffloadError>>(notBegun());
    const auto work = [target, order, services = OffloadServices::of(m_kit)](const Watch &watch) {
        auto own = order;
        own.onProgress = [&](qint64 bytes) { watch.progress(bytes, order.bytes); };
        own.mayFinish = watch.mayFinish;
        own.stop = watch.stop;
        *target = Offload::relocate(services, own);
    };
    const auto end = [this, target, title = finding.rule.title] {
        appendLog(*target ? u"✓ %1 → %2"_s.arg(title, repairedText(**target))
                          : failureLine(title, target->error()));
        if (*target)
            Q_EMIT diskChanged();
    };
    enqueue(std::make_shared<OffloadJob>(finding.id, finding.rule.title, order.into, finding.bytes),
        { .verb = RemovalQueue::Verb::moving, .work = work, .end = end });
}

void OffloadDriver::bringBack(const MovedThing &thing)
{
    if (isHeld(thing.link.target, thing.title))
        return;
    const auto returned = std::make_shared<std::expected<Offload::Returned, OffloadError>>(notBegun());
    const auto work = [returned, thing, services = OffloadServices::of(m_kit)](const Watch &watch) {
        *returned = Offload::bringBack(services,
            { .thing = thing,
                .onProgress = watch.progress,
                .mayFinish = watch.mayFinish,
                .onReturned = watch.onReturned,
                .stop = watch.stop });
    };
    const auto end = [this, returned, thing] { takeReturned(thing, *returned); };
    const auto endWithoutDrive
        = [this, thing] { takeReturned(thing, Offload::Returned{ .leftBehind = u"It does not answer."_s }); };
    enqueue(std::make_shared<OffloadJob>(
                repairedText(thing.place), thing.title, thing.link.target, thing.bytes.value_or(0)),
        { .verb = RemovalQueue::Verb::bringingBack,
            .work = work,
            .end = end,
            .endWithoutDrive = endWithoutDrive });
}

void OffloadDriver::takeReturned(
    const MovedThing &thing, const std::expected<Offload::Returned, OffloadError> &returned)
{
    if (!returned) {
        appendLog(failureLine(thing.title, returned.error()));
        recheckDrives();
        return;
    }
    const auto line = u"✓ %1 → %2"_s.arg(thing.title, repairedText(thing.place));
    appendLog(returned->leftBehind ? u"%1 · %2 is still there: %3"_s.arg(
                  line, repairedText(thing.link.target), *returned->leftBehind)
                                   : line);
    Q_EMIT diskChanged();
}

// In its turn, since it removes what it has copied.
void OffloadDriver::enqueue(const std::shared_ptr<OffloadJob> &job, const Move &move)
{
    m_jobs.push_back(job);
    const auto work = [job, move, name = translatedTableText(job->title)](const RemovalQueue::Watch &watch) {
        // It was given up while it waited.
        if (job->stop.stop_requested())
            return;
        const std::stop_callback follow(watch.stop, [&job] { job->stop.request_stop(); });
        const auto tell = [&](qint64 bytes, qint64 total) {
            job->tell(bytes, total);
            watch.progress({ .number = 1,
                .count = 1,
                .name = name,
                .bytes = job->done,
                .inside = static_cast<double>(job->done) / static_cast<double>(job->total) });
        };
        tell(0, job->total);
        using Step = OffloadJob::Step;
        move.work({ .progress = tell,
            .mayFinish = [&job] { return job->goesFrom(Step::copying, Step::finishing); },
            .onReturned = [&job] { std::ignore = job->goesFrom(Step::finishing, Step::clearingDrive); },
            .stop = job->stop.get_token() });
    };
    job->endWithoutDrive = move.endWithoutDrive;
    m_queue.enqueue({ .verb = move.verb,
        .copying = &m_movingPool,
        .begin = [this, job] { beginJob(job); },
        .work = work,
        .end =
            [this, job, end = move.end] {
                if (endJob(job))
                    end();
            } });
    Q_EMIT runningChanged();
}

void OffloadDriver::beginJob(const std::shared_ptr<OffloadJob> &job)
{
    if (std::ranges::find(m_jobs, job) == m_jobs.end())
        return;
    job->hasBegun = true;
    job->since.start();
    m_rate.clear();
    m_progressClock.start();
    Q_EMIT runningChanged();
}

// Whether it was still wanted.
bool OffloadDriver::endJob(const std::shared_ptr<OffloadJob> &job)
{
    if (job->hasBegun)
        m_progressClock.stop();
    const bool isWanted = std::erase(m_jobs, job) > 0;
    if (isWanted)
        Q_EMIT runningChanged();
    return isWanted;
}

// It has been told to stop. If its drive answers again, it takes away the copy that it made, and ends.
void OffloadDriver::giveUp(const std::shared_ptr<OffloadJob> &job)
{
    using Step = OffloadJob::Step;
    const bool isCopying = job->goesFrom(Step::copying, Step::givenUp);
    // In between it works on this disk alone.
    if (!isCopying && !job->goesFrom(Step::clearingDrive, Step::givenUp))
        return;
    m_givenUp.push_back(job);
    // Its thread is not free for the next one.
    m_movingPool.setMaxThreadCount(m_movingPool.maxThreadCount() + 1);
    std::ignore = endJob(job);
    if (isCopying)
        appendLog(u"%1 · %2"_s.arg(
            failureLine(job->title, { .kind = OffloadError::Kind::stopped }), silence(job->drive)));
    else
        job->endWithoutDrive();
    m_queue.leaveCopy();
}

// What was given up takes away its copy by and by: nothing of the same name may come in its place meanwhile.
bool OffloadDriver::isHeld(const std::string &folder, const QString &title)
{
    std::erase_if(m_givenUp, [](const auto &job) { return job.expired(); });
    const bool isHeld = std::ranges::any_of(m_givenUp, [&folder](const auto &held) {
        const auto job = held.lock();
        return job && job->drive == folder;
    });
    if (isHeld)
        appendLog(failureLine(title, { .text = silence(folder) }));
    return isHeld;
}

void OffloadDriver::stop()
{
    const auto jobs = m_jobs;
    for (const auto &job : jobs) {
        job->stop.request_stop();
        if (job->hasBegun) {
            m_queue.stop();
            Q_EMIT progressed();
        } else if (endJob(job)) {
            appendLog(failureLine(job->title, { .kind = OffloadError::Kind::stopped }));
        }
    }
}

std::optional<OffloadDriver::Running> OffloadDriver::running() const
{
    if (m_jobs.empty())
        return std::nullopt;
    const auto &job = *m_jobs.front();
    return Running{ .id = job.id,
        .done = job.done,
        .total = job.total,
        .bytesPerSecond = m_rate.bytesPerSecond(),
        .hasBegun = job.hasBegun,
        .canStop = !job.stop.stop_requested() };
}

void OffloadDriver::followProgress()
{
    const auto job = m_jobs.front();
    m_rate.add(job->since.elapsed(), job->done);
    Q_EMIT progressed();
    if (!job->stop.stop_requested())
        return;
    if (!job->sinceStop.isValid())
        job->sinceStop.start();
    else if (job->sinceStop.hasExpired(m_patience.count()))
        giveUp(job);
}

void OffloadDriver::appendLog(const QString &line)
{
    m_offloadLog.append(line);
    Q_EMIT offloadLogChanged();
}

void OffloadDriver::setOffloadFocus(const std::optional<QString> &ruleId)
{
    if (std::exchange(m_offloadFocus, ruleId) != ruleId)
        Q_EMIT offloadFocusChanged();
}

void OffloadDriver::recheckDrives()
{
    const auto &root = m_scans.rawScanRoot();
    m_finder.look(root.empty() ? m_kit.home.rawHomeDirectory() : root, m_scans.hostCatalogue());
    if (m_destination || m_awayDestination)
        lookForDestination();
}

// A drive that was taken out leaves nothing at its place, or an empty folder of the startup disk. It is asked
// by one thread at a time, which may be held for as long as it does not answer.
QCoro::Task<> OffloadDriver::lookForDestination()
{
    const QPointer self(this);
    const auto path = m_destination ? m_destination->path : *m_awayDestination;
    m_isLookedForAgain = true;
    if (std::exchange(m_lookedFor, path) == path)
        co_return;
    bool isThere = false;
    while (std::exchange(m_isLookedForAgain, false)) {
        const auto looking = QtConcurrent::run(&m_lookingPool,
            [services = OffloadServices::of(m_kit), path, home = m_kit.home.rawHomeDirectory()] {
                return isOnOtherDrive(services, path, home);
            });
        isThere = co_await looking;
        if (!self || m_lookedFor != path)
            co_return;
    }
    m_lookedFor.reset();
    if (m_destination && m_destination->path == path && m_isElsewhere && !isThere) {
        m_awayDestination = path;
        setDestination(std::nullopt, tr("%1 is not connected.").arg(repairedText(path)));
    } else if (m_awayDestination == path && isThere) {
        profileDestination(path);
    }
}

} // namespace Quillbrook
