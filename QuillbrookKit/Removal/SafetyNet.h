#pragma once

// Whether a backup stands behind what is about to be deleted. It informs, and decides nothing.

namespace Quillbrook {

class BackupProbe;
class ProcessRunner;

struct SafetyNet
{
    /// A backup is set up to go somewhere.
    bool hasTimeMachineDestination = false;
    /// Snapshots on the disk itself.
    int localSnapshotCount = 0;

    bool operator==(const SafetyNet &) const = default;

    [[nodiscard]] bool isUnprotected() const { return !hasTimeMachineDestination && localSnapshotCount == 0; }

    /// What tmutil says; where there is no such tool, what `probe` says. Without an answer there is no
    /// protection. Takes as long as the tool's two runs or the probe's look, all of which are bounded; not
    /// for the main thread.
    [[nodiscard]] static SafetyNet current(const ProcessRunner &processes, const BackupProbe &probe);
};

} // namespace Quillbrook
