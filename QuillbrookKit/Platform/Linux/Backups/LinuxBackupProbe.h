#pragma once

// Looks at the settings of the backup programs of a Linux desktop, at snapper, and at what btrfs and ZFS tell
// anyone. Programs that have no settings of their own show by a timer that starts them.

#include "Platform/BackupProbe.h"

#include <QString>

#include <chrono>
#include <string>

namespace Quillbrook {

class FileFacts;
class FileReading;
class ProcessRunner;

class LinuxBackupProbe final : public BackupProbe
{
public:
    /// Where to look. References outlive the probe; paths are absolute, in raw bytes.
    struct Services
    {
        const FileReading &reading;
        const FileFacts &files;
        const ProcessRunner &processes;
        /// The user's real home folder.
        std::string home{};
        std::string systemSettings = "/etc";
        /// Empty: the machine's system bus.
        QString systemBus{};
        /// For all that others have to answer together.
        std::chrono::milliseconds timeLimit = std::chrono::seconds(5);
    };

    explicit LinuxBackupProbe(Services services);

    [[nodiscard]] Backups find() const override;

private:
    const Services m_services;
};

} // namespace Quillbrook
