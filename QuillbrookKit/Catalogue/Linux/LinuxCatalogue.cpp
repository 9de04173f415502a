#include "Catalogue/Linux/LinuxCatalogue.h"

#include "Catalogue/StorageCatalogue.h"

#include <algorithm>

namespace Quillbrook::LinuxCatalogue {

using namespace Qt::StringLiterals;

namespace {

struct Place
{
    QString path{};
    Safety safety{};
};

bool isAtOrBelow(const QString &path, const QString &folder)
{
    return path == folder || path.startsWith(folder + u'/');
}

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

HostCatalogue catalogue(const LinuxUserFolders::Folders &folders, const QString &home)
{
    HostCatalogue result{ .locations = locations(),
        .related = related(),
        .presets = presets(),
        .suitability = suitability(),
        .itemisations = itemisations() };
    for (const auto *table : { &safeRules(), &developerRules(), &mediaRules(), &reportRules() })
        for (const auto &row : *table)
            result.rules.append(withPaths(row));
    addShownFolder(result, u"downloads.folder"_s, folders.downloads, home);
    addShownFolder(result, u"photos.library"_s, folders.pictures, home);
    addShownFolder(result, u"videos.folder"_s, folders.videos, home);
    return result;
}

} // namespace Quillbrook::LinuxCatalogue
