// Opens the main window over a home folder as the program does, and asks a model once, by the program's own
// client from a server on the loopback address. Prints one JSON object: the seconds from the window's opening
// until it was known that a model answers, and the longest time the main thread stood still while the answer
// was awaited and shown. On the "offscreen" platform the main thread paints the window.
//
//     AnswerOnce FOLDER PORT

#include "Core/AppModel.h"
#include "Core/Background.h"
#include "OfflineServices.h"
#include "Platform/Linux/Processes/LinuxLoopbackListeners.h"
#include "Platform/Linux/Session/LinuxMotionPreference.h"
#include "Platform/LocalModelServers.h"
#include "Screens/Window/MainWindowState.h"
#include "StallMonitor.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QTimer>
#include <QtQml/QQmlExtensionPlugin>

#include <chrono>
#include <cstdio>

Q_IMPORT_QML_PLUGIN(QuillbrookPlugin)

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Long enough for what follows an answer to be painted.
constexpr auto afterwards = 500ms;

double seconds(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e9;
}

} // namespace

int main(int count, char **texts)
{
    QApplication application(count, texts);
    const auto arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("AnswerOnce FOLDER PORT\n", stderr);
        return 2;
    }
    QQuickStyle::setStyle(u"Basic"_s);
    const LinuxLoopbackListeners listeners;
    LocalModelServers servers(listeners, { { LocalModelServers::Kind::ollama, arguments[2].toUShort() } });
    Benchmarks::OfflineServices offline(arguments[1]);
    const auto given = offline.services();
    const AppServices services{ .kit = given.kit,
        .revealer = given.revealer,
        .notifier = given.notifier,
        .loginItem = given.loginItem,
        .links = given.links,
        .folderPicker = given.folderPicker,
        .folderGrants = given.folderGrants,
        .driveChanges = given.driveChanges,
        .languageModel = servers,
        .photos = given.photos };
    AppModel model(services);
    LinuxMotionPreference motion;
    Background background(model.services());
    MainWindowState screens(model, background, motion);
    screens.content()->setPane(Pane::advisor);
    auto &advisor = screens.advisor();

    QElapsedTimer sinceOpening;
    double known = -1;
    QObject::connect(&advisor, &Advisor::availabilityChanged, &advisor, [&] {
        if (known < 0 && advisor.isAvailable())
            known = seconds(sinceOpening);
    });
    Benchmarks::StallMonitor stalls;
    QObject::connect(&model.scans(), &ScanDriver::finished, &advisor, [&] {
        QTimer::singleShot(afterwards, &advisor, [&] {
            stalls.start();
            advisor.ask(u"What is large?"_s);
        });
    });
    QObject::connect(&advisor, &Advisor::thinkingChanged, &advisor, [&] {
        if (!advisor.thinking())
            QTimer::singleShot(afterwards, &advisor, &QCoreApplication::quit);
    });
    QQmlApplicationEngine engine;
    engine.addImportPath(u"qrc:/qt/qml"_s);
    engine.setInitialProperties({ { u"screens"_s, QVariant::fromValue(&screens) } });
    sinceOpening.start();
    engine.load(QUrl(u"qrc:/qt/qml/Quillbrook/Screens/Window/Main.qml"_s));
    QTimer::singleShot(60s, &model, [] { QCoreApplication::exit(1); });
    if (engine.rootObjects().isEmpty() || QApplication::exec() != 0 || known < 0)
        return 1;
    stalls.stop();
    const QJsonObject output{ { "known_seconds", known }, { "stall_seconds", stalls.longestWait() },
        { "busy_seconds", stalls.longestBusy() }, { "messages", advisor.messages().size() },
        { "items", advisor.proposal() ? advisor.proposal()->items.size() : 0 } };
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
    return 0;
}
