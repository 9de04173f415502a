#pragma once

// The Flatpak applications that run, from the notes that Flatpak keeps of its instances in the user's runtime
// folder: for each a folder with a description ("info") and the number of its outermost process ("pid").

#include "Platform/RunningApps.h"

#include <string>

namespace Quillbrook {

class FileReading;

class LinuxRunningApps final : public RunningApps
{
public:
    /// `reading` outlives this. `runtimeFolder` is the user's, absolute and in raw bytes. It is empty where
    /// there is none, and inside a sandbox, which does not see the notes: then nothing can be told.
    LinuxRunningApps(const FileReading &reading, std::string runtimeFolder);

    /// False only where each note could be read, and none is of an instance of this application that lives.
    [[nodiscard]] std::optional<bool> isRunning(const QString &applicationId) const override;

private:
    const FileReading &m_reading;
    std::string m_runtimeFolder;
};

} // namespace Quillbrook
