#include "Core/OffloadDriver.h"

#include "Core/Navigation.h"
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
#include <QElapsedTimer>
#include <QPointer>
#include <QtConcurrent>

#include <algorithm>
#include <array>
#include <atomic>
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
constexpr int mostMeasuring = 8;

QString failureLine(const QString &title, const OffloadError &error)
{
    return u"✗ %1: %2"_s.arg(title, error.description());
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

// What was measured of the same thing before stands until it has been measured again.
void keepSizes(std::vector<MovedThing> &things, const std::vector<MovedThing> &before)
{
    for (auto &thing : things) {
        const auto known = std::ranges::find_if(before, [&thing](const MovedThing &other) {
            return other.place == thing.place && other.link == thing.link;
        });
        if (known != before.end())
            thing.bytes = known->bytes;
    }
}

} // namespace

// One thing that is moved, or waits for its turn.
struct OffloadDriver::Job
{
    Job(QString ownId, QString ownTitle, qint64 bytes)
        : id(std::move(ownId))
        , title(std::move(ownTitle))
    {
        tell(0, bytes);
    }

    void tell(qint64 bytes, qint64 of)
    {
        total = std::max<qint64>(of, 1);
        done = std::min<qint64>(bytes, total);
    }

    const QString id;
    const QString title;
    // Shared with the thread that moves it.
    std::stop_source stop{};
    std::atomic<qint64> done{ 0 };
    std::atomic<qint64> total{ 1 };
    // The main thread's.
    bool hasBegun = false;
    QElapsedTimer since{};
};

OffloadDriver::OffloadDriver(const KitServices &kit, const Others &others, QObject *parent)
    : QObject(parent)
    , m_kit(kit)
    , m_scans(others.scans)
    , m_navigation(others.navigation)
    , m_queue(others.queue)
{
    m_measuringPool.setMaxThreadCount(mostMeasuring);
    for (auto *pool : { &m_movingPool, &m_lookingPool })
        pool->setMaxThreadCount(1);
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
    m_looking.request_stop();
    if (m_profiling)
        m_profiling->request_stop();
    return std::ranges::all_of(
        std::array{ &m_measuringPool, &m_movingPool, &m_lookingPool }, [&patience](QThreadPool *pool) {
            return pool->waitForDone(static_cast<int>(patience.remainingTime()));
        });
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
    if (!m_destination)
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
        own.stop = watch.stop;
        *target = Offload::relocate(services, own);
    };
    const auto end = [this, target, title = finding.rule.title] {
        appendLog(*target ? u"✓ %1 → %2"_s.arg(title, repairedText(**target))
                          : failureLine(title, target->error()));
        if (*target)
            Q_EMIT diskChanged();
    };
    enqueue(std::make_shared<Job>(finding.id, finding.rule.title, finding.bytes),
        { .verb = RemovalQueue::Verb::moving, .work = work, .end = end });
}

void OffloadDriver::bringBack(const MovedThing &thing)
{
    const auto returned = std::make_shared<std::expected<Offload::Returned, OffloadError>>(notBegun());
    const auto work = [returned, thing, services = OffloadServices::of(m_kit)](const Watch &watch) {
        *returned = Offload::bringBack(
            services, { .thing = thing, .onProgress = watch.progress, .stop = watch.stop });
    };
    const auto end = [this, returned, thing] { takeReturned(thing, *returned); };
    enqueue(std::make_shared<Job>(repairedText(thing.place), thing.title, thing.bytes.value_or(0)),
        { .verb = RemovalQueue::Verb::bringingBack, .work = work, .end = end });
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
void OffloadDriver::enqueue(const std::shared_ptr<Job> &job, const Move &move)
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
        move.work({ .progress = tell, .stop = job->stop.get_token() });
    };
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

void OffloadDriver::beginJob(const std::shared_ptr<Job> &job)
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
bool OffloadDriver::endJob(const std::shared_ptr<Job> &job)
{
    if (job->hasBegun)
        m_progressClock.stop();
    const bool isWanted = std::erase(m_jobs, job) > 0;
    if (isWanted)
        Q_EMIT runningChanged();
    return isWanted;
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
    m_rate.add(m_jobs.front()->since.elapsed(), m_jobs.front()->done);
    Q_EMIT progressed();
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
    m_looking.request_stop();
    m_looking = {};
    lookForMovedThings();
    if (m_destination || m_awayDestination)
        lookForDestination();
}

// First what there is, and then what each of them holds, which may take the drive a while.
QCoro::Task<> OffloadDriver::lookForMovedThings()
{
    const QPointer self(this);
    const auto mine = m_looking;
    const auto services = OffloadServices::of(m_kit);
    const auto finding = QtConcurrent::run(&m_lookingPool,
        [services,
            home = m_scans.rawScanRoot().empty() ? m_kit.home.rawHomeDirectory() : m_scans.rawScanRoot(),
            host = m_scans.hostCatalogue(), stop = mine.get_token()] {
            return Offload::movedThings(
                services, { .homeDirectory = repairedText(home), .rawHome = home, .host = &host }, stop);
        });
    auto things = co_await finding;
    if (!self || m_looking != mine)
        co_return;
    keepSizes(things, m_movedThings);
    setMovedThings(things);
    for (auto &thing : things) {
        if (!thing.isThere())
            continue;
        const auto measuring = QtConcurrent::run(
            &m_lookingPool, [services, target = thing.link.target, stop = mine.get_token()] {
                return Offload::measuredSize(services, target, stop);
            });
        const auto bytes = co_await measuring;
        if (!self || m_looking != mine)
            co_return;
        thing.bytes = bytes;
        setMovedThings(things);
    }
}

void OffloadDriver::setMovedThings(std::vector<MovedThing> things)
{
    if (m_movedThings == things)
        return;
    m_movedThings = std::move(things);
    Q_EMIT movedThingsChanged();
}

// A drive that was taken out leaves nothing at its place, or an empty folder of the startup disk.
QCoro::Task<> OffloadDriver::lookForDestination()
{
    const QPointer self(this);
    const auto mine = m_looking;
    const auto path = m_destination ? m_destination->path : *m_awayDestination;
    const auto looking = QtConcurrent::run(
        &m_lookingPool, [services = OffloadServices::of(m_kit), path, home = m_kit.home.rawHomeDirectory()] {
            return isOnOtherDrive(services, path, home);
        });
    const bool isThere = co_await looking;
    if (!self || m_looking != mine)
        co_return;
    if (m_destination && m_destination->path == path && m_isElsewhere && !isThere) {
        m_awayDestination = path;
        setDestination(std::nullopt, tr("%1 is not connected.").arg(repairedText(path)));
    } else if (m_awayDestination == path && isThere) {
        profileDestination(path);
    }
}

} // namespace Quillbrook
