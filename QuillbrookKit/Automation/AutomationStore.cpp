#include "Automation/AutomationStore.h"

#include "Automation/RulesFormat.h"
#include "Platform/Clock.h"
#include "Platform/FileReading.h"
#include "Platform/FileWriting.h"

#include <QCoreApplication>
#include <QHash>
#include <QUuid>

#include <algorithm>
#include <limits>
#include <tuple>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

// Tens of thousands of rules; a longer file is not what a person makes.
constexpr qsizetype maximumStoreBytes = qsizetype{ 16 } * 1024 * 1024;

const auto notAutomatable = QT_TRANSLATE_NOOP("AutomationStore",
    "\"%1\" cannot be automated. Only things that rebuild themselves with "
    "no action from you are eligible.");

/// A rule of the catalogue and a path. Lives no longer than what it was taken from.
using Key = std::pair<QStringView, QStringView>;

Key keyOf(const AutomationRule &rule)
{
    return { rule.ruleId, rule.path };
}

Key keyOf(const Finding &finding)
{
    return { finding.rule.id, finding.path };
}

// What lies elsewhere takes no room on this disk.
bool mayGoByItself(const Finding &finding)
{
    return finding.rule.safety == Safety::safe && !finding.redirectedOffVolume;
}

QSet<Key> keysOf(const QList<AutomationRule> &rules)
{
    QSet<Key> keys;
    for (const auto &rule : rules)
        keys.insert(keyOf(rule));
    return keys;
}

} // namespace

QString RuleError::description() const
{
    return QString::fromUtf8(notAutomatable).arg(title);
}

QString RuleError::translated() const
{
    return QCoreApplication::translate("AutomationStore", notAutomatable).arg(title);
}

std::string AutomationStore::standardStore(const std::string &dataFolder)
{
    return dataFolder + "/Quillbrook/automation.json";
}

AutomationStore::AutomationStore(const KitServices &kit, std::string storePath)
    : m_kit(kit)
    , m_storePath(std::move(storePath))
    , m_presetsPath(m_storePath.substr(0, m_storePath.find_last_of('/') + 1) + "automation-presets.json")
{
    load();
}

std::expected<AutomationRule, RuleError> AutomationStore::add(
    const Finding &finding, double triggerUsedPercent, Cadence cadence)
{
    auto added = append(finding, triggerUsedPercent, cadence);
    if (added)
        save();
    return added;
}

std::expected<AutomationRule, RuleError> AutomationStore::append(
    const Finding &finding, double triggerUsedPercent, Cadence cadence)
{
    if (finding.rule.safety != Safety::safe)
        return std::unexpected(RuleError{ finding.rule.title });
    m_rules.append({ .id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper(),
        .ruleId = finding.rule.id,
        .path = finding.path,
        .triggerUsedPercent = triggerUsedPercent,
        .cadence = cadence });
    return m_rules.last();
}

void AutomationStore::remove(const QString &id)
{
    m_rules.removeIf([&id](const AutomationRule &rule) { return rule.id == id; });
    save();
}

void AutomationStore::update(const AutomationRule &rule)
{
    const auto stored = std::ranges::find(m_rules, rule.id, &AutomationRule::id);
    if (stored == m_rules.end())
        return;
    *stored = rule;
    save();
}

void AutomationStore::markFired(const QList<AutomationRule> &fired)
{
    bool changed = false;
    for (const auto &rule : fired) {
        const auto stored = std::ranges::find(m_rules, rule.id, &AutomationRule::id);
        if (stored == m_rules.end())
            continue;
        stored->lastFiredAt = m_kit.clock.now();
        // What was stored may be any number.
        if (stored->timesFired < std::numeric_limits<qint64>::max())
            ++stored->timesFired;
        stored->enabled = stored->enabled && stored->cadence != Cadence::once;
        changed = true;
    }
    if (changed)
        save();
}

QList<AutomationStore::Due> AutomationStore::due(
    double usedPercent, const ReclaimReport &report, qint64 minimumBytes) const
{
    QHash<Key, const Finding *> found;
    for (const auto &finding : report.findings)
        if (!found.contains(keyOf(finding)))
            found.insert(keyOf(finding), &finding);
    QList<Due> due;
    for (const auto &rule : m_rules) {
        if (!rule.enabled || !(rule.triggerUsedPercent <= usedPercent))
            continue;
        const auto *finding = found.value(keyOf(rule));
        if (finding && mayGoByItself(*finding) && finding->bytes >= minimumBytes)
            due.append({ rule, *finding });
    }
    return due;
}

