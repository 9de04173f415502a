#include "Platform/Linux/Folders/LinuxDirectoryReading.h"

#include "Platform/Linux/Folders/LinuxDirectorySession.h"

namespace Quillbrook {

std::unique_ptr<DirectorySession> LinuxDirectoryReading::session(const std::string &rootPath)
{
    return std::make_unique<LinuxDirectorySession>(rootPath, *m_mounts.now());
}

} // namespace Quillbrook
