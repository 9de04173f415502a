#include "Core/AppModel.h"
#include "Platform/Linux/LinuxDirectoryReading.h"
#include "Platform/Linux/LinuxFileRevealer.h"
#include "Platform/Linux/LinuxHomeFolder.h"
#include "Platform/Linux/LinuxProcessors.h"
#include "Platform/Linux/LinuxVolumes.h"
#include "Platform/SettingsUserDefaults.h"

#include <QApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QtQml/QQmlExtensionPlugin>

Q_IMPORT_QML_PLUGIN(QuillbrookPlugin)

using namespace Quillbrook;

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QQuickStyle::setStyle(QStringLiteral("Basic"));

    LinuxDirectoryReading directories;
    LinuxProcessors processors;
    LinuxVolumes volumes;
    SettingsUserDefaults defaults;
    LinuxHomeFolder home;
    LinuxFileRevealer revealer;
    AppModel model({
        .kit = { .directories = directories,
            .processors = processors,
            .volumes = volumes,
            .defaults = defaults,
            .home = home },
        .revealer = revealer,
    });

    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Quillbrook/Screens/Main.qml")));
    return engine.rootObjects().isEmpty() ? 1 : QApplication::exec();
}
