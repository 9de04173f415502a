#include "Catalogue/Linux/LinuxHostKnowledge.h"

#include "Catalogue/Linux/LinuxCatalogue.h"
#include "Catalogue/Linux/LinuxQuietScope.h"
#include "Platform/Linux/Folders/LinuxUserFolders.h"

#include <QProcessEnvironment>

namespace Quillbrook {

LinuxHostKnowledge::LinuxHostKnowledge(const FileReading &reading, const QProcessEnvironment &environment)
    : m_reading(reading)
    , m_bases(LinuxBaseFolders::of(environment))
{
}

HostFacts LinuxHostKnowledge::about(const QString &home) const
{
    const auto folders = LinuxUserFolders::read(m_reading, home, m_bases.config);
    return { .catalogue = LinuxCatalogue::catalogue(folders, home, m_bases),
        .quietAllowlist = LinuxQuietScope::allowlist(home, LinuxCatalogue::movedPaths(m_bases, home).moved()),
        .protectedPaths = LinuxQuietScope::protectedPaths(home, folders, m_bases) };
}

} // namespace Quillbrook
