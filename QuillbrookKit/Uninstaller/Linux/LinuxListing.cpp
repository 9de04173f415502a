#include "Uninstaller/Linux/LinuxListing.h"

#include "Platform/FileFacts.h"
#include "Platform/FileReading.h"
#include "RawText.h"
#include "Uninstaller/FolderNames.h"
#include "Uninstaller/Linux/DesktopEntries.h"
#include "Uninstaller/Linux/FlatpakInstallation.h"
#include "Uninstaller/Linux/IconFiles.h"
#include "Uninstaller/Linux/KeyFile.h"
#include "Uninstaller/Linux/LinuxLeftovers.h"
#include "Uninstaller/Linux/OwnProgram.h"
#include "Uninstaller/Linux/PackageOwners.h"
#include "Uninstaller/Linux/SnapInstallation.h"
#include "Uninstaller/UninstallerServices.h"

#include <QRegularExpression>

#include <algorithm>
#include <set>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto ownId = u"com.tarnwick.Quillbrook"_s;

// As a software centre's link may name it; empty for what has no such form.
QString component(const QString &id)
{
    static const QRegularExpression form(u"\\A[A-Za-z0-9_][A-Za-z0-9_.-]*\\z"_s);
    if (!form.match(id).hasMatch())
        return {};
    return id.count(u'.') >= 2 ? id : id + u".desktop"_s;
}

QString lastComponent(const std::string &path)
{
    return repairedText(std::string_view(path).substr(path.rfind('/') + 1));
}

class Listing
{
public:
    Listing(
        const UninstallerServices &services, const ProcessRunner &processes, const ApplicationPlaces &places)
        : m_services(services)
        , m_processes(processes)
        , m_places(places)
        , m_entries(DesktopEntries::of(services.reading, places))
    {
    }

    HostListing made()
    {
        addFlatpaks(m_places.userFlatpak, AppOrigin::flatpakOfUser, EntryPlace::flatpakOfUser);
        addFlatpaks(m_places.systemFlatpak, AppOrigin::flatpakOfSystem, EntryPlace::flatpakOfSystem);
        for (auto [id, found] : m_entries.found) {
            // An installation of Flatpak tells of its own applications; what has the same id beside them is
            // another one.
            std::erase_if(found, [](const FoundEntry &entry) {
                return entry.place == EntryPlace::flatpakOfUser || entry.place == EntryPlace::flatpakOfSystem;
            });
            if (!found.empty())
                addEntry(found);
        }
        addPackages();
        addLooseAppImages();
        settleOwn();
        addOwners();
        markSelf();
        const IconFiles icons(m_services.reading, m_places);
        for (auto &app : m_listing.apps)
            app.iconFile = icons.file(app.icon);
        return std::move(m_listing);
    }

private:
    void add(InstalledApp app)
    {
        if (!m_keys.insert(app.key()).second)
            return;
        if (const auto dates = m_services.files.dates(app.app.path))
            app.app.lastOpened = dates->lastModified;
        m_listing.apps.push_back(std::move(app));
    }

    // The words of the entry that an installation exports, whatever the user has put before it.
    [[nodiscard]] const DesktopEntry *exported(const QString &id, EntryPlace place) const
    {
        const auto found = m_entries.found.find(id);
        if (found == m_entries.found.end())
            return nullptr;
        const auto entry = std::ranges::find(found->second, place, &FoundEntry::place);
        return entry == found->second.end() || entry->entry.name.isEmpty() ? nullptr : &entry->entry;
    }

    void addFlatpaks(const std::string &folder, AppOrigin origin, EntryPlace place)
    {
        auto apps = FlatpakInstallation::apps(m_services.reading, folder);
        std::map<QString, int> uses;
        for (const auto &app : apps)
            for (const auto &runtime : app.runtimes)
                ++uses[runtime];
        for (const auto &found : apps) {
            const auto *entry = exported(found.id, place);
            InstalledApp app{ .app = { .path = found.folder,
                                  .name = entry != nullptr ? entry->name : plainLine(found.id),
                                  .bundleID = found.id,
                                  .version = found.version,
                                  .fromAppStore = true },
                .origin = origin,
                .originName = found.origin,
                .icon = entry != nullptr ? entry->icon : found.id,
                .refs = found.refs,
                .componentId = component(found.id) };
            std::ranges::copy_if(found.runtimes, std::back_inserter(app.runtimes),
                [&](const QString &runtime) { return uses[runtime] == 1; });
            m_listing.owners.insert(found.id);
            add(std::move(app));
        }
    }

