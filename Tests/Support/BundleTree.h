#pragma once

// A made-up root with a home folder in it, on the real disk, for the uninstaller: what it asks of the machine
// is real but for the clock, what runs, and the measuring, which counts written bytes.

#include "Platform/FileFacts.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Support/FakeClock.h"
#include "Support/FakeRunningApps.h"
#include "Support/PropertyListBytes.h"
#include "Support/TempTree.h"
#include "Uninstaller/Uninstaller.h"

#include <QDateTime>

#include <filesystem>
#include <vector>

namespace Quillbrook {

struct BundleTree
{
    TempTree tree;
    FakeClock clock;
    FakeRunningApps running;
    LinuxFileFacts facts;
    LinuxFileReading reading;
    mutable std::vector<std::string> measured{};

    BundleTree()
    {
        tree.folder("home");
        clock.moment = QDateTime::fromSecsSinceEpoch(1'800'000'000, Qt::UTC);
    }

    [[nodiscard]] std::string home() const { return tree.path("home"); }
    [[nodiscard]] std::string path(const std::string &name) const { return tree.path(name); }

    [[nodiscard]] UninstallerServices services() const
    {
        return {
            .reading = reading, .files = facts, .runningApps = running, .clock = clock, .processHome = home()
        };
    }

    /// Bytes of the files below, and a note that it was asked.
    [[nodiscard]] Measure measure() const
    {
        return [this](const std::string &path) {
            measured.push_back(path);
            std::error_code error;
            if (!std::filesystem::is_directory(path, error))
                return qint64(std::filesystem::file_size(path, error));
            qint64 total = 0;
            for (const auto &entry : std::filesystem::recursive_directory_iterator(path, error))
                if (entry.is_regular_file())
                    total += qint64(entry.file_size());
            return total;
        };
    }

    /// A bundle with the content of its property list's dictionary, and `bytes` beside that.
    void bundle(const std::string &name, const QByteArray &dictionary, qint64 bytes = 0) const
    {
        tree.fileWith(name + "/Contents/Info.plist",
            PropertyListBytes::xml("<dict>" + dictionary + "</dict>").toStdString());
        if (bytes > 0)
            tree.file(name + "/Contents/program", bytes);
    }

    [[nodiscard]] static QByteArray text(const QByteArray &key, const QByteArray &value)
    {
        return "<key>" + key + "</key><string>" + value + "</string>";
    }

    /// Sets the date of something, links not followed, in seconds before the clock's.
    void age(const std::string &name, qint64 seconds) const
    {
        const auto moment = clock.moment.toSecsSinceEpoch() - seconds;
        std::filesystem::last_write_time(tree.path(name),
            std::chrono::file_clock::from_sys(std::chrono::sys_seconds(std::chrono::seconds(moment))));
    }
};

} // namespace Quillbrook
