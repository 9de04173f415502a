#include "Core/ScanFences.h"

#include "Catalogue/HostKnowledge.h"

namespace Quillbrook {

ScanFences ScanFences::of(Scope scope, const QString &root, const HostFacts &host)
{
    ScanFences fences{ .exclusions = FastScanner::defaultExclusions() };
    if (scope == Scope::complete)
        return fences;
    fences.skipping = FastScanner::tccProtectedPaths(root) + host.protectedPaths;
    fences.exclusions.unite(fences.skipping);
    fences.allowlist = FastScanner::quietAllowlist(root);
    for (const auto &[folder, children] : host.quietAllowlist.asKeyValueRange())
        fences.allowlist[folder].unite(children);
    return fences;
}

} // namespace Quillbrook
