#include "Core/AutomationDriver.h"

#include "Catalogue/HostKnowledge.h"
#include "Core/Navigation.h"
#include "Core/ScanDriver.h"
#include "Core/VolumeFigures.h"
#include "Platform/AppServices.h"
#include "Platform/Clock.h"
#include "Platform/HomeFolder.h"
#include "Platform/Notifier.h"
#include "Platform/UserDefaults.h"
#include "Scan/Format.h"

#include <QPointer>

#include <algorithm>
#include <chrono>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

const auto declinedKey = u"Quillbrook.declinedAutomationOffers"_s;
constexpr auto clockInterval = 30min;
/// Of a rule that is made of an offer.
constexpr double offeredTrigger = 90.0;

double percentOf(qint64 total, qint64 free)
{
    return total < 1 ? 0 : static_cast<double>(total - free) / static_cast<double>(total) * 100;
}

} // namespace

AutomationDriver::AutomationDriver(const AppServices &services, const Others &others, QObject *parent)
    : QObject(parent)
    , m_services(services)
    , m_scans(others.scans)
    , m_navigation(others.navigation)
    , m_volume(others.volume)
    , m_removals(others.removals)
    , m_store(services.kit, AutomationStore::standardStore(services.kit.dataFolder))
{
    const auto declined = services.kit.defaults.texts(declinedKey).value_or(QStringList());
    m_declined = QSet<QString>(declined.begin(), declined.end());
    m_clock.setObjectName(u"ruleClock"_s);
    m_clock.setInterval(clockInterval);
    connect(&m_clock, &QTimer::timeout, this, &AutomationDriver::tick);
}

void AutomationDriver::startClock()
{
    m_clock.start();
}

// What is being removed for a rule ends in a scan of its own; whatever asks meanwhile comes too late.
void AutomationDriver::run()
{
    if (!m_scans.report() || m_isBusy)
        return;
    m_isBusy = true;
    purgeDue([this](qint64 /*bytes*/) { fire(); });
}

void AutomationDriver::fire()
{
    m_isBusy = false;
    // A scan that has begun meanwhile ends in a run of its own, on fresh figures.
    if (m_scans.phase().kind == Phase::Kind::scanning)
        return;
    const auto &report = *m_scans.report();
    const auto rulesBefore = m_store.rules().size();
    m_store.refreshPresets(presets(), report);
    if (m_store.rules().size() != rulesBefore)
        Q_EMIT rulesChanged();
    const auto percent = usedPercent();
    const auto due = m_store.due(percent, report, AutomationStore::worthClearing);
    if (due.isEmpty())
        return;
    m_isBusy = true;
    QList<Finding> findings;
    for (const auto &[rule, finding] : due)
        findings.append(finding);
    m_removals.clear(
        findings, [self = QPointer(this), due, percent](const std::vector<Reclaimer::Outcome> &outcomes) {
            if (self)
                self->takeOutcomes(due, percent, outcomes);
        });
}

// A rule that failed stays as it was, and is due again at the next chance; nobody is told.
void AutomationDriver::takeOutcomes(
    const QList<AutomationStore::Due> &due, double percent, const std::vector<Reclaimer::Outcome> &outcomes)
{
    m_isBusy = false;
    qint64 total = 0;
    QList<AutomationRule> fired;
    const auto begun = std::min(static_cast<qsizetype>(outcomes.size()), due.size());
    for (qsizetype index = 0; index < begun; ++index) {
        const auto &outcome = outcomes[static_cast<size_t>(index)];
        if (outcome.error)
            continue;
        total += outcome.bytesMoved;
        fired.append(due.at(index).first);
        appendLog(u"%1 · %2 · disk was %3% full"_s.arg(
            Format::bytes(outcome.bytesMoved), outcome.finding.rule.title, wholePercent(percent)));
    }
    m_store.markFired(fired);
    if (!fired.isEmpty())
        Q_EMIT rulesChanged();
    if (total < 1)
        return;
    m_isBusy = true;
    // Where the disk is very full, what was just moved may have to go at once.
    purgeDue([this, total, percent](qint64 purged) { tellCleared(total, purged, percent); });
}

void AutomationDriver::tellCleared(qint64 total, qint64 purged, double percent)
{
    m_isBusy = false;
    const auto body = purged < 1 ? tr("Your disk was %1% full. It stays in the Trash for a day in case you "
                                      "want anything back, then it's "
                                      "removed for good.")
                                       .arg(wholePercent(percent))
                                 : tr("Your disk was nearly full, so it was removed right away. Everything a "
                                      "rule clears rebuilds itself.");
    m_services.notifier.post(tr("%1 cleared automatically").arg(Format::bytes(total)), body);
    Q_EMIT diskChanged();
}

void AutomationDriver::purgeDue(const Then &then)
{
    m_volume.refreshVolume();
    m_removals.due(m_services.kit.clock.now(), m_volume.liveFree(),
        [self = QPointer(this), then](const std::vector<TrashedItem> &items) {
            if (self && items.empty())
                then(0);
            else if (self)
                self->purge(items, then);
        });
}

