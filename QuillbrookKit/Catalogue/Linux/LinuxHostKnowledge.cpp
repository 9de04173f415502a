#include "Catalogue/Linux/LinuxHostKnowledge.h"

#include "Catalogue/Linux/LinuxCatalogue.h"
#include "Catalogue/Linux/LinuxQuietScope.h"
#include "Platform/Linux/Folders/LinuxUserFolders.h"

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
