#pragma once

// What the machine's own means of backup say about the user's files.

namespace Quillbrook {

struct Backups
{
    /// Some program is set up to copy the user's files elsewhere.
    bool hasDestination = false;
    /// Snapshots on the disk itself that hold the user's files: no help when the disk dies, but they undo a
    /// deletion.
    int localSnapshots = 0;

    bool operator==(const Backups &) const = default;
};

class BackupProbe
{
public:
    virtual ~BackupProbe() = default;
    /// What can't be found out counts as not there. Asks nobody for a password, and takes some seconds at the
    /// most; not for the main thread.
    [[nodiscard]] virtual Backups find() const = 0;
};

} // namespace Quillbrook
