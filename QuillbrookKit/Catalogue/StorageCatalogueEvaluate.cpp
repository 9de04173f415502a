#include "Catalogue/CatalogueLocations.h"
#include "Catalogue/TreeLookup.h"
#include "Platform/FileFacts.h"

namespace Quillbrook::StorageCatalogue {

ReclaimReport evaluate(const CatalogueServices &services, const EvaluateRequest &request)
{
    const auto locations = catalogueLocations(request.places);
    std::vector<QString> paths;
    paths.reserve(locations.size());
    for (const auto &location : locations)
        paths.push_back(location.path);
    const auto nodes = findAll(request.tree, paths, request.root);

    FindingList findings(services);
    for (size_t index = 0; index < locations.size() && !request.stop.stop_requested(); ++index) {
        const auto bytes = request.tree.size(nodes[index]);
        if (bytes < 1)
            continue;
        // As the disk spells it, which the tables do not know.
        auto location = locations[index];
        location.rawPath = request.tree.rawPath(nodes[index]);
        // Where nothing is there any more, the tree's word stands.
        const auto kind = services.files.kind(location.rawPath);
        findings.add(location, bytes, kind == FileKind::symlink);
    }
    return std::move(findings).report(services.volumes, request.places.home());
}

} // namespace Quillbrook::StorageCatalogue
