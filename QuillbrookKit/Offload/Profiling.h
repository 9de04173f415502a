#pragma once

// Measures a folder on a drive as a place to move things to. Never by what the bus or the volume claims.

#include "Offload/DestinationProfile.h"
#include "Offload/OffloadError.h"
#include "Offload/OffloadServices.h"

#include <expected>
#include <stop_token>

namespace Quillbrook::Offload {

struct ProfileRequest
{
    /// Absolute, raw bytes.
    std::string destination{};
    /// In mebibytes, at least 1.
    int sampleMB = 1;
    std::stop_token stop{};
};

/// Fails with `destinationUnusable` alone, or with `stopped`. A volume that tells no figures has no room.
/// Takes as long as the drive does: not for the main thread.
[[nodiscard]] std::expected<DestinationProfile, OffloadError> profile(
    const OffloadServices &services, const ProfileRequest &request);

} // namespace Quillbrook::Offload
