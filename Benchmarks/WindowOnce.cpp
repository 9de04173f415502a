// Scans a folder with the whole main window open, once with each of the panes that show a tree and once again
// with the first, and watches the main thread meanwhile. Prints one JSON object. On the "offscreen" platform
// the main thread also paints the window.
//
//     WindowOnce FOLDER

#include "Core/AppModel.h"
#include "Core/Background.h"
#include "OfflineServices.h"
#include "Platform/Linux/Session/LinuxMotionPreference.h"
#include "Screens/Window/MainWindowState.h"
#include "WatchedScans.h"

#include <QApplication>
#include <QJsonDocument>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QtQml/QQmlExtensionPlugin>

#include <cstdio>

Q_IMPORT_QML_PLUGIN(QuillbrookPlugin)

using namespace Quillbrook;
using namespace Qt::StringLiterals;

int main(int count, char **texts)
{
    QApplication application(count, texts);
    const auto arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        std::fputs("WindowOnce FOLDER\n", stderr);
        return 2;
    }
    QQuickStyle::setStyle(u"Basic"_s);
    Benchmarks::OfflineServices offline(arguments[1]);
    AppModel model(offline.services());
    LinuxMotionPreference motion;
    Background background(model.services());
    MainWindowState screens(model, background, motion);
    QQmlApplicationEngine engine;
    engine.addImportPath(u"qrc:/qt/qml"_s);
    engine.setInitialProperties({ { u"screens"_s, QVariant::fromValue(&screens) } });
    engine.load(QUrl(u"qrc:/qt/qml/Quillbrook/Screens/Window/Main.qml"_s));
    if (engine.rootObjects().isEmpty())
        return 1;
    Benchmarks::WatchedScans scans(model, { Pane::map, Pane::largest, Pane::search, Pane::map });
    const auto code = scans.run();
    if (code != 0)
        return code;
    auto output = scans.figures();
    output["files"] = model.scans().scannedFileCount();
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
    return 0;
}
