#include "Platform/Linux/Folders/LinuxVolumes.h"

#include "Platform/Linux/Files/Uninterrupted.h"

#include <limits>
#include <sys/statvfs.h>

namespace Quillbrook {

namespace {

// Some file systems without limits tell figures beyond 2^63.
qint64 bytes(fsblkcnt_t blocks, unsigned long blockSize)
{
    qint64 result = 0;
    return __builtin_mul_overflow(blocks, blockSize, &result) ? std::numeric_limits<qint64>::max() : result;
}

} // namespace

std::optional<VolumeCapacity> LinuxVolumes::capacity(const std::string &path) const
{
    struct statvfs figures = {};
    if (uninterrupted([&] { return ::statvfs(path.c_str(), &figures); }) != 0)
        return std::nullopt;
    // Not f_bfree: that counts what is reserved for the system's administrator.
    const auto available = bytes(figures.f_bavail, figures.f_frsize);
    return VolumeCapacity{ .available = available,
        .availableForImportantUsage = available,
        .total = bytes(figures.f_blocks, figures.f_frsize) };
}

} // namespace Quillbrook
