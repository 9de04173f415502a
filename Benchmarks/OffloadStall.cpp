// Moves a folder to another volume with the application's model and no window, watches the main thread
// meanwhile, and prints one JSON object.
//
//     OffloadStall HOME FOLDER VOLUME BYTES    FOLDER lies in HOME; everything of the program goes beside
//     HOME

#include "Core/AppModel.h"
#include "OfflineServices.h"
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
    if (arguments.size() != 5) {
        std::fputs("OffloadStall HOME FOLDER VOLUME BYTES\n", stderr);
        return 2;
    }
    Benchmarks::OfflineServices offline(arguments[1]);
    AppModel model(offline.services());
    auto &driver = model.offloads();
    Benchmarks::StallMonitor monitor;
    QObject::connect(&driver, &OffloadDriver::destinationChanged, &driver, [&] {
        if (driver.destinationError())
            QCoreApplication::exit(1);
        if (!driver.destination() || driver.running())
            return;
        monitor.start();
        driver.offload({ .id = u"models"_s,
                           .rule = { .id = u"ollama.models"_s, .title = u"Models"_s },
                           .path = arguments[2],
                           .rawPath = arguments[2].toStdString(),
                           .bytes = arguments[4].toLongLong() },
            true);
    });
    QObject::connect(&driver, &OffloadDriver::offloadLogChanged, &application, [&] {
        monitor.stop();
        QCoreApplication::exit(driver.offloadLog().constFirst().startsWith(u"✓"_s) ? 0 : 1);
    });
    driver.profileDestination(arguments[3].toStdString());
    const auto code = QCoreApplication::exec();
    if (code != 0) {
        std::fputs(
            qPrintable(driver.offloadLog().value(0) + driver.destinationError().value_or(QString())), stderr);
        return code;
    }
    const QJsonObject output{ { "longest_wait", monitor.longestWait() },
        { "longest_busy", monitor.longestBusy() } };
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
    return 0;
}
