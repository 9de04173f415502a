#pragma once

// Where applications leave things behind: the table of places that a plan looks in, and that of the search
// for what has no application any more.

#include "Uninstaller/Leftover.h"

#include <array>
#include <string_view>
#include <vector>

namespace Quillbrook::LeftoverLocations {

/// A place where the file or folder of an application lies under a name that is the application's own.
struct Location
{
    std::string directory{};
    LeftoverKind kind = LeftoverKind::supportFiles;
    std::string suffix{};
    /// The name is formed from the display name, else from the identifier.
    bool byName = false;
    bool needsAdministrator = false;

    bool operator==(const Location &) const = default;
};

/// For a home folder (absolute, raw bytes). `library` is that of all users.
[[nodiscard]] std::vector<Location> locations(
    const std::string &home, const std::string &library = "/Library");

/// The places searched for what is left of applications that are gone.
[[nodiscard]] std::vector<Location> orphanLocations(const std::string &home);

/// How names begin that belong to somebody who shows up as no application. Letter case counts.
inline constexpr std::array<QStringView, 20> neverOrphans{ u"com.apple.", u"group.com.apple.", u"com.docker.",
    u"com.vmware.", u"org.python", u"org.mozilla.crashreporter", u"com.google.keystone",
    u"com.microsoft.autoupdate", u"com.adobe.acc", u"com.adobe.ccx", u"Homebrew", u"homebrew", u"node",
    u"npm", u"pip", u"JetBrains", u"com.jetbrains.toolbox", u"CrashReporter", u"Knowledge",
    u"Mobile Documents" };

} // namespace Quillbrook::LeftoverLocations
