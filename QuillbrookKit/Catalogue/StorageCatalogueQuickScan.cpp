#include "Catalogue/CatalogueLocations.h"
#include "Platform/FileFacts.h"
#include "Scan/FastScanner.h"

#include <QHash>

#include <algorithm>

namespace Quillbrook::StorageCatalogue {

namespace {

// Tells whether a folder on the way to a location is a link. What lies behind it is not in the tree of the
// home folder, where nobody would find it again, and clearing it frees nothing here.
class LinkedParents
{
public:
    LinkedParents(const FileFacts &files, const QString &home)
        : m_files(files)
        , m_prefix(home + u'/')
    {
    }

    [[nodiscard]] bool anyAbove(const QString &path)
    {
        if (!path.startsWith(m_prefix))
            return false;
        for (auto slash = path.indexOf(u'/', m_prefix.size()); slash >= 0;
             slash = path.indexOf(u'/', slash + 1))
            if (isLink(path.first(slash)))
                return true;
        return false;
    }

private:
    bool isLink(const QString &folder)
    {
        const auto known = m_known.constFind(folder);
        if (known != m_known.cend())
            return *known;
        const bool answer = m_files.kind(folder.toStdString()) == FileKind::symlink;
        m_known.insert(folder, answer);
        return answer;
    }

    const FileFacts &m_files;
    QString m_prefix;
    QHash<QString, bool> m_known;
};

// The bytes below one location; absent when the scan was stopped.
std::optional<qint64> measured(
    const CatalogueServices &services, const QString &path, int threads, const std::stop_token &stop)
{
    FastScanner scanner(services.directories);
    const auto result = scanner.scan({ .rootPath = path.toStdString(), .threads = threads, .stop = stop });
    if (stop.stop_requested())
        return std::nullopt;
    return result.tree ? result.tree->size(result.root) : 0;
}

} // namespace

ReclaimReport quickScan(const CatalogueServices &services, const QuickScanRequest &request)
{
    const auto &home = request.places.homeDirectory;
    const auto threads = FastScanner::defaultThreadCount(services.processors);
    LinkedParents linkedParents(services.files, home);
    FindingList findings(services);
    for (const auto &location : catalogueLocations(request.places)) {
        if (request.stop.stop_requested())
            break;
        const auto kind = services.files.kind(location.path.toStdString());
        if (!kind || kind == FileKind::symlink || linkedParents.anyAbove(location.path))
            continue;
        const auto bytes = measured(services, location.path, threads, request.stop);
        if (!bytes || *bytes <= 0)
            continue;
        const auto &finding = findings.add(location, *bytes, false);
        if (request.onFinding)
            request.onFinding(finding);
    }
    return std::move(findings).report(services.volumes, home);
}

qsizetype quickScanStepCount(const CatalogueServices &services, const Places &places)
{
    // A link is counted too, though quick scan passes it over: progress takes fewer steps than announced.
    return std::ranges::count_if(catalogueLocations(places), [&services](const CatalogueLocation &location) {
        return services.files.kind(location.path.toStdString()).has_value();
    });
}

} // namespace Quillbrook::StorageCatalogue
