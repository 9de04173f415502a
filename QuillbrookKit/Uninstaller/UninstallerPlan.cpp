#include "Platform/FileFacts.h"
#include "Platform/RunningApps.h"
#include "Removal/PathRemoval.h"
#include "Uninstaller/FolderNames.h"
#include "Uninstaller/LeftoverLocations.h"
#include "Uninstaller/Uninstaller.h"

#include <algorithm>
#include <map>

namespace Quillbrook::Uninstaller {

using namespace Qt::StringLiterals;
using LeftoverLocations::Location;

namespace {

// What has been found so far. The first that finds a path decides what it is.
class Search
{
public:
    Search(const UninstallerServices &services, const Measure &measure)
        : m_services(services)
        , m_measure(measure)
    {
    }

    void admit(const std::string &path, LeftoverKind kind, bool needsAdministrator)
    {
        if (m_found.contains(path))
            return;
        // By the process's own home, whatever home the plan is for.
        const auto refusal = PathRemoval::refusal(path, m_services.processHome, m_services.guards);
        if (refusal && !needsAdministrator)
            return;
        m_found[path] = {
            .path = path, .kind = kind, .bytes = m_measure(path), .needsAdministrator = needsAdministrator
        };
    }

    void admitIfThere(const std::string &path, const Location &location)
    {
        if (m_services.files.dates(path))
            admit(path, location.kind, location.needsAdministrator);
    }

    [[nodiscard]] std::vector<Leftover> found() const
    {
        std::vector<Leftover> leftovers;
        for (const auto &[path, leftover] : m_found)
            leftovers.push_back(leftover);
        return leftovers;
    }

private:
    const UninstallerServices &m_services;
    const Measure &m_measure;
    std::map<std::string, Leftover> m_found;
};

void searchByListing(Search &search, const Location &location, const std::string &bundleID)
{
    const bool isByHost = !location.byName && location.directory.ends_with("/ByHost");
    // The bare identifier on purpose: helpers of an application are named by it with anything behind.
    const bool isLaunch
        = location.directory.ends_with("/LaunchAgents") || location.directory.ends_with("/LaunchDaemons");
    if (!isByHost && !isLaunch)
        return;
    const auto start = isByHost ? bundleID + '.' : bundleID;
    for (const auto &name : FolderNames::in(location.directory))
        if (name.starts_with(start) && name.ends_with(".plist"))
            search.admit(location.directory + '/' + name, location.kind, location.needsAdministrator);
}

void searchGroups(
    Search &search, const UninstallerServices &services, const std::string &home, const std::string &bundleID)
{
    const auto folder = home + "/Library/Group Containers";
    for (const auto &name : FolderNames::in(folder)) {
        const auto path = folder + '/' + name;
        if ((name.ends_with('.' + bundleID) || name == "group." + bundleID)
            && !PathRemoval::refusal(path, services.processHome, services.guards))
            search.admit(path, LeftoverKind::groupContainer, false);
    }
}

std::optional<QString> refusal(const UninstallerServices &services, const PlanRequest &request)
{
    const auto &app = request.app;
    const auto about
        = [&](const QString &sentence) { return services.worded(sentence).replace(u"{name}"_s, app.name); };
    if (app.isSystem)
        return about(systemSentence());
    if (app.bundleID.isEmpty())
        return about(unnamedSentence());
    const auto running = isRunning(services, app.bundleID);
    if (running.value_or(true))
        return about(running ? runningSentence() : unknownRunningSentence());
    return PathRemoval::refusal(app.path, request.home, services.guards);
}

} // namespace

QString systemSentence()
{
    return u"{name} came with macOS. Removing it would break parts of the system, so Quillbrook leaves it alone."_s;
}

QString unnamedSentence()
{
    return u"{name} has no identifier, so there is no safe way to tell which leftover files are its. Quillbrook will not guess."_s;
}

QString runningSentence()
{
    return u"{name} is running. Quit it first — uninstalling an app while it is open leaves files behind and can lose unsaved work."_s;
}

QString unknownRunningSentence()
{
    return u"Quillbrook can't tell whether {name} is running, and leaves it alone until it can."_s;
}

QStringList sentences()
{
    return { systemSentence(), unnamedSentence(), runningSentence(), unknownRunningSentence() };
}

std::optional<bool> isRunning(const UninstallerServices &services, const QString &bundleID)
{
    return bundleID.isEmpty() ? std::optional(false) : services.runningApps.isRunning(bundleID);
}

std::vector<Leftover> worthShowing(std::vector<Leftover> found)
{
    std::erase_if(found, [](const Leftover &leftover) {
        const bool tellsByBeingThere
            = leftover.kind == LeftoverKind::preferences || leftover.kind == LeftoverKind::launchItem;
        return leftover.bytes < 1 && !tellsByBeingThere;
    });
    std::ranges::stable_sort(found, std::ranges::greater(), &Leftover::bytes);
    return found;
}

Plan plan(const UninstallerServices &services, const PlanRequest &request)
{
    if (auto blocked = refusal(services, request))
        return { .app = request.app, .blocked = std::move(blocked) };

    Search search(services, request.measure);
    const auto bundleID = request.app.bundleID.toStdString();
    const auto name = request.app.name.toStdString();
    // A key that is no name of an entry would propose the place itself, or one outside of it.
    const bool isIdUsable = FolderNames::isName(bundleID);
    for (const auto &location : LeftoverLocations::locations(request.home, request.library)) {
        const auto &key = location.byName ? name : bundleID;
        if (FolderNames::isName(key))
            search.admitIfThere(location.directory + '/' + key + location.suffix, location);
        if (isIdUsable)
            searchByListing(search, location, bundleID);
    }
    if (isIdUsable)
        searchGroups(search, services, request.home, bundleID);
    return { .app = request.app, .leftovers = worthShowing(search.found()) };
}

} // namespace Quillbrook::Uninstaller
