#pragma once

// What Linux adds to the catalogue. The tables stand in files of their own, in the order in which they are
// evaluated:
//
//   LinuxCatalogueLocations.cpp        Linux places for the built-in rules
//   LinuxCatalogueSafeRules.cpp        rules whose findings come back by themselves
//   LinuxCatalogueDeveloperRules.cpp   rules with a cost: packages, builds, models
//   LinuxCatalogueMediaRules.cpp       rules with a cost: games, indexes, images, chats
//   LinuxCatalogueReportRules.cpp      rules that only show
//   LinuxCatalogueRelations.cpp        relations, presets, suitability and items of these rules
//
// What the tables keep, and a test holds them to: every location is literal, relative to the home folder, and
// a folder; none stands twice; none lies inside another, except a location that may be cleared inside one
// that is only shown; and a label is unique within its rule. `safe` is a promise: everything comes back with
// no action of the user's, nothing of the user's can be in the folder, and taking it while its program runs
// does no harm that outlasts the program. What costs time or a large download is `careful`, and what may be
// the only copy is `reportOnly`.

#include "Catalogue/HostCatalogue.h"
#include "Catalogue/Linux/LinuxMovedPaths.h"
#include "Platform/Linux/Folders/LinuxUserFolders.h"

namespace Quillbrook::LinuxCatalogue {

[[nodiscard]] const QList<HostRuleLocations> &locations();
[[nodiscard]] const QList<HostRule> &safeRules();
[[nodiscard]] const QList<HostRule> &developerRules();
[[nodiscard]] const QList<HostRule> &mediaRules();
[[nodiscard]] const QList<HostRule> &reportRules();
[[nodiscard]] const QList<HostRuleIds> &related();
[[nodiscard]] const QList<HostRuleIds> &presets();
[[nodiscard]] const QList<HostPreset> &ownPresets();
[[nodiscard]] const QList<HostSuitability> &suitability();
[[nodiscard]] const QList<HostItemisation> &itemisations();

/// The tables' places as they lie on this machine.
[[nodiscard]] LinuxMovedPaths movedPaths(const LinuxBaseFolders &bases, const QString &home);

/// All of it as one. Where the desktop gives Downloads, Pictures or Videos another name below `home`, that
/// folder is one of its rule's locations too, unless a location holds it already. Where a base is moved, all
/// places in it move along; one that is moved out of `home` has none.
[[nodiscard]] HostCatalogue catalogue(
    const LinuxUserFolders::Folders &folders, const QString &home, const LinuxBaseFolders &bases = {});

} // namespace Quillbrook::LinuxCatalogue
