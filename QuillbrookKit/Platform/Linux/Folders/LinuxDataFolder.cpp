#include "Platform/Linux/Folders/LinuxDataFolder.h"

#include "Platform/HomeFolder.h"
#include "StandardisedPath.h"

#include <cstdlib>

namespace Quillbrook {

std::string linuxDataFolder(const HomeFolder &home)
{
    const auto *told = std::getenv("XDG_DATA_HOME"); // NOLINT(concurrency-mt-unsafe): nothing here sets any
    const auto own = home.rawHomeDirectory();
    // A relative path is to be passed over.
    const std::string folder = told != nullptr && *told == '/' ? told : own + "/.local/share";
    return standardisedPath(folder, own);
}

} // namespace Quillbrook
