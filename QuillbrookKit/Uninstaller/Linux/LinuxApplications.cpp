#include "Uninstaller/Linux/LinuxApplications.h"

#include "Platform/FileFacts.h"
#include "Platform/Linux/Processes/RunningPrograms.h"
#include "Platform/ProcessRunner.h"
#include "Platform/RunningApps.h"
#include "Removal/HostGuards.h"
#include "Removal/PathRemoval.h"
#include "Uninstaller/FolderNames.h"
#include "Uninstaller/Linux/DesktopEntry.h"
#include "Uninstaller/Linux/FlatpakInstallation.h"
#include "Uninstaller/Linux/LinuxLeftovers.h"
#include "Uninstaller/Linux/LinuxListing.h"
#include "Uninstaller/Linux/LinuxOrphans.h"
#include "Uninstaller/Uninstaller.h"

#include <algorithm>
#include <set>
#include <unistd.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;
using LinuxLeftovers::Claim;

namespace {

constexpr std::chrono::minutes longestUninstall{ 10 };
// It is nearly always done sooner, and what it has begun is best ended by itself.
constexpr std::chrono::seconds uninstallAfterStop{ 20 };
constexpr qsizetype longestError = 300;

const auto selfSentence = u"That is Quillbrook itself."_s;
const auto packageSentence
    = u"{name} belongs to the system's packages. Removing it needs an administrator, so Quillbrook leaves it to the software centre."_s;
const auto flatpakSentence
    = u"{name} is installed for everyone on this computer. Removing it needs an administrator, so Quillbrook leaves it to the software centre."_s;
const auto snapSentence
    = u"{name} is a snap. Removing it needs an administrator, so Quillbrook leaves it to the software centre."_s;
const auto systemEntrySentence
    = u"{name} was put into the system's own folders. Removing it needs an administrator, so Quillbrook leaves it alone."_s;

QString administratorSentence(AppOrigin origin)
{
    switch (origin) {
    case AppOrigin::flatpakOfSystem:
        return flatpakSentence;
    case AppOrigin::snap:
        return snapSentence;
    case AppOrigin::package:
        return packageSentence;
    default:
        return systemEntrySentence;
    }
}

// The paths of a claim that are there.
std::vector<std::string> entriesOf(const Claim &claim, const FileFacts &files)
{
    if (!claim.isStart) {
        const auto path = claim.directory + '/' + claim.name;
        return files.kind(path) ? std::vector{ path } : std::vector<std::string>();
    }
    std::vector<std::string> paths;
    for (const auto &name : FolderNames::in(claim.directory))
        if (claim.covers(claim.directory, name))
            paths.push_back(claim.directory + '/' + name);
    return paths;
}

// What the others would claim, to be asked of one path.
class Others
{
public:
    Others(const std::vector<LinuxLeftovers::Location> &table, const InstalledApp &app,
        const std::vector<InstalledApp> &all)
    {
        for (const auto &other : all) {
            if (other.key() == app.key())
                continue;
            for (const auto &claim : LinuxLeftovers::claims(table, other)) {
                if (claim.isStart)
                    m_starts.push_back(claim);
                else
                    m_paths.insert(claim.directory + '/' + claim.name);
            }
            m_paths.insert(other.goes.begin(), other.goes.end());
            m_paths.insert(other.programs.begin(), other.programs.end());
        }
        // A program that stays is not taken with the folder it lies in.
        m_paths.insert(app.programs.begin(), app.programs.end());
    }

    [[nodiscard]] bool claim(const std::string &path) const
    {
        const auto slash = path.rfind('/');
        const auto below = m_paths.lower_bound(path + '/');
        const bool holdsOne = below != m_paths.end() && below->starts_with(path + '/');
        return m_paths.contains(path) || holdsOne || std::ranges::any_of(m_starts, [&](const Claim &start) {
            return start.covers(path.substr(0, slash), path.substr(slash + 1));
        });
    }

private:
    std::set<std::string> m_paths;
    std::vector<Claim> m_starts;
};

} // namespace

LinuxApplications::LinuxApplications(Options options)
    : m_options(std::move(options))
{
}

HostListing LinuxApplications::listing() const
{
    return linuxListing(m_options.services, m_options.processes, m_options.places);
}

qint64 LinuxApplications::bytes(const InstalledApp &app, const Measure &measure) const
{
    if (app.isMeasured)
        return app.app.bytes;
    if (app.goes.empty())
        return measure(app.app.path);
    qint64 total = 0;
    for (const auto &path : app.goes)
        total += measure(path);
    return total;
}

std::optional<bool> LinuxApplications::isRunning(const InstalledApp &app) const
{
    if (m_options.isSandboxed)
        return std::nullopt;
    const auto running = RunningPrograms::read(m_options.processFolder);
    if (!running)
        return std::nullopt;
    const auto &id = app.app.bundleID;
    const auto runs = [&](const std::string &file) { return running->files.contains(file); };
    if (running->ids.contains(id) || std::ranges::any_of(app.programs, runs)
        || RunningPrograms::busNames().contains(id))
        return true;
    if (app.origin == AppOrigin::flatpakOfUser || app.origin == AppOrigin::flatpakOfSystem)
        return m_options.services.runningApps.isRunning(id);
    return false;
}