    [[nodiscard]] bool isShown(const DesktopEntry &entry) const
    {
        return entry.isApplication && !entry.isHidden && entry.isDisplayed
            && entry.isShownIn(m_places.desktops)
            && (entry.tryExec.isEmpty() || OwnProgram::isThere(entry.tryExec, m_places));
    }

    // What a user's own entry starts belongs to the user only where it lies in the home folder. Else the
    // entry behind it counts, if there is one: the user's is the same application with other words.
    void addEntry(const std::vector<FoundEntry> &found)
    {
        const auto &first = found.front();
        if (!isShown(first.entry))
            return;
        if (first.place != EntryPlace::ofUser) {
            addOf(first);
            return;
        }
        const auto program = OwnProgram::of(first.entry.command, m_places);
        const auto behind = std::ranges::find_if(
            found, [](const FoundEntry &entry) { return entry.place != EntryPlace::ofUser; });
        if (behind != found.end() && !program.isInHome)
            addOf(*behind);
        else if (first.entry.flatpak.isEmpty() && first.entry.snap.isEmpty())
            addOwn(first, program, behind != found.end());
    }

    void addOf(const FoundEntry &found)
    {
        if (found.place == EntryPlace::ofSnaps || !found.entry.snap.isEmpty())
            addSnap(found);
        else
            m_ofSystem.push_back(found);
    }

    void addSnap(const FoundEntry &found)
    {
        const auto name = found.entry.snap.isEmpty() ? found.id.section(u'_', 0, 0) : found.entry.snap;
        const auto raw = name.toStdString();
        if (!FolderNames::isName(raw))
            return;
        const auto image = SnapInstallation::image(m_places, raw);
        add({ .app = { .path = image.empty() ? found.path : image,
                  .name = found.entry.name,
                  .bundleID = name,
                  .version = SnapInstallation::version(m_services.reading, m_places, raw),
                  .fromAppStore = true },
            .origin = AppOrigin::snap,
            .originName = u"Snap"_s,
            .icon = found.entry.icon,
            .componentId = component(found.id) });
    }

    void addPackages()
    {
        std::vector<std::string> paths;
        for (const auto &found : m_ofSystem)
            paths.push_back(found.path);
        const auto owners = PackageOwners::of(m_processes, m_places, paths);
        std::map<QString, int> entriesOf;
        for (const auto &[path, package] : owners)
            ++entriesOf[package.name];
        for (const auto &found : m_ofSystem) {
            const auto owner = owners.find(found.path);
            const bool isOwned = owner != owners.end();
            InstalledApp app{ .app = { .path = found.path, .name = found.entry.name, .bundleID = found.id },
                .origin = isOwned ? AppOrigin::package : AppOrigin::systemEntry,
                .icon = found.entry.icon,
                .programName = OwnProgram::of(found.entry.command, m_places).name,
                .componentId = component(found.id) };
            if (isOwned) {
                app.originName = owner->second.name;
                if (!owner->second.version.isEmpty())
                    app.app.version = owner->second.version;
                app.app.bytes = owner->second.bytes;
                app.isMeasured = true;
                app.sharesPackage = entriesOf[owner->second.name] > 1;
            }
            add(std::move(app));
        }
    }

    void addOwn(const FoundEntry &found, const OwnProgram &program, bool hidesAnother)
    {
        const bool isImage = program.isAppImage && program.isInHome;
        if (isImage && !m_images.insert(program.path).second) {
            joinImage(program.path, found.path);
            return;
        }
        InstalledApp app{ .app
            = { .path = isImage ? program.path : found.path, .name = found.entry.name, .bundleID = found.id },
            .origin = isImage ? AppOrigin::appImage : AppOrigin::ownEntry,
            .icon = found.entry.icon,
            .programName = program.name,
            .isProgramElsewhere = !program.path.empty() && !program.isInHome,
            .hidesAnother = hidesAnother,
            .programs = program.marks };
        if (isImage && !found.entry.appImageVersion.isEmpty())
            app.app.version = found.entry.appImageVersion;
        app.goes = isImage ? std::vector{ found.path, program.path } : std::vector{ found.path };
        if (!isImage && program.mayGo)
            app.goes.insert(app.goes.begin(), program.path);
        app.programStays = !isImage && !program.mayGo && !program.path.empty();
        add(std::move(app));
    }

