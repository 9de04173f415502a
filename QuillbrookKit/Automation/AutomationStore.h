#pragma once

// The person's standing instructions, kept in a file, and which of them are due for a report and a fullness
// of the disk. It clears nothing itself. Nothing is automated unless the catalogue calls it `safe`, that is,
// unless it rebuilds itself with no action from anyone: anything else is refused when a rule is made, and
// passed over again when it would fire.
//
// Main thread only; whatever changes it writes both its files. A file that is missing, can't be read or holds
// anything but what it should is an empty one, whatever the other holds, and stays until the next change.
// What can't be written is right in memory for as long as the program runs. Neither is told to anyone.

#include "Automation/AutomationPreset.h"
#include "Automation/AutomationRule.h"
#include "Catalogue/ReclaimReport.h"
#include "Platform/KitServices.h"

#include <QSet>

#include <expected>
#include <optional>
#include <string>
#include <utility>

namespace Quillbrook {

/// Why there is no rule for something: it does not rebuild itself.
struct RuleError
{
    /// Of the catalogue's rule.
    QString title{};

    bool operator==(const RuleError &) const = default;

    /// As it stands in a log.
    [[nodiscard]] QString description() const;
    /// The same in the person's language; `title` is taken as it is.
    [[nodiscard]] QString translated() const;
};

class AutomationStore
{
public:
    using Due = std::pair<AutomationRule, Finding>;

    /// What clearing by itself is worth: a nearly empty cache fires no rule. Bytes.
    static constexpr qint64 worthClearing = 209'715'200;
    /// What a rule of its own is worth suggesting or offering for. Bytes.
    static constexpr qint64 worthAutomating = 1'073'741'824;

    /// The rules' file below the folder in which programs keep the user's data (absolute, raw bytes). The
    /// presets' file stands beside it.
    [[nodiscard]] static std::string standardStore(const std::string &dataFolder);

    /// Loads both files; `storePath` is that of the rules (absolute, raw bytes). The services outlive it.
    AutomationStore(const KitServices &kit, std::string storePath);

    /// In order of creation.
    [[nodiscard]] const QList<AutomationRule> &rules() const { return m_rules; }
    /// Ids, also of presets that no table knows.
    [[nodiscard]] const QSet<QString> &presetsOn() const { return m_presetsOn; }

    /// A further rule, even where there is one for the finding.
    std::expected<AutomationRule, RuleError> add(
        const Finding &finding, double triggerUsedPercent, Cadence cadence);
    void remove(const QString &id);
    /// Takes the rule for the one of its id; nothing where there is none.
    void update(const AutomationRule &rule);
    /// Counts a firing of each at this moment; one that fires just once is switched off and stays.
    void markFired(const QList<AutomationRule> &fired);

    /// Which rules fire at that fullness, each with what it clears, in the rules' order. One whose thing is
    /// not in the report, smaller than `minimumBytes`, elsewhere or not safe any more is not among them.
    [[nodiscard]] QList<Due> due(double usedPercent, const ReclaimReport &report, qint64 minimumBytes) const;
    /// What a rule could be made for, in the report's order: safe, at least so large, and without any rule.
    [[nodiscard]] QList<Finding> suggestions(const ReclaimReport &report, qint64 minimumBytes) const;
    [[nodiscard]] bool hasRuleFor(const Finding &finding) const;

    /// The lowest fullness at which anything that is on fires; absent where nothing is.
    [[nodiscard]] std::optional<double> lowestTrigger(const QList<AutomationPreset> &presets) const;
    [[nodiscard]] bool hasAnythingOn() const;

    [[nodiscard]] bool isOn(const AutomationPreset &preset) const { return m_presetsOn.contains(preset.id); }
    /// What a preset covers in a report, in its order, however small.
    [[nodiscard]] static QList<Finding> findings(const AutomationPreset &preset, const ReclaimReport &report);
    [[nodiscard]] static qint64 bytes(const AutomationPreset &preset, const ReclaimReport &report);
    /// Switches a preset on, and makes a rule for each thing that it covers and that has none. How many.
    std::expected<qsizetype, RuleError> apply(const AutomationPreset &preset, const ReclaimReport &report);
    /// Switches it off, and removes every rule for what it covers, also those that the person made.
    void revoke(const AutomationPreset &preset);
    /// Makes the rules of what has appeared since the presets that are on were switched on.
    void refreshPresets(const QList<AutomationPreset> &presets, const ReclaimReport &report);

    /// What would go now if the preset were on and the disk at its trigger. Bytes.
    [[nodiscard]] qint64 wouldClear(
        const AutomationPreset &preset, const ReclaimReport &report, qint64 minimumBytes) const;
    /// What would go now by a rule for that finding. Bytes.
    [[nodiscard]] static qint64 wouldClear(const Finding &finding, qint64 minimumBytes);

private:
    std::expected<AutomationRule, RuleError> append(
        const Finding &finding, double triggerUsedPercent, Cadence cadence);
    void load();
    void save() const;

    const KitServices &m_kit;
    std::string m_storePath;
    std::string m_presetsPath;
    QList<AutomationRule> m_rules;
    QSet<QString> m_presetsOn;
};

} // namespace Quillbrook
