#include "Catalogue/QuietFences.h"

#include "Catalogue/HostKnowledge.h"

namespace Quillbrook {

QuietFences QuietFences::of(const QString &home, const HostFacts &host)
{
    QuietFences fences{ .exclusions = FastScanner::defaultExclusions(),
        .allowlist = FastScanner::quietAllowlist(home),
        .skipping = FastScanner::tccProtectedPaths(home) + host.protectedPaths };
    fences.exclusions.unite(fences.skipping);
    for (const auto &[folder, children] : host.quietAllowlist.asKeyValueRange())
        fences.allowlist[folder].unite(children);
    return fences;
}

} // namespace Quillbrook
