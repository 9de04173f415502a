#pragma once

// Reads folders with one getdents64 per 256 KiB of entries and one statx per entry that is not a folder.
// Folders cost no call of their own: the mount table, as it is when a session begins, tells which of them are
// mount points. What is mounted below the root is told by name only and not touched, so that a server that
// hangs behind a mount can't hold up a scan; only a scan that asks for other devices' sizes asks for those of
// files there.

#include "Platform/DirectoryReader.h"
#include "Platform/Linux/Folders/WatchedMounts.h"

namespace Quillbrook {

/// The `device` of its records is the mount, so that subvolumes and layered file systems count as one device
/// and bind mounts as another; `fileDevice` is the device number.
class LinuxDirectoryReading final : public DirectoryReading
{
public:
    [[nodiscard]] std::unique_ptr<DirectorySession> session(const std::string &rootPath) override;

private:
    /// Hundreds of small folders are measured one after the other.
    WatchedMounts m_mounts;
};

} // namespace Quillbrook
