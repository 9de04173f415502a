#pragma once

// What one platform adds to the catalogue: its own places for what the built-in rules describe, rules of its
// own, and what goes with them. Plain data beside the built-in tables, which stay as they are.

#include "Catalogue/ReclaimRule.h"

#include <QList>

#include <cstdint>

namespace Quillbrook {

/// A place, as in `ReclaimRule::paths`, with the short name that tells it from others of its rule.
struct HostLocation
{
    QString path{};
    QString label{};
    /// The application that may be using what lies here; empty where none is known by its ID.
    QString applicationId{};

    bool operator==(const HostLocation &) const = default;
};

/// Further places of a rule, tried after the rule's own.
struct HostRuleLocations
{
    QString ruleId{};
    QList<HostLocation> locations{};

    bool operator==(const HostRuleLocations &) const = default;
};

/// A rule that the host alone has. `rule.paths` are the paths of `locations`, in the same order.
struct HostRule
{
    ReclaimRule rule{};
    QList<HostLocation> locations{};

    bool operator==(const HostRule &) const = default;
};

/// Rules worth mentioning beside one, or rules that a preset takes in besides its own.
struct HostRuleIds
{
    QString id{};
    QStringList ruleIds{};

    bool operator==(const HostRuleIds &) const = default;
};

/// A bundle of rules that the host alone has, to be switched on as one.
struct HostPreset
{
    QString id{};
    QString title{};
    /// What it covers and what clearing it costs.
    QString blurb{};
    /// Each of a rule that is `safe`, and in no other preset.
    QStringList ruleIds{};
    double triggerUsedPercent = 90.0;

    bool operator==(const HostPreset &) const = default;
};

/// Whether what a rule finds may move to another volume: never with a reason, always without.
struct HostSuitability
{
    QString ruleId{};
    std::optional<QString> hotReason{};

    bool operator==(const HostSuitability &) const = default;
};

/// How the members of a finding are named.
enum class HostItemNaming : std::uint8_t {
    childName,
    /// Without the hash that Pipenv ("NAME-XXXXXXXX") and Poetry ("NAME-XXXXXXXX-py3.12") append.
    hashedEnvironment,
    /// With a blank before the first digit.
    productAndVersion,
    /// "models--org--name" as "org/name".
    hubRepository,
    /// "org___name" as "org/name".
    dataSet,
    /// The game's name from its manifest beside the folder, by Steam's number.
    steamGame,
    /// With "-VAGRANTSLASH-" as "/".
    vagrantBox,
    /// The application's name from its exported desktop entry.
    flatpakApplication,
};

/// How findings of one rule at some of its locations open into items.
struct HostItemisation
{
    QString ruleId{};
    /// Empty: every location of the rule.
    QStringList paths{};
    HostItemNaming naming = HostItemNaming::childName;
    QString detail{};
    /// Why no item may be removed; absent when they may.
    std::optional<QString> blockedReason{};

    bool operator==(const HostItemisation &) const = default;
};

struct HostCatalogue
{
    QList<HostRuleLocations> locations{};
    /// After the built-in rules, in this order.
    QList<HostRule> rules{};
    QList<HostRuleIds> related{};
    QList<HostRuleIds> presets{};
    /// After the built-in presets, in this order.
    QList<HostPreset> ownPresets{};
    QList<HostSuitability> suitability{};
    QList<HostItemisation> itemisations{};
    /// Folders with the desktop entries of sandboxed applications, absolute or relative to the home folder.
    QStringList desktopEntryFolders{};

    bool operator==(const HostCatalogue &) const = default;
};

} // namespace Quillbrook
