// Scans a folder twice with the application's model and no window, watches the main thread meanwhile, and
// then times questions about the tree. Prints one JSON object.
//
//     ModelOnce FOLDER RARE-WORD COMMON-WORD

#include "Core/AppModel.h"
#include "OfflineServices.h"
#include "WatchedScans.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>
#include <cstdio>

namespace {

using namespace Quillbrook;

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
    Benchmarks::WatchedScans scans(model, { Pane::map, Pane::map });
    const auto code = scans.run();
    if (code != 0)
        return code;
    auto output = scans.figures();
    output["files"] = model.scans().scannedFileCount();
    output["largest"] = timed([&] { return model.navigation().largestFiles(largestShown); });
    output["rare"] = timed([&] { return model.navigation().search(arguments[2], foundShown); });
    output["common"] = timed([&] { return model.navigation().search(arguments[3], foundShown); });
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
    return 0;
}
