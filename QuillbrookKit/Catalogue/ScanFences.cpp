#include "Catalogue/ScanFences.h"

#include "Catalogue/HostKnowledge.h"

namespace Quillbrook {

ScanFences ScanFences::quiet(const QString &home, const HostFacts &host)
{
    auto fences = complete();
    fences.allowlist = FastScanner::quietAllowlist(home);
    for (const auto &[folder, children] : host.quietAllowlist.asKeyValueRange())
        fences.allowlist[folder].unite(children);
    fences.skipping = FastScanner::tccProtectedPaths(home) + host.protectedPaths;
    fences.exclusions.unite(fences.skipping);
    return fences;
}

ScanFences ScanFences::complete()
{
    return { .exclusions = FastScanner::defaultExclusions() };
}

} // namespace Quillbrook