void AutomationDriver::purge(const std::vector<TrashedItem> &items, const Then &then)
{
    m_removals.purge(items, [self = QPointer(this), then](const TrashLedger::Purged &gone) {
        if (!self)
            return;
        if (gone.removed < 1)
            return then(0);
        self->appendLog((gone.removed == 1 ? u"%1 removed for good · %2 item a rule had moved"_s
                                           : u"%1 removed for good · %2 items a rule had moved"_s)
                            .arg(Format::bytes(gone.bytes), QString::number(gone.removed)));
        self->m_volume.refreshVolume();
        then(gone.bytes);
    });
}

void AutomationDriver::tick()
{
    if (!m_store.hasAnythingOn() || m_isBusy)
        return;
    m_isBusy = true;
    purgeDue([this](qint64 /*bytes*/) { scanIfFull(); });
}

void AutomationDriver::scanIfFull()
{
    m_isBusy = false;
    const auto trigger = m_store.lowestTrigger(presets());
    if (!trigger || m_volume.liveTotal() < 1)
        return;
    if (percentOf(m_volume.liveTotal(), m_volume.liveFree()) >= *trigger
        && m_scans.phase().kind != Phase::Kind::scanning)
        Q_EMIT diskChanged();
}

double AutomationDriver::usedPercent() const
{
    return percentOf(m_volume.volumeTotal(), m_volume.volumeFree());
}

QList<AutomationPreset> AutomationDriver::presets() const
{
    return AutomationPreset::all(host());
}

const HostCatalogue &AutomationDriver::host() const
{
    if (m_scans.tree())
        return m_scans.hostCatalogue();
    if (!m_hostBeforeScan)
        m_hostBeforeScan = m_services.kit.host.about(m_services.kit.home.rawHomeDirectory()).catalogue;
    return *m_hostBeforeScan;
}

std::expected<AutomationRule, RuleError> AutomationDriver::add(
    const Finding &finding, double triggerUsedPercent, Cadence cadence)
{
    auto added = m_store.add(finding, triggerUsedPercent, cadence);
    if (added)
        Q_EMIT rulesChanged();
    return added;
}

void AutomationDriver::remove(const QString &ruleId)
{
    m_store.remove(ruleId);
    Q_EMIT rulesChanged();
}

void AutomationDriver::setEnabled(const QString &ruleId, bool enabled)
{
    const auto &rules = m_store.rules();
    const auto found = std::ranges::find(rules, ruleId, &AutomationRule::id);
    if (found == rules.end())
        return;
    auto rule = *found;
    rule.enabled = enabled;
    m_store.update(rule);
    Q_EMIT rulesChanged();
}

std::expected<void, RuleError> AutomationDriver::setPreset(const AutomationPreset &preset, bool on)
{
    std::expected<void, RuleError> done;
    if (!on)
        m_store.revoke(preset);
    else if (const auto added = m_store.apply(preset, m_scans.report().value_or(ReclaimReport())); !added)
        done = std::unexpected(added.error());
    Q_EMIT rulesChanged();
    return done;
}

bool AutomationDriver::isWorthOffering(const Finding &finding) const
{
    return finding.rule.safety == Safety::safe && finding.bytes >= AutomationStore::worthAutomating
        && !m_store.hasRuleFor(finding) && !m_declined.contains(finding.rule.id);
}

// One question at a time.
void AutomationDriver::offerAfter(const QList<Finding> &cleared)
{
    if (m_offer)
        return;
    const Finding *largest = nullptr;
    for (const auto &finding : cleared)
        if (isWorthOffering(finding) && (!largest || finding.bytes > largest->bytes))
            largest = &finding;
    if (largest)
        setOffer(*largest);
}

void AutomationDriver::acceptOffer()
{
    if (!m_offer)
        return;
    const auto finding = *m_offer;
    setOffer(std::nullopt);
    if (const auto added = add(finding, offeredTrigger, Cadence::everyTime); !added) {
        Q_EMIT offerFailed(u"✗ "_s + added.error().description());
        return;
    }
    appendLog(u"rule added · %1 · when the disk is 90% full"_s.arg(finding.rule.title));
    m_navigation.setRequestedPane(Pane::rules);
}

void AutomationDriver::declineOffer()
{
    if (!m_offer)
        return;
    m_declined.insert(m_offer->rule.id);
    m_services.kit.defaults.setTexts(declinedKey, m_declined.values());
    setOffer(std::nullopt);
}

void AutomationDriver::setOffer(const std::optional<Finding> &offer)
{
    m_offer = offer;
    Q_EMIT offerChanged();
}

void AutomationDriver::takeLook(const Watcher::Observation &observation)
{
    const auto total = m_volume.liveTotal() >= 1 ? m_volume.liveTotal() : m_volume.volumeTotal();
    if (total < 1)
        return;
    m_looks.append(percentOf(total, observation.freeBytes));
    Q_EMIT looksChanged();
}

AutomationDriver::Looks AutomationDriver::looksAt(double triggerUsedPercent) const
{
    const auto full = std::ranges::count_if(
        m_looks, [triggerUsedPercent](double percent) { return percent >= triggerUsedPercent; });
    return { .full = full, .all = m_looks.size() };
}

void AutomationDriver::appendLog(const QString &line)
{
    m_log.append(line);
    Q_EMIT logChanged();
}

} // namespace Quillbrook
