#pragma once

// What is left in a user's folders of applications that nobody has any more.

#include "Uninstaller/HostApplications.h"
#include "Uninstaller/Linux/ApplicationPlaces.h"
#include "Uninstaller/UninstallerServices.h"

namespace Quillbrook::LinuxOrphans {

struct Location
{
    std::string directory{};
    LeftoverKind kind = LeftoverKind::supportFiles;
};

[[nodiscard]] std::vector<Location> locations(const ApplicationPlaces &places);

/// Whether somebody owns what is named so, by the identifiers of all owners, in lower case: one is it, or
/// begins it. It may also belong to a desktop, which is installed as no application.
[[nodiscard]] bool isOwned(const QString &identifier, const QSet<QString> &owners);

[[nodiscard]] std::vector<FoundOrphan> find(const UninstallerServices &services,
    const ApplicationPlaces &places, const QSet<QString> &owners, const Measure &measure, qint64 staleDays);

} // namespace Quillbrook::LinuxOrphans
