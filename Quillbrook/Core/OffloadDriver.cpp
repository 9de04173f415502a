#include "Core/OffloadDriver.h"

#include "Core/Navigation.h"
#include "Core/ScanDriver.h"
#include "Offload/Profiling.h"
#include "Offload/Relocation.h"
#include "Platform/Drives.h"
#include "Platform/FileFacts.h"
#include "Platform/HomeFolder.h"
#include "RawText.h"

#include <QCoroFuture>
#include <QElapsedTimer>
#include <QPointer>
#include <QtConcurrent>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

constexpr int sampleMB = 24;
constexpr auto progressInterval = 250ms;

QString failureLine(const QString &title, const OffloadError &error)
{
    return u"✗ %1: %2"_s.arg(title, error.description());
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

// What a task and the main thread share of one thing that is moved.
struct OffloadDriver::Job
{
    QString id{};
    std::stop_source stop{};
    std::atomic<qint64> done{ 0 };
    std::atomic<qint64> total{ 1 };
    QElapsedTimer since{};
};

OffloadDriver::OffloadDriver(const KitServices &kit, const Others &others, QObject *parent)
    : QObject(parent)
    , m_kit(kit)
    , m_scans(others.scans)
    , m_navigation(others.navigation)
{
    for (auto *pool : { &m_measuringPool, &m_movingPool, &m_lookingPool })
        pool->setMaxThreadCount(1);
    m_progressClock.setInterval(progressInterval);
    connect(&m_progressClock, &QTimer::timeout, this, &OffloadDriver::followProgress);
}

OffloadDriver::~OffloadDriver()
{
    stop();
    m_looking.request_stop();
    if (m_profiling)
        m_profiling->request_stop();
    for (auto *pool : { &m_measuringPool, &m_movingPool, &m_lookingPool })
        pool->waitForDone();
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
            stop = mine.get_token()] {
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
    if (m_destination)
        moveAway(startJob(finding.id, finding.bytes), finding, allowSlowBus);
}

QCoro::Task<> OffloadDriver::moveAway(std::shared_ptr<Job> job, Finding finding, bool allowSlowBus)
{
    const QPointer self(this);
    const Offload::Relocation relocation{ .source = finding.rawPath,
        .into = m_destination->path,
        .bytes = finding.bytes,
        .suitability = Offload::suitability(finding.rule.id, &m_scans.hostCatalogue()),
        .profile = *m_destination,
        .allowSlowBus = allowSlowBus,
        .onProgress = [job](qint64 bytes) { job->done = bytes; },
        .stop = job->stop.get_token() };
    const auto moving = QtConcurrent::run(&m_movingPool, [services = OffloadServices::of(m_kit), relocation] {
        return Offload::relocate(services, relocation);
    });
    const auto target = co_await moving;
    if (!self)
        co_return;
    endJob(job);
    const auto &title = finding.rule.title;
    appendLog(target ? u"✓ %1 → %2"_s.arg(title, repairedText(*target)) : failureLine(title, target.error()));
    if (target)
        Q_EMIT diskChanged();
}

void OffloadDriver::bringBack(const MovedThing &thing)
{
    moveBack(startJob(repairedText(thing.place), thing.bytes.value_or(0)), thing);
}

QCoro::Task<> OffloadDriver::moveBack(std::shared_ptr<Job> job, MovedThing thing)
{
    const QPointer self(this);
    const Offload::Return order{ .thing = thing,
        .onProgress =
            [job](qint64 bytes, qint64 total) {
                job->total = std::max<qint64>(total, 1);
                job->done = bytes;
            },
        .stop = job->stop.get_token() };
    const auto moving = QtConcurrent::run(&m_movingPool,
        [services = OffloadServices::of(m_kit), order] { return Offload::bringBack(services, order); });
    const auto returned = co_await moving;
    if (!self)
        co_return;
    endJob(job);
    if (!returned) {
        appendLog(failureLine(thing.title, returned.error()));
        recheckDrives();
        co_return;
    }
    const auto line = u"✓ %1 → %2"_s.arg(thing.title, repairedText(thing.place));
    appendLog(returned->leftBehind ? u"%1 · %2 is still there: %3"_s.arg(
                  line, repairedText(thing.link.target), *returned->leftBehind)
                                   : line);
    Q_EMIT diskChanged();
}

std::shared_ptr<OffloadDriver::Job> OffloadDriver::startJob(const QString &id, qint64 total)
{
    auto job = std::make_shared<Job>();
    job->id = id;
    job->total = std::max<qint64>(total, 1);
    m_jobs.push_back(job);
    if (m_jobs.size() == 1) {
        job->since.start();
        m_rate.clear();
        m_progressClock.start();
        Q_EMIT runningChanged();
    }
    return job;
}

void OffloadDriver::endJob(const std::shared_ptr<Job> &job)
{
    std::erase(m_jobs, job);
    m_rate.clear();
    if (m_jobs.empty())
        m_progressClock.stop();
    else
        m_jobs.front()->since.start();
    Q_EMIT runningChanged();
}

void OffloadDriver::stop()
{
    for (const auto &job : m_jobs)
        job->stop.request_stop();
    if (!m_jobs.empty())
        Q_EMIT progressed();
}

std::optional<OffloadDriver::Running> OffloadDriver::running() const
{
    if (m_jobs.empty())
        return std::nullopt;
    const auto &job = *m_jobs.front();
    const qint64 total = job.total;
    return Running{ .id = job.id,
        .done = std::min<qint64>(job.done, total),
        .total = total,
        .bytesPerSecond = m_rate.bytesPerSecond(),
        .canStop = !job.stop.stop_requested() };
}

void OffloadDriver::followProgress()
{
    if (m_jobs.empty())
        return;
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
