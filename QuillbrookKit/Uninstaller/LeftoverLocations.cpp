#include "Uninstaller/LeftoverLocations.h"

namespace Quillbrook::LeftoverLocations {

std::vector<Location> locations(const std::string &home, const std::string &library)
{
    using enum LeftoverKind;
    const auto own = home + "/Library";
    return {
        { .directory = own + "/Containers", .kind = container },
        { .directory = own + "/Application Support", .kind = supportFiles },
        { .directory = own + "/Application Support", .kind = supportFiles, .byName = true },
        { .directory = own + "/Caches", .kind = cache },
        { .directory = own + "/Caches", .kind = cache, .byName = true },
        { .directory = own + "/Preferences", .kind = preferences, .suffix = ".plist" },
        { .directory = own + "/Preferences/ByHost", .kind = preferences, .suffix = ".plist" },
        { .directory = own + "/Saved Application State", .kind = savedState, .suffix = ".savedState" },
        { .directory = own + "/HTTPStorages", .kind = webStorage },
        { .directory = own + "/HTTPStorages", .kind = webStorage, .suffix = ".binarycookies" },
        { .directory = own + "/WebKit", .kind = webStorage },
        { .directory = own + "/Logs", .kind = logs, .byName = true },
        { .directory = own + "/Logs", .kind = logs },
        { .directory = own + "/Cookies", .kind = cookies, .suffix = ".binarycookies" },
        { .directory = own + "/LaunchAgents", .kind = launchItem, .suffix = ".plist" },
        { .directory = own + "/Application Scripts", .kind = scripts },
        { .directory = library + "/Application Support",
            .kind = systemWide,
            .byName = true,
            .needsAdministrator = true },
        { .directory = library + "/LaunchAgents",
            .kind = launchItem,
            .suffix = ".plist",
            .needsAdministrator = true },
        { .directory = library + "/LaunchDaemons",
            .kind = launchItem,
            .suffix = ".plist",
            .needsAdministrator = true },
        { .directory = library + "/PrivilegedHelperTools", .kind = systemWide, .needsAdministrator = true },
    };
}

std::vector<Location> orphanLocations(const std::string &home)
{
    using enum LeftoverKind;
    const auto own = home + "/Library";
    return {
        { .directory = own + "/Application Support", .kind = supportFiles },
        { .directory = own + "/Containers", .kind = container },
        { .directory = own + "/Caches", .kind = cache },
        { .directory = own + "/Saved Application State", .kind = savedState, .suffix = ".savedState" },
        { .directory = own + "/HTTPStorages", .kind = webStorage },
        { .directory = own + "/WebKit", .kind = webStorage },
    };
}

} // namespace Quillbrook::LeftoverLocations
