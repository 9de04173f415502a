#pragma once

// The counters that Linux keeps in /proc, and in /sys for memory that is compressed.
//
// What the kernel calls active says little: new memory of programs stands on its inactive list. What programs
// use is therefore told by the pages that belong to no file, with those they share.

#include "Platform/HostCounters.h"

#include <QByteArrayView>

#include <string>

namespace Quillbrook {

class LinuxHostCounters final : public HostCounters
{
public:
    /// Where the machine tells about itself.
    struct Sources
    {
        std::string proc = "/proc";
        std::string sys = "/sys";
        std::uint64_t pageBytes = 0;
    };

    LinuxHostCounters();
    explicit LinuxHostCounters(Sources sources);

    [[nodiscard]] std::optional<ProcessorTicks> processorTicks() const override;
    [[nodiscard]] std::optional<MemoryPages> memoryPages() const override;
    [[nodiscard]] std::uint64_t physicalMemory() const override;

    /// From the text of /proc/stat; absent without the line of all processors. Waiting for a disk is idle,
    /// and what guests took is in the user's part already.
    [[nodiscard]] static std::optional<ProcessorTicks> ticksIn(QByteArrayView text);

private:
    [[nodiscard]] std::uint64_t compressedBytes() const;

    Sources m_sources;
};

} // namespace Quillbrook
