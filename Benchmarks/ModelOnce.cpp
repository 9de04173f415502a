// Scans a folder twice with the application's model, the second time as a rescan that drops the first tree,
// watches how long the main thread stands still meanwhile, then times questions about the tree. Prints one
// JSON object.
//
//     ModelOnce FOLDER RARE-WORD COMMON-WORD

#include "Core/AppModel.h"
#include "OfflineServices.h"
#include "StallMonitor.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>
#include <cstdio>

namespace {

using namespace Quillbrook;
using namespace std::chrono_literals;

constexpr auto longestRun = 120s;
constexpr int scans = 2;
constexpr int timesAsked = 9;

// As the screens ask.
constexpr qsizetype largestShown = 200;
constexpr qsizetype foundShown = 300;

QJsonObject timed(auto &&ask)
{
    QJsonArray seconds;
    qsizetype found = 0;
    for (int i = 0; i < timesAsked; ++i) {
        const auto start = std::chrono::steady_clock::now();
        found = ask().size();
        seconds.append(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return { { "seconds", seconds }, { "found", found } };
}

void report(const AppModel &model, const Benchmarks::StallMonitor &monitor, const QStringList &arguments)
{
    const QJsonObject output{ { "files", model.scannedFileCount() },
        { "longest_wait", monitor.longestWait() }, { "longest_busy", monitor.longestBusy() },
        { "beats", monitor.beats() }, { "largest", timed([&] { return model.largestFiles(largestShown); }) },
        { "rare", timed([&] { return model.search(arguments[2], foundShown); }) },
        { "common", timed([&] { return model.search(arguments[3], foundShown); }) } };
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
}

} // namespace

int main(int count, char **texts)
{
    QCoreApplication application(count, texts);
    const auto arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        std::fputs("ModelOnce FOLDER RARE-WORD COMMON-WORD\n", stderr);
        return 2;
    }
    Benchmarks::OfflineServices offline(arguments[1]);
    AppModel model(offline.services());
    Benchmarks::StallMonitor monitor;
    int ended = 0;
    QObject::connect(&model, &AppModel::phaseChanged, &model, [&] {
        if (model.phase().kind != Phase::Kind::ready)
            return;
        // From the loop, so that the monitor also sees what the end of a scan sets off.
        QTimer::singleShot(100ms, &model, [&] {
            if (++ended < scans)
                return model.scan({});
            monitor.stop();
            QCoreApplication::exit(0);
        });
    });
    QTimer::singleShot(longestRun, &model, [] { QCoreApplication::exit(1); });
    QTimer::singleShot(0, &model, [&] {
        monitor.start();
        model.scan({ .scope = Scope::complete });
    });
    const auto code = QCoreApplication::exec();
    if (code == 0)
        report(model, monitor, arguments);
    return code;
}
