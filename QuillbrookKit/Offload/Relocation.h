#pragma once

// Moves one folder or file to a measured destination and leaves a link in its place. At each step the data
// exists in at least one whole place: the source is not touched until its copy has been measured, and then it
// goes to the Trash. Nothing is recorded: the link on the disk is the only record.

#include "Offload/DestinationProfile.h"
#include "Offload/OffloadError.h"
#include "Offload/OffloadServices.h"
#include "Offload/Suitability.h"
#include "Platform/RelocationDisk.h"

#include <expected>
#include <functional>
#include <stop_token>

namespace Quillbrook::Offload {

/// Paths are absolute and raw bytes.
struct Relocation
{
    std::string source{};
    /// The folder that it goes into.
    std::string into{};
    /// What the source is believed to hold: its copy is measured against that.
    qint64 bytes = 0;
    Suitability suitability{};
    DestinationProfile profile{};
    /// The person has accepted a slow destination.
    bool allowSlowBus = false;
    /// Told on the calling thread how many bytes have been written. May be empty.
    std::function<void(qint64 bytes)> onProgress{};
    /// Asked when the copy is whole, and nothing else has been touched; false ends it as a stop does. May be
    /// empty.
    std::function<bool()> mayFinish{};
    /// Ends it as long as the source has not been touched, and takes away what was made of the copy.
    std::stop_token stop{};
};

/// The new path. Blocks for as long as the copy takes: not for the main thread.
[[nodiscard]] std::expected<std::string, OffloadError> relocate(
    const OffloadServices &services, const Relocation &relocation);

/// Moves to its Trash what was copied, and nothing that has taken its place since: told by its inode, right
/// before it goes and through the same open folder. Where it lies then, or why it stays.
[[nodiscard]] std::expected<std::string, QString> moveAside(
    const OffloadServices &services, const std::string &path, const FileIdentity &copied);

/// Bytes on disk of the folder or file at `path` (raw).
[[nodiscard]] qint64 measuredSize(
    const OffloadServices &services, const std::string &path, const std::stop_token &stop = {});
/// Whether a copy that holds `measured` bytes may be one of `expected`: within 2 %.
[[nodiscard]] bool isVerified(qint64 expected, qint64 measured);

} // namespace Quillbrook::Offload
