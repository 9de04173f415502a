#pragma once

// Where programs of a Linux desktop leave things behind, and which of those can be an application's own. A
// file belongs to an application only by a name that can't be anybody else's.

#include "Uninstaller/InstalledApp.h"
#include "Uninstaller/Leftover.h"
#include "Uninstaller/Linux/ApplicationPlaces.h"

#include <QSet>

#include <string>
#include <vector>

namespace Quillbrook::LinuxLeftovers {

/// A row of the table: `directory`, and in it an entry named by a key of the application and `suffix`.
struct Location
{
    std::string directory{};
    LeftoverKind kind = LeftoverKind::supportFiles;
    std::string suffix{};
    /// The key is a name of the application, else its identifier.
    bool byName = false;
    /// Everything counts that begins with the identifier and ends in the suffix.
    bool byStart = false;
    bool needsAdministrator = false;
    /// Only an application of a snap, or of a Flatpak, has something there.
    std::vector<AppOrigin> origins{};
    /// It is a part of the application itself: an icon that its entry names.
    bool isPartOfApp = false;
};

[[nodiscard]] std::vector<Location> locations(const ApplicationPlaces &places);

/// One path that would be an application's, or all that begin and end so.
struct Claim
{
    std::string directory{};
    /// The whole name of the entry; its start where `suffix` is given.
    std::string name{};
    std::string suffix{};
    bool isStart = false;
    LeftoverKind kind = LeftoverKind::supportFiles;
    bool needsAdministrator = false;
    bool isPartOfApp = false;
    /// By an identifier of three pieces or more, which is nobody else's.
    bool isByLongId = false;

    [[nodiscard]] bool covers(const std::string &inDirectory, const std::string &entry) const;
};

/// What `app` would claim, whether or not it is there.
[[nodiscard]] std::vector<Claim> claims(const std::vector<Location> &table, const InstalledApp &app);

/// The names of `app` that can stand for it alone.
[[nodiscard]] std::vector<std::string> usableNames(const InstalledApp &app);
/// Whether the identifier can stand for it alone.
[[nodiscard]] bool isUsableId(const QString &id);

/// Whether a file or folder of that name may belong to a desktop, to a toolkit or to many programs at once.
[[nodiscard]] bool isShared(const QString &name);
/// Whether it is an interpreter, a launcher or a browser, which starts other programs.
[[nodiscard]] bool isLauncher(const QString &program);

} // namespace Quillbrook::LinuxLeftovers
