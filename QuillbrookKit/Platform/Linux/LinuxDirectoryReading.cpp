#include "Platform/Linux/LinuxDirectoryReading.h"

#include "Platform/Linux/LinuxDirectorySession.h"

namespace Quillbrook {

std::unique_ptr<DirectorySession> LinuxDirectoryReading::session(const std::string &rootPath)
{
    return std::make_unique<LinuxDirectorySession>(rootPath);
}

} // namespace Quillbrook