std::optional<QString> LinuxApplications::refusal(
    const InstalledApp &app, const UninstallerServices &services) const
{
    const auto about = [&](const QString &sentence) {
        return services.worded(sentence).replace(u"{name}"_s, app.app.name);
    };
    if (app.isSelf)
        return about(selfSentence);
    if (app.app.isSystem)
        return about(Uninstaller::systemSentence());
    if (app.needsAdministrator())
        return about(administratorSentence(app.origin));
    if (app.app.bundleID.isEmpty())
        return about(Uninstaller::unnamedSentence());
    const auto running = isRunning(app);
    if (running.value_or(true))
        return about(running ? Uninstaller::runningSentence() : Uninstaller::unknownRunningSentence());
    for (const auto &path : app.goes)
        if (auto sentence = PathRemoval::refusal(path, m_options.places.home, services.guards))
            return sentence;
    return std::nullopt;
}

Plan LinuxApplications::plan(const HostPlanRequest &request) const
{
    const auto &app = request.app;
    auto services = m_options.services;
    HostGuards worded;
    if (services.guards != nullptr && request.wording) {
        worded = *services.guards;
        worded.wording = request.wording;
        services.guards = &worded;
    }
    services.wording = request.wording;
    if (auto blocked = refusal(app, services))
        return { .app = app.app, .blocked = std::move(blocked) };
    if (app.hidesAnother)
        return { .app = app.app };
    const auto table = LinuxLeftovers::locations(m_options.places);
    const Others taken(table, app, request.all);
    std::vector<Leftover> found;
    std::set<std::string> seen(app.goes.begin(), app.goes.end());
    for (const auto &claim : LinuxLeftovers::claims(table, app)) {
        if (app.isProgramElsewhere && !claim.isByLongId)
            continue;
        for (const auto &path : entriesOf(claim, services.files)) {
            if (!seen.insert(path).second || taken.claim(path))
                continue;
            const bool isRefused
                = PathRemoval::refusal(path, services.processHome, services.guards).has_value();
            if (isRefused && !claim.needsAdministrator)
                continue;
            found.push_back({ .path = path,
                .kind = claim.kind,
                .bytes = request.measure(path),
                .needsAdministrator = claim.needsAdministrator });
        }
    }
    return { .app = app.app, .leftovers = Uninstaller::worthShowing(std::move(found)) };
}

std::vector<FoundOrphan> LinuxApplications::orphans(
    const HostListing &listing, const Measure &measure, qint64 staleDays) const
{
    return LinuxOrphans::find(m_options.services, m_options.places, listing.owners, measure, staleDays);
}

qint64 LinuxApplications::runtimeBytes(const InstalledApp &app, const Measure &measure) const
{
    qint64 total = 0;
    for (const auto &runtime : app.runtimes)
        total += measure(FlatpakInstallation::folderOf(m_options.places.userFlatpak, runtime));
    return total;
}

std::optional<QString> LinuxApplications::obstacle(const InstalledApp &app) const
{
    if (app.origin != AppOrigin::flatpakOfUser)
        return std::nullopt;
    const auto &places = m_options.places;
    const auto about
        = [&](const QString &sentence) { return QString(sentence).replace(u"{name}"_s, app.app.name); };
    if (places.flatpak.empty() || ::access(places.flatpak.c_str(), X_OK) != 0)
        return about(u"{name} can't be uninstalled: Flatpak's own program is not there."_s);
    if (app.refs.isEmpty() || !std::ranges::all_of(app.refs, FlatpakInstallation::isRef))
        return about(u"{name} can't be uninstalled: Flatpak does not know it."_s);
    for (const auto &ref : app.refs)
        if (::access(FlatpakInstallation::folderOf(places.userFlatpak, ref).c_str(), F_OK) != 0)
            return about(u"{name} is not there any more."_s);
    for (const auto &folder : { app.app.path, places.userFlatpak + "/app", places.userFlatpak })
        if (::access(folder.c_str(), W_OK) != 0)
            return about(u"{name} can't be uninstalled: its folder can't be written to."_s);
    return std::nullopt;
}

std::expected<void, QString> LinuxApplications::takeAway(
    const InstalledApp &app, const std::stop_token &stop) const
{
    if (auto obstacle = this->obstacle(app))
        return std::unexpected(*obstacle);
    for (const auto &ref : app.refs) {
        const auto result
            = m_options.processes.run({ .program = QString::fromStdString(m_options.places.flatpak),
                .arguments = { u"uninstall"_s, u"--user"_s, u"--noninteractive"_s, ref },
                .timeLimit = longestUninstall,
                .keepsErrors = true,
                .stop = stop,
                .afterStop = uninstallAfterStop });
        if (result && result->exited && result->exitCode == 0)
            continue;
        const auto told
            = result ? plainLine(QString::fromUtf8(result->errors)).left(longestError) : QString();
        const auto why = !told.isEmpty() ? told
            : result && !result->exited  ? u"Flatpak did not come to an end."_s
                                         : u"Flatpak could not be started or failed."_s;
        return std::unexpected(u"%1 could not be uninstalled: %2"_s.arg(app.app.name, why));
    }
    return {};
}

QStringList LinuxApplications::blockedSentences()
{
    return { selfSentence, packageSentence, flatpakSentence, snapSentence, systemEntrySentence };
}

} // namespace Quillbrook
