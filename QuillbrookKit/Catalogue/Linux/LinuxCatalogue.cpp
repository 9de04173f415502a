#include "Catalogue/Linux/LinuxCatalogue.h"

#include "Catalogue/StorageCatalogue.h"
#include "StandardisedPath.h"

#include <algorithm>
#include <utility>

namespace Quillbrook::LinuxCatalogue {

using namespace Qt::StringLiterals;

namespace {

struct Place
{
    QString path{};
    Safety safety{};
};

// A rule's own table does not repeat its paths: they are those of its locations.
HostRule withPaths(HostRule row)
{
    row.rule.paths.clear();
    for (const auto &location : row.locations)
        row.rule.paths.append(location.path);
    return row;
}

std::vector<Place> placesOf(const HostCatalogue &catalogue)
{
    std::vector<Place> places;
    for (const auto &rule : StorageCatalogue::rules()) {
        for (const auto &path : rule.paths)
            places.push_back({ path, rule.safety });
        for (const auto &row : catalogue.locations)
            if (row.ruleId == rule.id)
                for (const auto &location : row.locations)
                    places.push_back({ location.path, rule.safety });
    }
    for (const auto &row : catalogue.rules)
        for (const auto &path : row.rule.paths)
            places.push_back({ path, row.rule.safety });
    return places;
}

void move(QList<HostLocation> &locations, const LinuxMovedPaths &paths)
{
    QList<HostLocation> result;
    for (auto &location : locations)
        if (auto path = paths.of(location.path))
            result.append({ std::move(*path), location.label });
    locations = std::move(result);
}

// A row that names places and has none left is of no place; without any it would be of them all.
QList<HostItemisation> movedItemisations(const LinuxMovedPaths &paths)
{
    QList<HostItemisation> rows;
    for (auto row : itemisations()) {
        const auto usual = std::exchange(row.paths, {});
        for (const auto &path : usual)
            if (auto moved = paths.of(path))
                row.paths.append(std::move(*moved));
        if (usual.isEmpty() || !row.paths.isEmpty())
            rows.append(std::move(row));
    }
    return rows;
}

// Where Flatpak tells of the applications that are installed for the user and for all.
QStringList desktopEntryFolders(const LinuxMovedPaths &paths)
{
    const auto exports = u"/exports/share/applications"_s;
    QStringList folders{ u"/var/lib/flatpak"_s + exports };
    if (const auto own = paths.of(u".local/share/flatpak"_s))
        folders.prepend(*own + exports);
    return folders;
}

// Adds a folder that is only shown, unless bytes would count twice.
void addShownFolder(HostCatalogue &catalogue, const QString &ruleId, const std::optional<QString> &folder,
    const QString &home)
{
    if (!folder || !folder->startsWith(home + u'/'))
        return;
    const auto path = folder->sliced(home.size() + 1);
    const auto clashes = [&path](const Place &place) {
        return isAtOrBelow(path, place.path)
            || (place.safety == Safety::reportOnly && isAtOrBelow(place.path, path));
    };
    if (std::ranges::any_of(placesOf(catalogue), clashes))
        return;
    catalogue.locations.append({ ruleId, { { path, path.section(u'/', -1) } } });
}

} // namespace

LinuxMovedPaths movedPaths(const LinuxBaseFolders &bases, const QString &home)
{
    LinuxMovedPaths paths(bases, home);
    HostCatalogue tables{ .locations = locations() };
    for (const auto *table : { &safeRules(), &developerRules(), &mediaRules(), &reportRules() })
        for (const auto &row : *table)
            tables.rules.append(withPaths(row));
    for (const auto &place : placesOf(tables))
        paths.keepClearOf(place.path);
    return paths;
}

HostCatalogue catalogue(
    const LinuxUserFolders::Folders &folders, const QString &home, const LinuxBaseFolders &bases)
{
    const auto paths = movedPaths(bases, home);
    HostCatalogue result{ .locations = locations(),
        .related = related(),
        .presets = presets(),
        .ownPresets = ownPresets(),
        .suitability = suitability(),
        .itemisations = movedItemisations(paths),
        .desktopEntryFolders = desktopEntryFolders(paths) };
    for (auto &row : result.locations)
        move(row.locations, paths);
    for (const auto *table : { &safeRules(), &developerRules(), &mediaRules(), &reportRules() })
        for (auto row : *table) {
            move(row.locations, paths);
            result.rules.append(withPaths(std::move(row)));
        }
    addShownFolder(result, u"downloads.folder"_s, folders.downloads, home);
    addShownFolder(result, u"photos.library"_s, folders.pictures, home);
    addShownFolder(result, u"videos.folder"_s, folders.videos, home);
    return result;
}

} // namespace Quillbrook::LinuxCatalogue
