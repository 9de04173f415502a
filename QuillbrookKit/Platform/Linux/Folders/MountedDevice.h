#pragma once

// On which mount, and on which file system, something lies.

#include <cstdint>
#include <sys/stat.h>

namespace Quillbrook {

/// A mount and a file system in it: a rename crosses neither.
struct MountedDevice
{
    std::uint64_t mount = 0;
    std::uint64_t device = 0;

    bool operator==(const MountedDevice &) const = default;

    /// Kernels that know no ids of mounts leave the file system to tell them apart.
    [[nodiscard]] static MountedDevice of(const struct statx &status)
    {
        constexpr unsigned bitsOfMinor = 32;
        const auto device = (std::uint64_t{ status.stx_dev_major } << bitsOfMinor) | status.stx_dev_minor;
        const bool isTold = (status.stx_mask & STATX_MNT_ID) != 0;
        return { .mount = isTold ? status.stx_mnt_id : device, .device = device };
    }
};

} // namespace Quillbrook
