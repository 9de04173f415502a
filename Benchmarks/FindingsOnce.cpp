// Opens the main window over a home folder as the program does, lets it scan, and tells when findings were on
// the screen. Prints one JSON object: the seconds from START, a reading of the steady clock taken before the
// process began, to the first frame that shows a finding; and those from the scan's full report to the frame
// that shows it on the screen "Free up space". On the "offscreen" platform the main thread paints the window.
//
//     FindingsOnce FOLDER START

#include "Core/AppModel.h"
#include "Core/Background.h"
#include "OfflineServices.h"
#include "Platform/Linux/Session/LinuxMotionPreference.h"
#include "Screens/Window/MainWindowState.h"

#include <QApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QTimer>
#include <QtQml/QQmlExtensionPlugin>

#include <chrono>
#include <cstdio>
#include <optional>

Q_IMPORT_QML_PLUGIN(QuillbrookPlugin)

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

double now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// What happened when; main thread only.
struct Moments
{
    std::optional<double> firstFindingShown{};
    std::optional<double> report{};
    std::optional<double> reportShown{};
};

// To be called before anything else observes the model, so that what the others make of the report counts.
void noteReport(AppModel &model, Moments &moments)
{
    QObject::connect(&model.scans(), &ScanDriver::reportChanged, &model, [&model, &moments] {
        if (model.scans().phase().kind == Phase::Kind::ready)
            moments.report = now();
    });
}

void noteFrames(QQuickWindow &window, AppModel &model, Moments &moments)
{
    QObject::connect(&window, &QQuickWindow::frameSwapped, &model, [&model, &moments] {
        if (!moments.firstFindingShown && !model.scans().scanProgress().findings().isEmpty())
            moments.firstFindingShown = now();
        if (!moments.report || moments.reportShown)
            return;
        moments.reportShown = now();
        QCoreApplication::quit();
    });
}

} // namespace

int main(int count, char **texts)
{
    QApplication application(count, texts);
    const auto arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("FindingsOnce FOLDER START\n", stderr);
        return 2;
    }
    QQuickStyle::setStyle(u"Basic"_s);
    Moments moments;
    Benchmarks::OfflineServices offline(arguments[1]);
    AppModel model(offline.services());
    noteReport(model, moments);
    LinuxMotionPreference motion;
    Background background(model.services());
    MainWindowState screens(model, background, motion);
    QQmlApplicationEngine engine;
    engine.addImportPath(u"qrc:/qt/qml"_s);
    engine.setInitialProperties({ { u"screens"_s, QVariant::fromValue(&screens) } });
    engine.load(QUrl(u"qrc:/qt/qml/Quillbrook/Screens/Window/Main.qml"_s));
    auto *window = engine.rootObjects().isEmpty()
        ? nullptr
        : qobject_cast<QQuickWindow *>(engine.rootObjects().first());
    if (!window)
        return 1;
    noteFrames(*window, model, moments);
    QTimer::singleShot(60s, &model, [] { QCoreApplication::exit(1); });
    const auto code = QApplication::exec();
    if (code != 0 || !moments.firstFindingShown)
        return 1;
    const QJsonObject output{ { "first_finding_seconds",
                                  *moments.firstFindingShown - arguments[2].toDouble() },
        { "painted_seconds", *moments.reportShown - *moments.report },
        { "findings", model.scans().report()->deletable().size() },
        { "files", model.scans().scannedFileCount() } };
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
    return 0;
}