    // Several entries may start one image, which is one application then: none of them is of use without it.
    void joinImage(const std::string &image, const std::string &entry)
    {
        const auto known = std::ranges::find_if(
            m_listing.apps, [&](const InstalledApp &app) { return app.app.path == image; });
        if (known != m_listing.apps.end())
            known->goes.insert(known->goes.begin(), entry);
    }

    void addLooseAppImages()
    {
        for (const auto &path : OwnProgram::appImages(m_places)) {
            if (!m_images.insert(path).second)
                continue;
            const auto file = lastComponent(path);
            add({ .app = { .path = path,
                      .name = plainLine(file.left(file.size() - qsizetype(sizeof(".AppImage") - 1))),
                      .bundleID = file },
                .origin = AppOrigin::appImage,
                .programs = OwnProgram::marksOf(path),
                .goes = { path } });
        }
    }

    // What two of them share goes with neither; the icon that the icon table has under an id goes with it.
    void settleOwn()
    {
        const auto table = LinuxLeftovers::locations(m_places);
        std::map<std::string, int> uses;
        std::map<QString, int> ids;
        for (const auto &app : m_listing.apps) {
            ++ids[app.app.bundleID];
            std::set<std::string> used(app.goes.begin(), app.goes.end());
            used.insert(app.programs.begin(), app.programs.end());
            for (const auto &path : used)
                ++uses[path];
        }
        for (auto &app : m_listing.apps) {
            if (app.goes.empty())
                continue;
            if (std::erase_if(
                    app.goes, [&](const std::string &path) { return path != app.app.path && uses[path] > 1; })
                > 0)
                app.programStays = true;
            if (ids[app.app.bundleID] > 1)
                continue;
            for (const auto &claim : LinuxLeftovers::claims(table, app)) {
                const auto path = claim.directory + '/' + claim.name;
                if (claim.isPartOfApp && m_services.files.kind(path) == FileKind::other)
                    app.goes.insert(app.goes.begin(), path);
            }
        }
    }

    void addOwners()
    {
        auto &owners = m_listing.owners;
        owners.unite(m_entries.ids);
        for (const auto &folder : { m_places.userFlatpak, m_places.systemFlatpak })
            for (const auto &id : FlatpakInstallation::allIds(folder))
                owners.insert(id);
        auto data = m_places.systemData;
        data.push_back(m_places.data);
        for (const auto &folder : data)
            for (const auto *services : { "/dbus-1/services", "/dbus-1/system-services" })
                for (const auto &name : FolderNames::in(folder + services))
                    if (name.ends_with(".service"))
                        addService(folder + services + '/' + name);
        for (const auto &name : FolderNames::in(m_places.snaps))
            owners.insert(repairedText(name));
        owners.remove(QString());
    }

    // It is known by the name that it takes on the bus, which its file need not bear.
    void addService(const std::string &path)
    {
        const auto file = lastComponent(path);
        m_listing.owners.insert(file.left(file.lastIndexOf(u'.')));
        const auto text = m_services.reading.contents(path, DesktopEntry::maximumBytes);
        if (const auto note = text ? KeyFile::parse(*text) : std::nullopt)
            m_listing.owners.insert(note->text("D-BUS Service", "Name"));
    }

    void markSelf()
    {
        const auto isOwnFile = [&](const std::string &path) {
            return std::ranges::find(m_places.ownFiles, path) != m_places.ownFiles.end();
        };
        for (auto &app : m_listing.apps)
            app.isSelf = app.app.bundleID == ownId || std::ranges::any_of(app.programs, isOwnFile);
    }

    const UninstallerServices &m_services;
    const ProcessRunner &m_processes;
    const ApplicationPlaces &m_places;
    DesktopEntries m_entries;
    std::vector<FoundEntry> m_ofSystem;
    std::set<QString> m_keys;
    std::set<std::string> m_images;
    HostListing m_listing;
};

} // namespace

HostListing linuxListing(
    const UninstallerServices &services, const ProcessRunner &processes, const ApplicationPlaces &places)
{
    return Listing(services, processes, places).made();
}

} // namespace Quillbrook
