#include "Core/AppModel.h"
#include "Core/Background.h"
#include "Platform/Clock.h"
#include "Platform/Linux/LinuxBackupProbe.h"
#include "Platform/Linux/LinuxDataFolder.h"
#include "Platform/Linux/LinuxDirectoryReading.h"
#include "Platform/Linux/LinuxFileFacts.h"
#include "Platform/Linux/LinuxFileReading.h"
#include "Platform/Linux/LinuxFileRemoval.h"
#include "Platform/Linux/LinuxFileRevealer.h"
#include "Platform/Linux/LinuxFileWriting.h"
#include "Platform/Linux/LinuxGuards.h"
#include "Platform/Linux/LinuxHomeFolder.h"
#include "Platform/Linux/LinuxHostKnowledge.h"
#include "Platform/Linux/LinuxMotionPreference.h"
#include "Platform/Linux/LinuxProcessRunner.h"
#include "Platform/Linux/LinuxProcessors.h"
#include "Platform/Linux/LinuxSpaceReserve.h"
#include "Platform/Linux/LinuxTrash.h"
#include "Platform/Linux/LinuxVolumes.h"
#include "Platform/SettingsUserDefaults.h"
#include "Screens/MainWindowState.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QQmlApplicationEngine>
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
                     .guards = guards,
                     .dataFolder = dataFolder },
            .revealer = revealer };
    }
};

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Quillbrook"));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.tarnwick.Quillbrook"));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/com.tarnwick.Quillbrook-256.png")));
    // As long as nothing but the window leads back into the program, closing it ends the program.
    QGuiApplication::setQuitOnLastWindowClosed(true);
    QQuickStyle::setStyle(QStringLiteral("Basic"));

    Machine machine;
    // While there is room: on the day the disk is full it is too late.
    machine.reserve.replenish();
    AppModel model(machine.services());
    Background background(model.services());
    MainWindowState screens(model, background, machine.motion);

    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.setInitialProperties({ { QStringLiteral("screens"), QVariant::fromValue(&screens) } });
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Quillbrook/Screens/Main.qml")));
    return engine.rootObjects().isEmpty() ? 1 : QApplication::exec();
}
