#include "AppDelegate.h"
#include "Automation/UpdateCheck.h"
#include "Core/AppModel.h"
#include "Core/Background.h"
#include "Platform/Clock.h"
#include "Platform/Linux/DesktopSession.h"
#include "Platform/Linux/LinuxAppInstance.h"
#include "Platform/Linux/LinuxBackupProbe.h"
#include "Platform/Linux/LinuxDataFolder.h"
#include "Platform/Linux/LinuxDirectoryReading.h"
#include "Platform/Linux/LinuxFileFacts.h"
#include "Platform/Linux/LinuxFileReading.h"
#include "Platform/Linux/LinuxFileRemoval.h"
#include "Platform/Linux/LinuxFileRevealer.h"
#include "Platform/Linux/LinuxFileWriting.h"
#include "Platform/Linux/LinuxFolderGrants.h"
#include "Platform/Linux/LinuxFolderPicker.h"
#include "Platform/Linux/LinuxGuards.h"
#include "Platform/Linux/LinuxHomeFolder.h"
#include "Platform/Linux/LinuxHostKnowledge.h"
#include "Platform/Linux/LinuxLinkOpener.h"
#include "Platform/Linux/LinuxLoginItem.h"
#include "Platform/Linux/LinuxMotionPreference.h"
#include "Platform/Linux/LinuxNotifier.h"
#include "Platform/Linux/LinuxProcessRunner.h"
#include "Platform/Linux/LinuxProcessors.h"
#include "Platform/Linux/LinuxQuitSignals.h"
#include "Platform/Linux/LinuxSpaceReserve.h"
#include "Platform/Linux/LinuxTrash.h"
#include "Platform/Linux/LinuxTrayItem.h"
#include "Platform/Linux/LinuxUtilityQueue.h"
#include "Platform/Linux/LinuxVolumes.h"
#include "Platform/NetworkHttpClient.h"
#include "Platform/SettingsUserDefaults.h"
#include "Screens/MainWindowState.h"
#include "Screens/MenuBarPanelState.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QProcess>
#include <QQmlEngine>
#include <QQuickStyle>
#include <QtQml/QQmlExtensionPlugin>

Q_IMPORT_QML_PLUGIN(QuillbrookPlugin)

using namespace Quillbrook;

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
    LinuxBackupProbe backups{ { .reading = reading,
        .files = files,
        .processes = processes,
        .home = QFile::encodeName(home.realHomeDirectory()).toStdString() } };
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
    LinuxFolderGrants folderGrants{ { .realHome = QFile::encodeName(home.realHomeDirectory()).toStdString(),
        .runtimeFolder = environment.value(QStringLiteral("XDG_RUNTIME_DIR")).toStdString() } };
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
    return { .main = QUrl(QStringLiteral("qrc:/qt/qml/Quillbrook/Screens/Main.qml")),
        .mainProperties = { { QStringLiteral("screens"), QVariant::fromValue(&screens) } },
        .panel = QUrl(QStringLiteral("qrc:/qt/qml/Quillbrook/Screens/MenuBarPanel.qml")),
        .panelProperties = { { QStringLiteral("panel"), QVariant::fromValue(&panel) } } };
}

} // namespace

int main(int argc, char **argv)
{
    const auto tokens = LinuxAppInstance::StartTokens::ofEnvironment();
    QApplication application(argc, argv);
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Quillbrook"));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.tarnwick.Quillbrook"));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/com.tarnwick.Quillbrook-256.png")));
    QQuickStyle::setStyle(QStringLiteral("Basic"));

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
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
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
