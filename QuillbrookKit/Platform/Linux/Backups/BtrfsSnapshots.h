#pragma once

// Snapshots as btrfs itself tells of them to anyone.

#include <string>

namespace Quillbrook::BtrfsSnapshots {

/// The subvolume that the folder `path` (absolute, raw bytes) is or lies in: of btrfs, or the mount where the
/// file system has no such thing.
[[nodiscard]] std::string subvolumeOf(const std::string &path);

/// How many snapshots of the subvolume at `subvolume` lie in it, where this user can look at them; 0 on
/// another file system.
[[nodiscard]] int count(const std::string &subvolume);

} // namespace Quillbrook::BtrfsSnapshots
