#include "Catalogue/Linux/LinuxFoundPlaces.h"

#include "Catalogue/ApplicationNames.h"
#include "Platform/FolderEntries.h"
#include "RawText.h"
#include "StandardisedPath.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>

namespace Quillbrook::LinuxFoundPlaces {

using namespace Qt::StringLiterals;

namespace {

const auto firstProfile = u"/Default/Service Worker/CacheStorage"_s;

// What these keep among their caches may be the only copy: edits and originals, earlier versions of files,
// changes made offline or set aside, drafts, work that a crash has cut off, and installers that were put in
// by hand. The backup tools' caches are notes that cost more than a wait. A name that ends in a dot stands
// for all of that maker.
bool keepsMoreThanCopies(const QString &id)
{
    static const QStringList names = {
        u"com.borgbase.Vorta"_s,
        u"com.github.xournalpp.xournalpp"_s,
        u"com.jetbrains."_s,
        u"com.rawtherapee.RawTherapee"_s,
        u"com.visualstudio."_s,
        u"com.vscodium."_s,
        u"net.lutris.Lutris"_s,
        u"org.audacityteam.Audacity"_s,
        u"org.darktable.Darktable"_s,
        u"org.freecad."_s,
        u"org.freecadweb."_s,
        u"org.gimp.GIMP"_s,
        u"org.gnome.Evolution"_s,
        u"org.gnome.World.PikaBackup"_s,
        u"org.inkscape.Inkscape"_s,
        u"org.kde.digikam"_s,
        u"org.kde.krita"_s,
        u"org.libreoffice.LibreOffice"_s,
        u"org.mypaint.MyPaint"_s,
        u"org.tenacityaudio.Tenacity"_s,
        u"org.winehq.Wine"_s,
    };
    return std::ranges::any_of(
        names, [&id](const QString &name) { return name.endsWith(u'.') ? id.startsWith(name) : id == name; });
}

// The folders right in `folder` whose whole name fits, in order.
QStringList foldersIn(const std::string &folder, const QRegularExpression &name)
{
    QStringList names;
    const auto entries = folderEntries(folder);
    if (!entries->open(folder))
        return names;
    while (const auto entry = entries->next()) {
        const auto text = repairedText(entry->name);
        if (entry->isFolder && name.match(text).hasMatch())
            names.append(text);
    }
    names.sort();
    return names;
}

bool hasPlaceIn(const HostCatalogue &catalogue, const QString &folder)
{
    const auto isThere
        = [&folder](const HostLocation &location) { return isAtOrBelow(location.path, folder); };
    const auto holds = [&isThere](const auto &row) { return std::ranges::any_of(row.locations, isThere); };
    return std::ranges::any_of(catalogue.rules, holds) || std::ranges::any_of(catalogue.locations, holds);
}

// Two that are called alike are told apart by what Flatpak calls them.
void tellApart(QList<HostLocation> &locations)
{
    QHash<QString, int> counts;
    for (const auto &location : std::as_const(locations))
        ++counts[location.label];
    for (auto &location : locations)
        if (counts.value(location.label) > 1)
            location.label = location.applicationId;
}

} // namespace

QList<HostLocation> flatpakCaches(
    const HostCatalogue &catalogue, const FileReading &reading, const std::string &home)
{
    static const QRegularExpression id(u"\\A[A-Za-z0-9_-]+(\\.[A-Za-z0-9_-]+)+\\z"_s);
    QList<HostLocation> locations;
    for (const auto &name : foldersIn(home + "/.var/app", id)) {
        const auto path = u".var/app/"_s + name + u"/cache"_s;
        if (keepsMoreThanCopies(name) || hasPlaceIn(catalogue, path))
            continue;
        locations.append({ path, ApplicationNames::ofFlatpak(reading, catalogue, home, name), name });
    }
    tellApart(locations);
    return locations;
}

QList<HostLocation> furtherProfiles(const HostCatalogue &catalogue, const std::string &home)
{
    static const QRegularExpression profile(u"\\AProfile [0-9]+\\z"_s);
    QList<HostLocation> locations;
    const auto rule = std::ranges::find(
        catalogue.rules, u"browser.offline"_s, [](const HostRule &row) { return row.rule.id; });
    if (rule == catalogue.rules.end())
        return locations;
    for (const auto &[path, label, application] : rule->locations) {
        if (!path.endsWith(firstProfile))
            continue;
        const auto browser = path.chopped(firstProfile.size());
        for (const auto &name : foldersIn(home + '/' + browser.toStdString(), profile))
            locations.append({ browser + u'/' + name + firstProfile.sliced(u"/Default"_s.size()),
                label + u", "_s + name });
    }
    return locations;
}

} // namespace Quillbrook::LinuxFoundPlaces
