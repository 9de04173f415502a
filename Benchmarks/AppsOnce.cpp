// Lists, measures and plans the applications of a made-up machine, which it makes first, and prints what that
// took as one JSON object.
//
//     AppsOnce FOLDER      an empty folder that is its own

#include "Platform/Clock.h"
#include "Platform/Linux/BareWalk.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Folders/LinuxDirectoryReading.h"
#include "Platform/Linux/Processes/LinuxProcessRunner.h"
#include "Platform/Linux/Processes/LinuxProcessors.h"
#include "Platform/Linux/Processes/LinuxRunningApps.h"
#include "Scan/FastScanner.h"
#include "Uninstaller/Linux/LinuxApplications.h"
#include "Uninstaller/MeasuredBytes.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace {

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace Quillbrook::Benchmarks;
using Watch = std::chrono::steady_clock;
namespace fs = std::filesystem;

constexpr int applications = 300;
constexpr int filesOfEach = 200;
constexpr int orphanFolders = 5000;
constexpr int repetitions = 7;
constexpr qint64 orphanBytes = 2 * 1024 * 1024;

double secondsSince(Watch::time_point start)
{
    return std::chrono::duration<double>(Watch::now() - start).count();
}

void write(const fs::path &path, const std::string &content)
{
    fs::create_directories(path.parent_path());
    std::ofstream(path) << content;
}

/// A third Flatpaks of some files each, a third AppImages, and a third entries of the system; below the home
/// folder, folders that nobody owns.
class Machine
{
public:
    explicit Machine(std::string folder)
        : m_folder(std::move(folder))
    {
        for (int index = 0; index < applications; ++index)
            make(index, "org.made.App" + std::to_string(index));
        for (int index = 0; index < orphanFolders; ++index) {
            const fs::path folder = m_folder + "/home/.config/org.gone.Tool" + std::to_string(index);
            write(folder / "x", "");
            age(folder / "x");
            age(folder);
        }
    }

    [[nodiscard]] LinuxApplications listing() const
    {
        // Named, since the compiler warns of what it takes for a destroyed member of an unnamed one.
        const LinuxApplications::Options options{ .services = { .reading = m_reading,
                                                      .files = m_files,
                                                      .runningApps = m_running,
                                                      .clock = m_clock,
                                                      .processHome = m_folder + "/home" },
            .processes = m_processes,
            .places = { .home = m_folder + "/home",
                .data = m_folder + "/home/.local/share",
                .config = m_folder + "/home/.config",
                .cache = m_folder + "/home/.cache",
                .state = m_folder + "/home/.local/state",
                .systemData = { m_folder + "/share" },
                .userFlatpak = m_folder + "/home/.local/share/flatpak",
                .systemFlatpak = m_folder + "/none",
                .snapd = m_folder + "/none",
                .snaps = m_folder + "/none",
                .programs = { "/usr/bin" },
                .systemConfig = m_folder + "/etc",
                .systemState = m_folder + "/var",
                .dpkgQuery = "/usr/bin/dpkg-query" } };
        return LinuxApplications(options);
    }

    [[nodiscard]] Measure measure()
    {
        return measureOnDisk({ .directories = m_directories, .files = m_files, .processors = m_processors });
    }
    [[nodiscard]] int threads() const { return FastScanner::defaultThreadCount(m_processors); }

private:
    void make(int index, const std::string &id) const
    {
        const auto entry
            = "[Desktop Entry]\nType=Application\nName=Made up " + std::to_string(index) + "\nExec=";
        const auto data = m_folder + "/home/.local/share";
        if (index % 3 == 0) {
            const auto app = data + "/flatpak/app/" + id + "/x86_64/stable/active";
            write(app + "/metadata", "[Application]\nname=" + id + "\nruntime=org.base/x86_64/1\n");
            for (int file = 0; file < filesOfEach; ++file)
                write(app + "/files/" + std::to_string(file % 10) + "/" + std::to_string(file), "made up");
            write(data + "/flatpak/exports/share/applications/" + id + ".desktop",
                entry + "x\nX-Flatpak=" + id + "\n");
        } else if (index % 3 == 1) {
            const auto image = m_folder + "/home/Applications/" + id + ".AppImage";
            write(image, "made up");
            write(data + "/applications/" + id + ".desktop", entry + image + "\n");
        } else {
            write(m_folder + "/share/applications/" + id + ".desktop", entry + "true\n");
        }
        write(m_folder + "/home/.cache/" + id + "/x", "made up");
    }

    static void age(const fs::path &path)
    {
        fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::days(400));
    }

    std::string m_folder;
    LinuxFileReading m_reading;
    LinuxFileFacts m_files;
    LinuxDirectoryReading m_directories;
    LinuxProcessors m_processors;
    LinuxProcessRunner m_processes;
    LinuxRunningApps m_running{ m_reading, m_folder };
    SystemClock m_clock;
};

template <typename Work>
QJsonArray repeated(const Work &work)
{
    QJsonArray seconds;
    for (int index = 0; index < repetitions; ++index) {
        const auto start = Watch::now();
        work();
        seconds.append(secondsSince(start));
    }
    return seconds;
}

// The walks and the measuring in turn, application by application.
QJsonObject sizes(Machine &machine, const LinuxApplications &host, const HostListing &listing)
{
    QJsonArray ratios;
    const auto measure = machine.measure();
    for (int index = 0; index < repetitions; ++index) {
        double measuring = 0;
        double walking = 0;
        for (const auto &app : listing.apps) {
            if (app.origin != AppOrigin::flatpakOfUser)
                continue;
            auto start = Watch::now();
            if (host.bytes(app, measure) < 1)
                qFatal("an application without a size");
            measuring += secondsSince(start);
            start = Watch::now();
            walking += bareWalk(app.app.path, machine.threads()).seconds;
        }
        ratios.append(measuring / walking);
    }
    return { { "ratios", ratios } };
}

} // namespace

int main(int count, char **texts)
{
    if (count != 2) {
        std::fputs("AppsOnce FOLDER\n", stderr);
        return 2;
    }
    Machine machine(texts[1]);
    const auto host = machine.listing();
    auto listing = host.listing();
    QJsonObject output{ { "applications", qsizetype(listing.apps.size()) } };
    output["names_seconds"] = repeated([&] { listing = host.listing(); });
    output["sizes"] = sizes(machine, host, listing);
    const auto &app = listing.apps.front();
    output["plan_seconds"] = repeated([&] {
        if (host.plan({ .app = app, .all = listing.apps, .measure = machine.measure() }).leftovers.empty())
            qFatal("a plan without leftovers");
    });
    output["orphan_seconds"] = repeated([&] {
        const auto large = [](const std::string & /*path*/) { return orphanBytes; };
        if (host.orphans(listing, large, 180).size() != orphanFolders)
            qFatal("not every orphan was found");
    });
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
    return 0;
}
