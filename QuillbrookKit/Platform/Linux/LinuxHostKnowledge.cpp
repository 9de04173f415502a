#include "Platform/Linux/LinuxHostKnowledge.h"

#include "Platform/Linux/LinuxCatalogue.h"
#include "Platform/Linux/LinuxQuietScope.h"
#include "Platform/Linux/LinuxUserFolders.h"

namespace Quillbrook {

LinuxHostKnowledge::LinuxHostKnowledge(const FileReading &reading)
    : m_reading(reading)
{
}

HostFacts LinuxHostKnowledge::about(const QString &home) const
{
    const auto folders = LinuxUserFolders::read(m_reading, home);
    return { .catalogue = LinuxCatalogue::catalogue(folders, home),
        .quietAllowlist = LinuxQuietScope::allowlist(home),
        .protectedPaths = LinuxQuietScope::protectedPaths(home, folders) };
}

} // namespace Quillbrook
