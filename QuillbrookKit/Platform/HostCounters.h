#pragma once

// How busy the processors are and how much memory is in use, as the kernel counts it. Callable from any
// thread; takes microseconds.

#include <cstdint>
#include <optional>

namespace Quillbrook {

/// Ticks of all processors together since the start of the system.
struct ProcessorTicks
{
    std::uint64_t user = 0;
    std::uint64_t system = 0;
    std::uint64_t idle = 0;
    std::uint64_t nice = 0;

    bool operator==(const ProcessorTicks &) const = default;
};

/// Pages that can't be given to others at once: in use by programs, never to be moved out, and compressed.
struct MemoryPages
{
    std::uint64_t active = 0;
    std::uint64_t wired = 0;
    std::uint64_t compressed = 0;
    std::uint64_t pageBytes = 0;

    bool operator==(const MemoryPages &) const = default;
};

class HostCounters
{
public:
    virtual ~HostCounters() = default;
    /// Absent when it can't be read.
    [[nodiscard]] virtual std::optional<ProcessorTicks> processorTicks() const = 0;
    [[nodiscard]] virtual std::optional<MemoryPages> memoryPages() const = 0;
    /// Installed memory in bytes; 0 when it can't be read.
    [[nodiscard]] virtual std::uint64_t physicalMemory() const = 0;
};

} // namespace Quillbrook
