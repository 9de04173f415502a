#include "Automation/Watcher.h"

#include "Catalogue/HostKnowledge.h"
#include "Catalogue/ScanFences.h"
#include "Catalogue/StorageCatalogue.h"
#include "Platform/Clock.h"
#include "Platform/HomeFolder.h"
#include "Platform/KitServices.h"
#include "Platform/UtilityQueue.h"
#include "Scan/FastScanner.h"
#include "Scan/Format.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <mutex>
#include <stop_token>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

constexpr auto firstCheck = 5s;
constexpr auto leeway = 60s;
// What no clock has trouble with: thirty years.
constexpr double longestInterval = 1e9;

std::chrono::milliseconds intervalOf(const Watcher::Settings &settings)
{
    // No number at all counts as the longest.
    const auto seconds = settings.interval <= longestInterval ? settings.interval : longestInterval;
    return std::chrono::milliseconds(std::max(std::llround(std::max(seconds, 0.0) * 1000), 1LL));
}

std::optional<QString> biggestSafe(const ReclaimReport &report)
{
    const Finding *biggest = nullptr;
    for (const auto &finding : report.findings) {
        if (!finding.meetsStalenessForDeletion || finding.rule.safety != Safety::safe
            || finding.redirectedOffVolume)
            continue;
        if (biggest == nullptr || finding.bytes > biggest->bytes)
            biggest = &finding;
    }
    return biggest != nullptr ? std::optional(biggest->rule.title) : std::nullopt;
}

QString headlineOf(const Watcher::Observation &observation, bool low, bool worthMentioning)
{
    const auto free = Format::bytes(observation.freeBytes);
    if (low && worthMentioning)
        return QCoreApplication::translate("Watcher", "%1 free · %2 can be reclaimed")
            .arg(free, Format::bytes(observation.reclaimableBytes));
    return (low ? QCoreApplication::translate("Watcher", "%1 free · nothing safe left to reclaim")
                : QCoreApplication::translate("Watcher", "%1 free"))
        .arg(free);
}

} // namespace

struct Watcher::State
{
    /// Takes the call to the main thread, on which it lives, by an event that carries nothing: what is told
    /// lies under the lock.
    class Teller final : public QObject
    {
    public:
        explicit Teller(State &state)
            : m_state(state)
        {
        }

    protected:
        void customEvent(QEvent * /*event*/) override { m_state.tell(); }

    private:
        State &m_state;
    };

    State(const KitServices &services, const Settings &initial)
        : kit(services)
        , settings(initial)
    {
    }

    void check(bool force);
    [[nodiscard]] std::optional<ReclaimReport> measure() const;
    void tell();

    const KitServices kit;
    /// Requested when the watcher goes, so that a check does not outlast it by much.
    std::stop_source stop{};

    mutable std::mutex lock;
    // Under the lock:
    Settings settings;
    std::optional<Observation> lastObservation{};
    std::optional<QDateTime> lastNotifiedAt{};
    Observer observer{};
    /// What has not been told yet.
    QList<Observation> untold{};
    /// Null once the watcher is gone.
    std::unique_ptr<Teller> teller = std::make_unique<Teller>(*this);
};

std::optional<ReclaimReport> Watcher::State::measure() const
{
    const auto home = kit.home.homeDirectory();
    const auto rawHome = kit.home.rawHomeDirectory();
    const auto host = kit.host.about(rawHome);
    const auto fences = ScanFences::quiet(home, host);
    FastScanner scanner(kit.directories);
    const auto scanned = scanner.scan({ .rootPath = rawHome,
        .threads = FastScanner::defaultThreadCount(kit.processors),
        .exclusions = fences.exclusions,
        .allowlist = fences.allowlist,
        .stop = stop.get_token() });
    if (stop.stop_requested())
        return std::nullopt;
    return StorageCatalogue::evaluate(CatalogueServices::of(kit),
        { .tree = *scanned.tree,
            .root = scanned.root,
            .places = { .homeDirectory = home,
                .rawHome = rawHome,
                .skipping = fences.skipping,
                .host = &host.catalogue } });
}

