#include "Uninstaller/Linux/DesktopEntries.h"

#include "Platform/FileReading.h"
#include "RawText.h"
#include "Uninstaller/FolderNames.h"
#include "Uninstaller/Linux/ApplicationPlaces.h"

#include <algorithm>
#include <optional>
#include <set>
#include <sys/stat.h>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view ending = ".desktop";
constexpr std::size_t deepest = 4;
constexpr int mostFolders = 500;
constexpr std::size_t mostEntries = 20'000;

// The folder that a path leads to, whatever the path: links may lead around in circles.
using Place = std::pair<dev_t, ino_t>;

std::optional<Place> placeOf(const std::string &path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode))
        return std::nullopt;
    return Place(status.st_dev, status.st_ino);
}

struct Walk
{
    const FileReading &reading;
    DesktopEntries entries{};
    /// The folder that is gone through, and those that led to it.
    std::vector<Place> trail{};
    int folderCount = 0;
    std::size_t entryCount = 0;

    void into(const std::string &folder, const QString &prefix, EntryPlace place)
    {
        const auto here = placeOf(folder);
        if (!here || trail.size() > deepest || ++folderCount > mostFolders
            || std::ranges::find(trail, *here) != trail.end())
            return;
        trail.push_back(*here);
        for (const auto &name : FolderNames::in(folder)) {
            const auto path = folder + '/' + name;
            if (name.ends_with(ending))
                add(path, prefix + repairedText(name.substr(0, name.size() - ending.size())), place);
            else
                into(path, prefix + repairedText(name) + u'-', place);
        }
        trail.pop_back();
    }

    void add(const std::string &path, const QString &id, EntryPlace place)
    {
        if (++entryCount > mostEntries || id.isEmpty())
            return;
        entries.ids.insert(id);
        const auto text = reading.contents(path, DesktopEntry::maximumBytes);
        auto entry = text ? DesktopEntry::parse(*text) : std::nullopt;
        if (entry)
            entries.found[id].push_back(
                { .id = id, .path = path, .place = place, .entry = std::move(*entry) });
    }
};

} // namespace

DesktopEntries DesktopEntries::of(const FileReading &reading, const ApplicationPlaces &places)
{
    Walk walk{ .reading = reading };
    std::set<std::string> done;
    const auto look = [&](const std::string &data, EntryPlace place) {
        if (done.insert(data).second)
            walk.into(data + "/applications", {}, place);
    };
    // Flatpak's own folders may stand among those of the system, and are Flatpak's nevertheless.
    const auto userExports = places.userFlatpak + "/exports/share";
    const auto systemExports = places.systemFlatpak + "/exports/share";
    look(places.data, EntryPlace::ofUser);
    look(userExports, EntryPlace::flatpakOfUser);
    for (const auto &data : places.systemData) {
        const bool isSnaps = data == places.snapd + "/desktop";
        look(data,
            data == systemExports ? EntryPlace::flatpakOfSystem
                : isSnaps         ? EntryPlace::ofSnaps
                                  : EntryPlace::ofSystem);
    }
    look(systemExports, EntryPlace::flatpakOfSystem);
    look(places.snapd + "/desktop", EntryPlace::ofSnaps);
    return std::move(walk.entries);
}

} // namespace Quillbrook
