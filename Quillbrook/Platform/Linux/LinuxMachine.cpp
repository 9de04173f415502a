#include "Catalogue/Linux/LinuxHostKnowledge.h"
#include "Platform/AppServices.h"
#include "Platform/Clock.h"
#include "Platform/Linux/Backups/LinuxBackupProbe.h"
#include "Platform/Linux/Folders/LinuxDataFolder.h"
#include "Platform/Linux/Folders/LinuxHomeFolder.h"
#include "Platform/Linux/Folders/LinuxSettingsFile.h"
#include "Platform/Linux/Folders/LinuxVolumes.h"
#include "Platform/Linux/LinuxDisk.h"
#include "Platform/Linux/Mounts/LinuxDriveChanges.h"
#include "Platform/Linux/Notifications/LinuxNotifier.h"
#include "Platform/Linux/Opening/LinuxFileRevealer.h"
#include "Platform/Linux/Opening/LinuxLinkOpener.h"
#include "Platform/Linux/Photos/LinuxPhotoLibrary.h"
#include "Platform/Linux/Processes/LinuxHostCounters.h"
#include "Platform/Linux/Processes/LinuxLoopbackListeners.h"
#include "Platform/Linux/Processes/LinuxProcessRunner.h"
#include "Platform/Linux/Processes/LinuxProcessors.h"
#include "Platform/Linux/Processes/LinuxRunningApps.h"
#include "Platform/Linux/Processes/LinuxUtilityQueue.h"
#include "Platform/Linux/Processes/OpenFileLimit.h"
#include "Platform/Linux/Sandbox/LinuxFolderGrants.h"
#include "Platform/Linux/Sandbox/LinuxFolderPicker.h"
#include "Platform/Linux/Session/ActivationToken.h"
#include "Platform/Linux/Session/DesktopSession.h"
#include "Platform/Linux/Session/LinuxAppInstance.h"
#include "Platform/Linux/Session/LinuxLoginItem.h"
#include "Platform/Linux/Session/LinuxMotionPreference.h"
#include "Platform/Linux/Session/LinuxQuitSignals.h"
#include "Platform/Linux/Tray/LinuxTrayItem.h"
#include "Platform/LocalModelServers.h"
#include "Platform/Machine.h"
#include "Platform/NetworkHttpClient.h"
#include "Platform/SettingsUserDefaults.h"
#include "Removal/Linux/LinuxGuards.h"
#include "Uninstaller/Linux/LinuxApplications.h"

#include <QCoreApplication>
#include <QFile>
#include <QIcon>
#include <QProcessEnvironment>

#include <optional>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const QProcessEnvironment &environment()
{
    static const auto present = QProcessEnvironment::systemEnvironment();
    return present;
}

/// What this start was given, which the application object takes out of the environment.
LinuxAppInstance::StartTokens &startTokens()
{
    static LinuxAppInstance::StartTokens tokens;
    return tokens;
}

/// Where the program finds itself: the folders that everything else goes by.
struct Places
{
    LinuxHomeFolder home;
    const std::string realHome = home.rawRealHomeDirectory();
    const std::string dataFolder = linuxDataFolder(home);
    const std::string programFolder = dataFolder + "/Quillbrook";
};

// With what Qt has read of the desktop's own settings.
ApplicationPlaces applicationPlaces(const HomeFolder &home)
{
    auto places = ApplicationPlaces::ofThisUser(home, environment());
    places.iconTheme = QFile::encodeName(QIcon::themeName()).toStdString();
    return places;
}

/// The services, in the order in which they need each other.
struct Services
{
    explicit Services(Places &given)
        : places(given)
    {
        // While there is room: on the day the disk is full it is too late.
        disk.reserve.replenish();
    }

