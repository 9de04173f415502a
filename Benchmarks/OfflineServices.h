#pragma once

// Services for a measured application model that leave no trace: a home folder of our choosing, settings in
// memory, no network, and a desktop that is never asked. What reads and writes files is the machine's own.

#include "Catalogue/Linux/LinuxHostKnowledge.h"
#include "Platform/Linux/LinuxDisk.h"
#include "Platform/Linux/Processes/LinuxProcessRunner.h"
#include "Platform/Linux/Processes/LinuxProcessors.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeKit.h"

namespace Quillbrook::Benchmarks {

class OfflineServices
{
public:
    explicit OfflineServices(const QString &home)
        : m_dataFolder(home.toStdString() + "/.local/share")
    {
        m_kit.home.home = home;
        m_kit.home.realHome = home;
    }

    [[nodiscard]] AppServices services()
    {
        return m_desktop.services(m_kit.with({ .directories = &m_disk.directories,
            .processors = &m_processors,
            .files = &m_disk.files,
            .reading = &m_disk.reading,
            .processes = &m_processes,
            .host = &m_host,
            .trash = &m_disk.trash,
            .removal = &m_disk.removal,
            .writing = &m_disk.writing,
            .relocation = &m_disk.relocation,
            .drives = &m_disk.drives,
            .speeds = &m_disk.speeds,
            .dataFolder = m_dataFolder }));
    }

private:
    std::string m_dataFolder;
    FakeKit m_kit;
    FakeDesktop m_desktop;
    LinuxDisk m_disk{ m_dataFolder + "/Quillbrook", { .homeTrash = m_dataFolder + "/Trash" }, m_kit.clock };
    LinuxProcessors m_processors;
    LinuxProcessRunner m_processes;
    LinuxHostKnowledge m_host{ m_disk.reading, {} };
};

} // namespace Quillbrook::Benchmarks
