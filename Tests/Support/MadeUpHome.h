#pragma once

// A made-up home folder on the real disk, and what the catalogue asks of the machine: real folders, links and
// dates, a clock and a volume that the test sets, and no tool to run unless it gives one.

#include "Catalogue/CatalogueServices.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Folders/LinuxDirectoryReading.h"
#include "Scan/FastScanner.h"
#include "Support/FakeClock.h"
#include "Support/FakeProcessRunner.h"
#include "Support/FakeProcessors.h"
#include "Support/FakeRunningApps.h"
#include "Support/FakeVolumes.h"
#include "Support/TempTree.h"

#include <QDateTime>

namespace Quillbrook {

class MadeUpHome
{
public:
    TempTree tree;
    FakeProcessors processors;
    FakeVolumes volumes;
    FakeProcessRunner processes;
    FakeRunningApps runningApps;
    FakeClock clock;

    [[nodiscard]] CatalogueServices services() { return services(m_directories); }
    /// The same with folders that a test measures instead of the real ones.
    [[nodiscard]] CatalogueServices services(DirectoryReading &directories)
    {
        return { .directories = directories,
            .processors = processors,
            .volumes = volumes,
            .files = m_files,
            .reading = m_reading,
            .processes = processes,
            .runningApps = runningApps,
            .clock = clock };
    }

    [[nodiscard]] QString path() const { return tree.text(); }
    [[nodiscard]] QString path(const std::string &name) const { return tree.text(name); }

    /// A folder with one file of `bytes` in it.
    void fill(const std::string &folder, qint64 bytes) const { tree.file(folder + "/content", bytes); }
    /// Sets when something was last modified; a link is followed. Ends the test where that can't be done.
    void touch(const std::string &name, const QDateTime &moment) const;
    /// The whole home folder as one finished scan.
    [[nodiscard]] FastScanner::Result scan();

private:
    LinuxDirectoryReading m_directories;
    LinuxFileFacts m_files;
    LinuxFileReading m_reading;
};

} // namespace Quillbrook
