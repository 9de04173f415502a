#pragma once

// The Linux tables as they hold on this machine: with the user's own folders under the names that the desktop
// gives them, the bases where the environment moves them, and what only the home folder itself tells.

#include "Catalogue/HostKnowledge.h"
#include "Platform/Linux/Folders/LinuxBaseFolders.h"

namespace Quillbrook {

class FileReading;

class LinuxHostKnowledge final : public HostKnowledge
{
public:
    /// `reading` outlives this. `environment` is that of this process, read once by whoever makes this.
    LinuxHostKnowledge(const FileReading &reading, const QProcessEnvironment &environment);

    [[nodiscard]] HostFacts about(const std::string &home) const override;

private:
    const FileReading &m_reading;
    LinuxBaseFolders m_bases;
};

} // namespace Quillbrook