QList<Finding> AutomationStore::suggestions(const ReclaimReport &report, qint64 minimumBytes) const
{
    const auto known = keysOf(m_rules);
    auto findings = report.findings;
    findings.removeIf([&](const Finding &finding) {
        return !mayGoByItself(finding) || finding.bytes < minimumBytes || known.contains(keyOf(finding));
    });
    return findings;
}

bool AutomationStore::hasRuleFor(const Finding &finding) const
{
    return std::ranges::any_of(
        m_rules, [&](const AutomationRule &rule) { return keyOf(rule) == keyOf(finding); });
}

std::optional<double> AutomationStore::lowestTrigger(const QList<AutomationPreset> &presets) const
{
    std::optional<double> lowest;
    const auto take = [&lowest](double trigger) { lowest = std::min(lowest.value_or(trigger), trigger); };
    for (const auto &rule : m_rules)
        if (rule.enabled)
            take(rule.triggerUsedPercent);
    for (const auto &preset : presets)
        if (isOn(preset))
            take(preset.triggerUsedPercent);
    return lowest;
}

bool AutomationStore::hasAnythingOn() const
{
    return !m_presetsOn.isEmpty() || std::ranges::any_of(m_rules, &AutomationRule::enabled);
}

QList<Finding> AutomationStore::findings(const AutomationPreset &preset, const ReclaimReport &report)
{
    QList<Finding> findings;
    for (const auto &finding : report.findings)
        if (preset.ruleIds.contains(finding.rule.id) && mayGoByItself(finding))
            findings.append(finding);
    return findings;
}

qint64 AutomationStore::bytes(const AutomationPreset &preset, const ReclaimReport &report)
{
    qint64 sum = 0;
    for (const auto &finding : findings(preset, report))
        sum += finding.bytes;
    return sum;
}

std::expected<qsizetype, RuleError> AutomationStore::apply(
    const AutomationPreset &preset, const ReclaimReport &report)
{
    const auto rulesBefore = m_rules.size();
    const bool wasOn = isOn(preset);
    m_presetsOn.insert(preset.id);
    std::optional<RuleError> problem;
    const auto known = keysOf(m_rules);
    for (const auto &finding : findings(preset, report)) {
        if (problem || known.contains(keyOf(finding)))
            continue;
        if (const auto made = append(finding, preset.triggerUsedPercent, Cadence::everyTime); !made)
            problem = made.error();
    }
    const auto added = m_rules.size() - rulesBefore;
    if (!wasOn || added > 0)
        save();
    if (problem)
        return std::unexpected(*problem);
    return added;
}

void AutomationStore::revoke(const AutomationPreset &preset)
{
    m_presetsOn.remove(preset.id);
    m_rules.removeIf([&preset](const AutomationRule &rule) { return preset.ruleIds.contains(rule.ruleId); });
    save();
}

void AutomationStore::refreshPresets(const QList<AutomationPreset> &presets, const ReclaimReport &report)
{
    for (const auto &preset : presets)
        if (isOn(preset))
            std::ignore = apply(preset, report);
}

qint64 AutomationStore::wouldClear(
    const AutomationPreset &preset, const ReclaimReport &report, qint64 minimumBytes) const
{
    qint64 sum = 0;
    for (const auto &finding : findings(preset, report)) {
        // A rule that is there already stays as the person left it.
        const auto fires = [&](const AutomationRule &rule) {
            return keyOf(rule) == keyOf(finding) && rule.enabled
                && rule.triggerUsedPercent <= preset.triggerUsedPercent;
        };
        if (!hasRuleFor(finding) || std::ranges::any_of(m_rules, fires))
            sum += wouldClear(finding, minimumBytes);
    }
    return sum;
}

qint64 AutomationStore::wouldClear(const Finding &finding, qint64 minimumBytes)
{
    return mayGoByItself(finding) && finding.bytes >= minimumBytes ? finding.bytes : 0;
}

void AutomationStore::load()
{
    if (const auto stored = m_kit.reading.contents(m_storePath, maximumStoreBytes))
        m_rules = RulesFormat::decode(*stored).value_or(QList<AutomationRule>());
    if (const auto stored = m_kit.reading.contents(m_presetsPath, maximumStoreBytes))
        m_presetsOn = RulesFormat::decodePresets(*stored).value_or(QSet<QString>());
}

void AutomationStore::save() const
{
    // A failure is nobody's business: what is here stays right, and the next change writes it again.
    std::ignore = m_kit.writing.replace(m_storePath, RulesFormat::encode(m_rules));
    std::ignore = m_kit.writing.replace(m_presetsPath, RulesFormat::encodePresets(m_presetsOn));
}

} // namespace Quillbrook
