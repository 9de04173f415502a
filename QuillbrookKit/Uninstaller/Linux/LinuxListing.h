#pragma once

// Puts together which applications a Linux desktop has, from entries, installations and packages. At most two
// processes are started, whatever there is.

#include "Uninstaller/HostApplications.h"

namespace Quillbrook {

class ProcessRunner;
struct ApplicationPlaces;
struct UninstallerServices;

[[nodiscard]] HostListing linuxListing(
    const UninstallerServices &services, const ProcessRunner &processes, const ApplicationPlaces &places);

} // namespace Quillbrook
