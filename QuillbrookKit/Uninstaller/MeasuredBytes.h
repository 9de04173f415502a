#pragma once

// The sizes that the uninstaller asks for, in bytes on the disk: a folder's by a scan of its own, a file's
// length.

#include "Platform/KitServices.h"
#include "Uninstaller/AppBundle.h"

#include <stop_token>

namespace Quillbrook {

struct MeasuringServices
{
    DirectoryReading &directories;
    const FileFacts &files;
    const Processors &processors;

    [[nodiscard]] static MeasuringServices of(const KitServices &kit)
    {
        return { .directories = kit.directories, .files = kit.files, .processors = kit.processors };
    }
};

/// A measuring for worker threads; what `services` refers to outlives it. Once a stop is requested it tells
/// no true sizes any more.
[[nodiscard]] Measure measureOnDisk(const MeasuringServices &services, const std::stop_token &stop = {});

} // namespace Quillbrook
