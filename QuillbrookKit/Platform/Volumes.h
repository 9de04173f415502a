#pragma once

// Capacity of the volume that holds a path.

#include <QtGlobal>

#include <optional>
#include <string>

namespace Quillbrook {

/// Bytes. `available` is what an ordinary user can still write; `availableForImportantUsage` also counts what
/// the system would purge (equal to `available` where nothing is purgeable). A figure the system does not
/// tell is absent.
struct VolumeCapacity
{
    std::optional<qint64> available{};
    std::optional<qint64> availableForImportantUsage{};
    std::optional<qint64> total{};

    bool operator==(const VolumeCapacity &) const = default;
};

class Volumes
{
public:
    virtual ~Volumes() = default;
    /// `path` is in raw bytes. Absent when the volume can't be asked. Callable from any thread.
    [[nodiscard]] virtual std::optional<VolumeCapacity> capacity(const std::string &path) const = 0;
};

} // namespace Quillbrook
