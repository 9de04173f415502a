#pragma once

// The Linux tables, with the user's own folders under the names that the desktop gives them.

#include "Catalogue/HostKnowledge.h"

namespace Quillbrook {

class FileReading;

class LinuxHostKnowledge final : public HostKnowledge
{
public:
    /// `reading` outlives this.
    explicit LinuxHostKnowledge(const FileReading &reading);

    [[nodiscard]] HostFacts about(const QString &home) const override;

private:
    const FileReading &m_reading;
};

} // namespace Quillbrook
