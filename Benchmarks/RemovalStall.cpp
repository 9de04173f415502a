// Deletes what is in a folder for good with the application's model and the state of its window, watches the
// main thread meanwhile, and prints one JSON object.
//
//     RemovalStall HOME FOLDER    FOLDER lies in HOME; everything of the program goes beside HOME

#include "Core/AppModel.h"
#include "OfflineServices.h"
#include "Screens/Warden/WardenState.h"
#include "StallMonitor.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

int main(int count, char **texts)
{
    QCoreApplication application(count, texts);
    const auto arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("RemovalStall HOME FOLDER\n", stderr);
        return 2;
    }
    Benchmarks::OfflineServices offline(arguments[1]);
    AppModel model(offline.services());
    const WardenState screen(model);
    Benchmarks::StallMonitor monitor;
    monitor.start();
    model.reclaims().reclaim({ { .id = u"folder"_s,
                                 .rule = { .id = u"folder"_s, .title = u"Folder"_s, .safety = Safety::safe },
                                 .path = arguments[2],
                                 .rawPath = arguments[2].toStdString(),
                                 .bytes = 1 } },
        true);
    QObject::connect(&model.removals(), &RemovalQueue::busyChanged, &application, [&] {
        monitor.stop();
        QCoreApplication::exit(model.reclaims().reclaimLog().value(0).startsWith(u"✓"_s) ? 0 : 1);
    });
    if (const auto code = QCoreApplication::exec(); code != 0) {
        std::fputs(qPrintable(model.reclaims().reclaimLog().value(0)), stderr);
        return code;
    }
    const QJsonObject output{ { "longest_wait", monitor.longestWait() },
        { "longest_busy", monitor.longestBusy() } };
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
    return 0;
}