    Places &places;
    SystemClock clock;
    LinuxDisk disk{ places.programFolder, TrashPlaces::ofThisUser(places.home), clock };
    const LinuxSettingsFile settingsFile{ places.home };
    SettingsUserDefaults defaults{ settingsFile.path(), &disk.reserve };
    LinuxProcessors processors;
    LinuxHostCounters counters;
    LinuxVolumes volumes;
    LinuxProcessRunner processes;
    LinuxHostKnowledge host{ disk.reading, environment() };
    LinuxBackupProbe backups{
        { .reading = disk.reading, .files = disk.files, .processes = processes, .home = places.realHome }
    };
    const HostGuards guards = LinuxGuards::guards(LinuxGuards::places(places.home, disk.reading));
    LinuxFileRevealer revealer;
    LinuxMotionPreference motion;
    const DesktopSession session = DesktopSession::of(environment(), places.realHome);
    LinuxRunningApps runningApps{ disk.reading,
        session.sandbox.isNone() ? environment().value(u"XDG_RUNTIME_DIR"_s).toStdString() : std::string() };
    LinuxApplications applications{ { .services = { .reading = disk.reading,
                                          .files = disk.files,
                                          .runningApps = runningApps,
                                          .clock = clock,
                                          .guards = &guards,
                                          .processHome = places.home.rawHomeDirectory() },
        .processes = processes,
        .places = applicationPlaces(places.home),
        .isSandboxed = !session.sandbox.isNone() } };
    LinuxNotifier notifier{
        { .processes = processes, .reading = disk.reading, .defaults = defaults, .session = session }
    };
    LinuxLoginItem loginItem{ { .reading = disk.reading,
        .writing = disk.writing,
        .defaults = defaults,
        .session = session,
        .program = LinuxLoginItem::programToStart(environment(), QCoreApplication::applicationFilePath()) } };
    LinuxLinkOpener links;
    LinuxFolderPicker folderPicker{ { .isSandboxed = !session.sandbox.isNone() } };
    LinuxFolderGrants folderGrants{ { .realHome = places.realHome,
        .runtimeFolder = environment().value(u"XDG_RUNTIME_DIR"_s).toStdString() } };
    LinuxDriveChanges driveChanges;
    LinuxPhotoLibrary photos{ { .removal
        = LinuxPhotoLibrary::removalOn(disk, clock, guards, places.realHome, places.dataFolder),
        .defaults = defaults,
        .home = places.home,
        .processes = processes,
        .picker = folderPicker,
        .grants = folderGrants,
        .session = session } };
    NetworkHttpClient http;
    LinuxLoopbackListeners listeners;
    LocalModelServers languageModel{ listeners };
    LinuxTrayItem tray;
    LinuxQuitSignals quitSignals;
    /// Its work uses the others, and ends before they do.
    LinuxUtilityQueue utility;
};

class LinuxMachine final : public Machine
{
public:
    [[nodiscard]] AppInstance &instance() override
    {
        if (!m_instance)
            m_instance.emplace(
                LinuxAppInstance::Options{ .tokens = startTokens(), .lockFolder = places().programFolder });
        return *m_instance;
    }

    [[nodiscard]] AppServices services() override
    {
        auto &all = made();
        return { .kit = { .directories = all.disk.directories,
                     .processors = all.processors,
                     .volumes = all.volumes,
                     .defaults = all.defaults,
                     .home = all.places.home,
                     .counters = all.counters,
                     .files = all.disk.files,
                     .reading = all.disk.reading,
                     .processes = all.processes,
                     .runningApps = all.runningApps,
                     .spaceHolders = all.disk.spaceHolders,
                     .clock = all.clock,
                     .host = all.host,
                     .trash = all.disk.trash,
                     .removal = all.disk.removal,
                     .writing = all.disk.writing,
                     .relocation = all.disk.relocation,
                     .drives = all.disk.drives,
                     .speeds = all.disk.speeds,
                     .backups = all.backups,
                     .http = all.http,
                     .utility = all.utility,
                     .guards = all.guards,
                     .applications = all.applications,
                     .dataFolder = all.places.dataFolder },
            .revealer = all.revealer,
            .notifier = all.notifier,
            .loginItem = all.loginItem,
            .links = all.links,
            .folderPicker = all.folderPicker,
            .folderGrants = all.folderGrants,
            .driveChanges = all.driveChanges,
            .languageModel = all.languageModel,
            .photos = all.photos };
    }

    [[nodiscard]] MotionPreference &motion() override { return made().motion; }
    [[nodiscard]] TrayItem &tray() override { return made().tray; }
    [[nodiscard]] QuitRequests &quitRequests() override { return made().quitSignals; }

private:
    [[nodiscard]] Places &places() { return m_places ? *m_places : m_places.emplace(); }
    [[nodiscard]] Services &made() { return m_services ? *m_services : m_services.emplace(places()); }

    std::optional<Places> m_places;
    std::optional<LinuxAppInstance> m_instance;
    std::optional<Services> m_services;
};

} // namespace

void Machine::prepareProcess()
{
    raiseOpenFileLimit();
    ActivationToken::reserve();
    startTokens() = LinuxAppInstance::StartTokens::ofEnvironment();
}

std::unique_ptr<Machine> Machine::ofThisSystem()
{
    return std::make_unique<LinuxMachine>();
}

} // namespace Quillbrook
