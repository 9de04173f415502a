#pragma once

// What moving things to another volume asks of the machine. Plain references: the owner outlives every call.

#include "Platform/KitServices.h"

namespace Quillbrook {

struct OffloadServices
{
    DirectoryReading &directories;
    const Processors &processors;
    const FileFacts &files;
    const Drives &drives;
    const SpeedProbe &speeds;
    const RelocationDisk &disk;
    Trash &trash;

    /// That part of all there is.
    [[nodiscard]] static OffloadServices of(const KitServices &kit)
    {
        return { .directories = kit.directories,
            .processors = kit.processors,
            .files = kit.files,
            .drives = kit.drives,
            .speeds = kit.speeds,
            .disk = kit.relocation,
            .trash = kit.trash };
    }
};

} // namespace Quillbrook
