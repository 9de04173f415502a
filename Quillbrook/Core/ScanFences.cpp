#include "Core/ScanFences.h"

#include "Catalogue/QuietFences.h"

namespace Quillbrook {

ScanFences ScanFences::of(Scope scope, const QString &root, const HostFacts &host)
{
    if (scope == Scope::complete)
        return { .exclusions = FastScanner::defaultExclusions() };
    const auto quiet = QuietFences::of(root, host);
    return { .exclusions = quiet.exclusions, .allowlist = quiet.allowlist, .skipping = quiet.skipping };
}

} // namespace Quillbrook
