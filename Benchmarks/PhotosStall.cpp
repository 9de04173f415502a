// Deletes all pictures of a home folder as the screen does, with the guards of a real start, watches the main
// thread meanwhile, and prints one JSON object.
//
//     PhotosStall HOME    the pictures lie in HOME/Pictures; everything else of the program goes into HOME
//     too

#include "Core/RemovalQueue.h"
#include "Platform/Clock.h"
#include "Platform/Linux/LinuxDisk.h"
#include "Platform/Linux/Photos/LinuxPhotoLibrary.h"
#include "Removal/Linux/LinuxGuards.h"
#include "Screens/Photos/PhotosState.h"
#include "StallMonitor.h"
#include "Support/FakeFileRevealer.h"
#include "Support/FakeFolders.h"
#include "Support/FakeHomeFolder.h"
#include "Support/FakeProcessRunner.h"
#include "Support/FakeUserDefaults.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <unistd.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

/// A start of the program in that home folder, with nothing of the desktop.
struct Start
{
    FakeHomeFolder home;
    SystemClock clock;
    const std::string data;
    LinuxDisk disk;
    const HostGuards guards;
    FakeUserDefaults defaults;
    FakeProcessRunner processes;
    FakeFolderPicker picker;
    FakeFolderGrants grants;
    FakeFileRevealer revealer;
    const DesktopSession session;
    RemovalQueue queue;
    LinuxPhotoLibrary library;
    PhotosState screen;

    explicit Start(const QString &path)
        : home(at(path))
        , data(path.toStdString() + "/.local/share")
        , disk(data + "/Quillbrook", { .homeTrash = data + "/Trash", .user = ::getuid() }, clock)
        , guards(LinuxGuards::guards(LinuxGuards::places(home, disk.reading)))
        , session({ .configFolder = path.toStdString() + "/.config" })
        , library({ .removal = LinuxPhotoLibrary::removalOn(disk, clock, guards, path.toStdString(), data),
              .defaults = allowed(defaults),
              .home = home,
              .processes = processes,
              .picker = picker,
              .grants = grants,
              .session = session })
        , screen({ .library = library, .revealer = revealer, .clock = clock, .removals = &queue })
    {
    }

private:
    static FakeHomeFolder at(const QString &path)
    {
        FakeHomeFolder home;
        home.home = home.realHome = path;
        return home;
    }
    static FakeUserDefaults &allowed(FakeUserDefaults &defaults)
    {
        defaults.setBoolean(u"Quillbrook.photosAllowed"_s, true);
        return defaults;
    }
};

} // namespace

int main(int count, char **texts)
{
    QCoreApplication application(count, texts);
    const auto arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        std::fputs("PhotosStall HOME\n", stderr);
        return 2;
    }
    Start start(arguments[1]);
    auto &screen = start.screen;
    Benchmarks::StallMonitor monitor;
    QElapsedTimer watch;
    double seconds = 0;
    screen.setFrom(QDateTime::fromSecsSinceEpoch(0));
    screen.setTo(QDateTime::currentDateTime().addYears(1));
    QObject::connect(&screen, &PhotosState::accessChanged, &application, [&] {
        monitor.start();
        watch.start();
        screen.deleteRange();
    });
    QObject::connect(&screen, &PhotosState::questionChanged, &application, [&] {
        if (screen.isAskedToDelete())
            screen.answer(true);
    });
    QObject::connect(&screen, &PhotosState::lastResultChanged, &application, [&] {
        seconds = static_cast<double>(watch.elapsed()) / 1000;
        if (!screen.lastResult().startsWith(u"Moved "_s))
            QCoreApplication::exit(1);
    });
    // What is left is counted after that, and belongs to what the main thread has to do.
    QObject::connect(&screen, &PhotosState::resultChanged, &application, [&] {
        if (seconds == 0)
            return;
        monitor.stop();
        QCoreApplication::exit(0);
    });
    screen.setShown(true);
    if (const auto code = QCoreApplication::exec(); code != 0)
        return code;
    const QJsonObject output{ { "seconds", seconds }, { "longest_wait", monitor.longestWait() },
        { "longest_busy", monitor.longestBusy() }, { "result", screen.lastResult() } };
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
    return 0;
}
