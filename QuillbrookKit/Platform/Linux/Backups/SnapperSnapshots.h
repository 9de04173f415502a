#pragma once

// The snapshots that snapper keeps, as its service on the system bus tells of them.

#include <QString>

#include <chrono>

namespace Quillbrook::SnapperSnapshots {

/// How many there are of the subvolume at `subvolume`; 0 where the service is not there or tells this user
/// nothing. `busAddress` empty: the machine's system bus. Blocks for `timeLimit` at the most.
[[nodiscard]] int count(
    const QString &subvolume, const QString &busAddress, std::chrono::milliseconds timeLimit);

} // namespace Quillbrook::SnapperSnapshots