void Watcher::State::check(bool force)
{
    const auto report = measure();
    if (!report)
        return;
    const auto now = kit.clock.now();
    const std::lock_guard guard(lock);
    if (teller == nullptr)
        return;
    const auto observation = observe(*report, settings, lastNotifiedAt, now, force);
    lastObservation = observation;
    if (observation.shouldNotify)
        lastNotifiedAt = now;
    if (!observer)
        return;
    untold.append(observation);
    QCoreApplication::postEvent(teller.get(), new QEvent(QEvent::User));
}

// The observer may do anything, also let the watcher go; so nothing of it is touched any more once it is
// called.
void Watcher::State::tell()
{
    Observation observation;
    Observer told;
    {
        const std::lock_guard guard(lock);
        observation = untold.takeFirst();
        told = observer;
    }
    if (told)
        told(observation);
}

Watcher::Watcher(const KitServices &kit)
    : Watcher(kit, Settings())
{
}

Watcher::Watcher(const KitServices &kit, const Settings &settings)
    : m_state(std::make_shared<State>(kit, settings))
    , m_queue(kit.utility)
{
}

Watcher::~Watcher()
{
    stop();
    m_state->stop.request_stop();
    // Both end outside the lock.
    std::unique_ptr<State::Teller> teller;
    Observer observer;
    const std::lock_guard guard(m_state->lock);
    m_state->teller.swap(teller);
    m_state->observer.swap(observer);
}

void Watcher::update(const Settings &settings)
{
    {
        const std::lock_guard guard(m_state->lock);
        m_state->settings = settings;
    }
    if (settings.enabled)
        start();
    else
        stop();
}

void Watcher::start()
{
    stop();
    const auto present = settings();
    if (!present.enabled)
        return;
    m_queue.startTimer({ .first = firstCheck, .interval = intervalOf(present), .leeway = leeway },
        [weak = std::weak_ptr(m_state)] {
            if (const auto state = weak.lock())
                state->check(false);
        });
}

void Watcher::stop()
{
    m_queue.stopTimer();
}

void Watcher::check(bool force)
{
    const auto state = m_state;
    state->check(force);
}

void Watcher::checkSoon()
{
    m_queue.async([weak = std::weak_ptr(m_state)] {
        if (const auto state = weak.lock())
            state->check(false);
    });
}

void Watcher::setOnObservation(Observer observer)
{
    const std::lock_guard guard(m_state->lock);
    m_state->observer.swap(observer);
}

Watcher::Settings Watcher::settings() const
{
    const std::lock_guard guard(m_state->lock);
    return m_state->settings;
}

std::optional<Watcher::Observation> Watcher::lastObservation() const
{
    const std::lock_guard guard(m_state->lock);
    return m_state->lastObservation;
}

std::optional<QDateTime> Watcher::lastNotifiedAt() const
{
    const std::lock_guard guard(m_state->lock);
    return m_state->lastNotifiedAt;
}

Watcher::Observation Watcher::observe(const ReclaimReport &report, const Settings &settings,
    const std::optional<QDateTime> &lastNotifiedAt, const QDateTime &now, bool force)
{
    Observation observation{ .freeBytes = report.volumeFreeBytes,
        .reclaimableBytes = report.bytes(Safety::safe),
        .biggestGroup = biggestSafe(report),
        .checkedAt = now };
    const bool low = observation.freeBytes < settings.lowSpaceBytes;
    const bool worthMentioning = observation.reclaimableBytes >= settings.minimumWorthMentioning;
    const bool quiet
        = lastNotifiedAt && static_cast<double>(lastNotifiedAt->msecsTo(now)) / 1000 < settings.quietPeriod;
    observation.headline = headlineOf(observation, low, worthMentioning);
    observation.shouldNotify = force || (low && worthMentioning && !quiet);
    return observation;
}

} // namespace Quillbrook
