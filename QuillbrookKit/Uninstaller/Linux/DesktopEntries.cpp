#include "Uninstaller/Linux/DesktopEntries.h"

#include "Platform/FileReading.h"
#include "RawText.h"
#include "Uninstaller/FolderNames.h"
#include "Uninstaller/Linux/ApplicationPlaces.h"

#include <filesystem>
#include <set>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view ending = ".desktop";
constexpr int deepest = 4;
// Links may lead around in circles.
constexpr int mostFolders = 500;
constexpr std::size_t mostEntries = 20'000;

struct Walk
{
    const FileReading &reading;
    std::map<QString, std::vector<FoundEntry>> found{};
    int folders = 0;
    std::size_t entries = 0;

    void into(const std::string &folder, const QString &prefix, EntryPlace place, int depth)
    {
        if (depth > deepest || ++folders > mostFolders)
            return;
        for (const auto &name : FolderNames::in(folder)) {
            const auto path = folder + '/' + name;
            if (name.ends_with(ending))
                add(path, prefix + repairedText(name.substr(0, name.size() - ending.size())), place);
            else if (std::error_code error; std::filesystem::is_directory(path, error))
                into(path, prefix + repairedText(name) + u'-', place, depth + 1);
        }
    }

    void add(const std::string &path, const QString &id, EntryPlace place)
    {
        if (++entries > mostEntries || id.isEmpty())
            return;
        const auto text = reading.contents(path, DesktopEntry::maximumBytes);
        auto entry = text ? DesktopEntry::parse(*text) : std::nullopt;
        if (entry)
            found[id].push_back({ .id = id, .path = path, .place = place, .entry = std::move(*entry) });
    }
};

} // namespace

std::map<QString, std::vector<FoundEntry>> desktopEntries(
    const FileReading &reading, const ApplicationPlaces &places)
{
    Walk walk{ .reading = reading };
    std::set<std::string> done;
    const auto look = [&](const std::string &data, EntryPlace place) {
        if (done.insert(data).second)
            walk.into(data + "/applications", {}, place, 0);
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
    return std::move(walk.found);
}

} // namespace Quillbrook
