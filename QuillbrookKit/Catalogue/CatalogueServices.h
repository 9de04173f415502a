#pragma once

// What the catalogue's operations ask of the machine. Plain references: the owner outlives every call.

#include "Platform/KitServices.h"

namespace Quillbrook {

struct CatalogueServices
{
    DirectoryReading &directories;
    const Processors &processors;
    const Volumes &volumes;
    const FileFacts &files;
    const FileReading &reading;
    const ProcessRunner &processes;
    const RunningApps &runningApps;
    const Clock &clock;

    /// That part of all there is.
    [[nodiscard]] static CatalogueServices of(const KitServices &kit)
    {
        return { .directories = kit.directories,
            .processors = kit.processors,
            .volumes = kit.volumes,
            .files = kit.files,
            .reading = kit.reading,
            .processes = kit.processes,
            .runningApps = kit.runningApps,
            .clock = kit.clock };
    }
};

} // namespace Quillbrook
