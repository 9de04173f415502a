#include "Catalogue/CatalogueLocations.h"
#include "Platform/FileFacts.h"
#include "Scan/FastScanner.h"

#include <algorithm>
#include <string>
#include <unordered_map>

namespace Quillbrook::StorageCatalogue {

namespace {

// Tells whether a folder on the way to a location is a link. What lies behind it is not in the tree of the
// home folder, where nobody would find it again, and clearing it frees nothing here.
class LinkedParents
{
public:
    LinkedParents(const FileFacts &files, const std::string &home)
        : m_files(files)
        , m_prefix(home + '/')
    {
    }

    [[nodiscard]] bool anyAbove(const std::string &path)
    {
        if (!path.starts_with(m_prefix))
            return false;
        for (auto slash = path.find('/', m_prefix.size()); slash != std::string::npos;
             slash = path.find('/', slash + 1))
            if (isLink(path.substr(0, slash)))
                return true;
        return false;
    }

private:
    bool isLink(const std::string &folder)
    {
        const auto [place, isNew] = m_known.try_emplace(folder);
        if (isNew)
            place->second = m_files.kind(folder) == FileKind::symlink;
        return place->second;
    }

    const FileFacts &m_files;
    std::string m_prefix;
    std::unordered_map<std::string, bool> m_known;
};

// The bytes below one location; absent when the scan was stopped.
std::optional<qint64> measured(
    const CatalogueServices &services, const std::string &path, int threads, const std::stop_token &stop)
{
    FastScanner scanner(services.directories);
    const auto result = scanner.scan({ .rootPath = path, .threads = threads, .stop = stop });
    if (stop.stop_requested())
        return std::nullopt;
    return result.tree ? result.tree->size(result.root) : 0;
}

} // namespace

ReclaimReport quickScan(const CatalogueServices &services, const QuickScanRequest &request)
{
    const auto home = request.places.home();
    const auto threads = FastScanner::defaultThreadCount(services.processors);
    LinkedParents linkedParents(services.files, home);
    FindingList findings(services);
    for (const auto &location : catalogueLocations(request.places)) {
        if (request.stop.stop_requested())
            break;
        const auto kind = services.files.kind(location.rawPath);
        if (!kind || kind == FileKind::symlink || linkedParents.anyAbove(location.rawPath))
            continue;
        const auto bytes = measured(services, location.rawPath, threads, request.stop);
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
        return services.files.kind(location.rawPath).has_value();
    });
}

} // namespace Quillbrook::StorageCatalogue
