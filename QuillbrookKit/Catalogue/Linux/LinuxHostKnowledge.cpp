#include "Catalogue/Linux/LinuxHostKnowledge.h"

#include "Catalogue/Linux/LinuxCatalogue.h"
#include "Catalogue/Linux/LinuxFoundPlaces.h"
#include "Catalogue/Linux/LinuxQuietScope.h"
#include "Platform/Linux/Folders/LinuxUserFolders.h"
#include "RawText.h"

#include <QProcessEnvironment>

namespace Quillbrook {

using namespace Qt::StringLiterals;

LinuxHostKnowledge::LinuxHostKnowledge(const FileReading &reading, const QProcessEnvironment &environment)
    : m_reading(reading)
    , m_bases(LinuxBaseFolders::of(environment))
{
}

HostFacts LinuxHostKnowledge::about(const std::string &rawHome) const
{
    const auto home = repairedText(rawHome);
    const auto settings = rawPathBelow(rawHome, m_bases.config.value_or(home + u"/.config"_s));
    const auto folders = LinuxUserFolders::read(m_reading, settings, home);
    HostFacts facts{ .catalogue = LinuxCatalogue::catalogue(folders, home, m_bases),
        .quietAllowlist = LinuxQuietScope::allowlist(home, LinuxCatalogue::movedPaths(m_bases, home).moved()),
        .protectedPaths = LinuxQuietScope::protectedPaths(home, folders, m_bases) };
    const auto add = [&facts](const QString &ruleId, const QList<HostLocation> &locations) {
        if (!locations.isEmpty())
            facts.catalogue.locations.append({ ruleId, locations });
    };
    add(u"flatpak.caches"_s, LinuxFoundPlaces::flatpakCaches(facts.catalogue, m_reading, rawHome));
    add(u"browser.offline"_s, LinuxFoundPlaces::furtherProfiles(facts.catalogue, rawHome));
    return facts;
}

} // namespace Quillbrook
