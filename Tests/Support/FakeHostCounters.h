#pragma once

// Counters that a test sets.

#include "Platform/HostCounters.h"

namespace Quillbrook {

class FakeHostCounters final : public HostCounters
{
public:
    std::optional<ProcessorTicks> ticks = ProcessorTicks{ .user = 1, .idle = 1 };
    std::optional<MemoryPages> pages = MemoryPages{ .active = 1, .pageBytes = 4096 };
    std::uint64_t installed = 8192;
    /// How often each was asked for.
    mutable int ticksAsked = 0;
    mutable int pagesAsked = 0;

    [[nodiscard]] std::optional<ProcessorTicks> processorTicks() const override
    {
        ++ticksAsked;
        return ticks;
    }
    [[nodiscard]] std::optional<MemoryPages> memoryPages() const override
    {
        ++pagesAsked;
        return pages;
    }
    [[nodiscard]] std::uint64_t physicalMemory() const override { return installed; }
};

} // namespace Quillbrook
