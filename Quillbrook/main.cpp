#include "AppDelegate.h"
#include "Automation/UpdateCheck.h"
#include "Catalogue/Linux/LinuxHostKnowledge.h"
#include "Core/AppModel.h"
#include "Core/Background.h"
#include "Platform/Clock.h"
#include "Platform/Linux/Backups/LinuxBackupProbe.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Platform/Linux/Files/LinuxSpaceReserve.h"
#include "Platform/Linux/Folders/LinuxDataFolder.h"
#include "Platform/Linux/Folders/LinuxDirectoryReading.h"
#include "Platform/Linux/Folders/LinuxHomeFolder.h"
#include "Platform/Linux/Folders/LinuxVolumes.h"
#include "Platform/Linux/Notifications/LinuxNotifier.h"
#include "Platform/Linux/Opening/LinuxFileRevealer.h"
#include "Platform/Linux/Opening/LinuxLinkOpener.h"
#include "Platform/Linux/Processes/LinuxProcessRunner.h"
#include "Platform/Linux/Processes/LinuxProcessors.h"
#include "Platform/Linux/Processes/LinuxUtilityQueue.h"
#include "Platform/Linux/Sandbox/LinuxFolderGrants.h"
#include "Platform/Linux/Sandbox/LinuxFolderPicker.h"
#include "Platform/Linux/Session/DesktopSession.h"
#include "Platform/Linux/Session/LinuxAppInstance.h"
#include "Platform/Linux/Session/LinuxLoginItem.h"
#include "Platform/Linux/Session/LinuxMotionPreference.h"
#include "Platform/Linux/Session/LinuxQuitSignals.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Platform/Linux/Trash/LinuxTrash.h"
#include "Platform/Linux/Tray/LinuxTrayItem.h"
#include "Platform/NetworkHttpClient.h"
#include "Platform/SettingsUserDefaults.h"
#include "Removal/Linux/LinuxGuards.h"
#include "Screens/Panel/MenuBarPanelState.h"
#include "Screens/Window/MainWindowState.h"

#include <QApplication>
#include <QIcon>
#include <QProcess>
#include <QQmlEngine>
#include <QQuickStyle>
#include <QtQml/QQmlExtensionPlugin>

Q_IMPORT_QML_PLUGIN(QuillbrookPlugin)

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

/// The machine's own services, in the order in which they need each other.
struct Machine
{
    LinuxDirectoryReading directories;
    LinuxProcessors processors;
    LinuxVolumes volumes;
    SettingsUserDefaults defaults;
    LinuxHomeFolder home;
    LinuxFileFacts files;
    LinuxFileReading reading;
    LinuxProcessRunner processes;
    SystemClock clock;
    LinuxHostKnowledge host{ reading };
    const std::string dataFolder = linuxDataFolder(home);
    LinuxSpaceReserve reserve{ dataFolder + "/Quillbrook/reserve" };
    LinuxTrash trash{ TrashPlaces::ofThisUser(home), reserve, clock };
    LinuxFileRemoval removal;
    LinuxFileWriting writing{ &reserve };
    LinuxBackupProbe backups{
        { .reading = reading, .files = files, .processes = processes, .home = home.rawRealHomeDirectory() }
    };
    const HostGuards guards = LinuxGuards::guards(LinuxGuards::surroundings(home, reading));
    LinuxFileRevealer revealer;
    LinuxMotionPreference motion;
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const DesktopSession session = DesktopSession::of(environment, home.realHomeDirectory());
    LinuxNotifier notifier{ { .processes = processes,
        .reading = reading,
        .defaults = defaults,
        .session = session,
        .start = [](const QString &program, const QStringList &arguments) {
            QProcess::startDetached(program, arguments);
        } } };
    LinuxLoginItem loginItem{ { .reading = reading,
        .writing = writing,
        .defaults = defaults,
        .session = session,
        .program = LinuxLoginItem::programToStart(environment, QCoreApplication::applicationFilePath()) } };
    LinuxLinkOpener links;
    LinuxFolderPicker folderPicker{ { .isSandboxed = !session.sandbox.isNone() } };
    LinuxFolderGrants folderGrants{ { .realHome = home.rawRealHomeDirectory(),
        .runtimeFolder = environment.value(u"XDG_RUNTIME_DIR"_s).toStdString() } };
    NetworkHttpClient http;
    /// Its work uses the others, and ends before they do.
    LinuxUtilityQueue utility;

    [[nodiscard]] AppServices services()
    {
        return { .kit = { .directories = directories,
                     .processors = processors,
                     .volumes = volumes,
                     .defaults = defaults,
                     .home = home,
                     .files = files,
                     .reading = reading,
                     .processes = processes,
                     .clock = clock,
                     .host = host,
                     .trash = trash,
                     .removal = removal,
                     .writing = writing,
                     .backups = backups,
                     .http = http,
                     .utility = utility,
                     .guards = guards,
                     .dataFolder = dataFolder },
            .revealer = revealer,
            .notifier = notifier,
            .loginItem = loginItem,
            .links = links,
            .folderPicker = folderPicker,
            .folderGrants = folderGrants,
            .version = QStringLiteral(QUILLBROOK_VERSION),
            .updateFeed = UpdateCheck::feed() };
    }
};

AppDelegate::Windows windows(MainWindowState &screens, MenuBarPanelState &panel)
{
    return { .main = QUrl(u"qrc:/qt/qml/Quillbrook/Screens/Window/Main.qml"_s),
        .mainProperties = { { u"screens"_s, QVariant::fromValue(&screens) } },
        .panel = QUrl(u"qrc:/qt/qml/Quillbrook/Screens/Panel/MenuBarPanel.qml"_s),
        .panelProperties = { { u"panel"_s, QVariant::fromValue(&panel) } } };
}

} // namespace

int main(int argc, char **argv)
{
    const auto tokens = LinuxAppInstance::StartTokens::ofEnvironment();
    QApplication application(argc, argv);
    QGuiApplication::setApplicationDisplayName(u"Quillbrook"_s);
    QGuiApplication::setDesktopFileName(u"com.tarnwick.Quillbrook"_s);
    QGuiApplication::setWindowIcon(QIcon(u":/icons/com.tarnwick.Quillbrook-256.png"_s));
    QQuickStyle::setStyle(u"Basic"_s);

    // Before anything that writes: the stores have one writer.
    LinuxAppInstance instance({ .tokens = tokens });
    if (!instance.claim())
        return 0;

    Machine machine;
    // While there is room: on the day the disk is full it is too late.
    machine.reserve.replenish();
    AppModel model(machine.services());
    Background background(model.services());
    MainWindowState screens(model, background, machine.motion);
    MenuBarPanelState panel(model, background, screens.access());
    LinuxTrayItem tray;

    QQmlEngine engine;
    engine.addImportPath(u"qrc:/qt/qml"_s);
    AppDelegate delegate(
        { .model = model, .background = background, .tray = tray, .instance = instance, .engine = engine },
        windows(screens, panel));
    QObject::connect(&panel, &MenuBarPanelState::openRequested, &delegate,
        [&] { delegate.openWindow(tray.takeActivationToken()); });
    QObject::connect(&panel, &MenuBarPanelState::quitRequested, &delegate, &AppDelegate::quit);
    const LinuxQuitSignals quitSignals;
    QObject::connect(&quitSignals, &LinuxQuitSignals::asked, &delegate, &AppDelegate::quit);
    const bool hasStarted = delegate.start(AppDelegate::startsInBackground(QApplication::arguments()));
    return hasStarted ? QApplication::exec() : 1;
}
