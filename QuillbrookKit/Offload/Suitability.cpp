#include "Offload/Suitability.h"

#include "Catalogue/HostCatalogue.h"
#include "Catalogue/ReclaimReport.h"

#include <algorithm>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

// Only what is known to be cold moves. The hot rows give a truer reason than the default does.
const QList<HostSuitability> &builtIn()
{
    // clang-format off
    static const auto buildPath = u"Read on every build. Relocating it slows the build path."_s;
    static const auto running = u"Read and written while running. Relocating risks corruption."_s;
    static const QList<HostSuitability> table = {
        { u"xcode.deriveddata"_s, u"Xcode writes this constantly during every build. On a slower volume it would make each build slower, permanently."_s },
        { u"gradle.caches"_s, buildPath },
        { u"npm.cacache"_s, buildPath },
        { u"caches.devtools"_s, buildPath },
        { u"pub.cache"_s, buildPath },
        { u"simulator.devices"_s, running },
        { u"docker.data"_s, running },
        { u"chrome.profile"_s, u"Chrome reads and writes this profile continuously while it runs."_s },
        { u"coredevice.service"_s, u"Managed by Xcode's device services; relocating it breaks pairing."_s },
        { u"mail.data"_s, u"Mail writes to this constantly while it is open."_s },
        { u"xcode.archives"_s, std::nullopt },
        { u"ios.devicesupport"_s, std::nullopt },
        { u"ollama.models"_s, std::nullopt },
        { u"android.avd"_s, std::nullopt },
        { u"photos.library"_s, std::nullopt },
    };
    // clang-format on
    return table;
}

std::optional<Suitability> lookUp(const QList<HostSuitability> &table, const QString &id)
{
    const auto row = std::ranges::find(table, id, &HostSuitability::ruleId);
    return row == table.end() ? std::nullopt : std::optional(Suitability{ .hotReason = row->hotReason });
}

} // namespace

Suitability Offload::suitability(const QString &ruleId, const HostCatalogue *host)
{
    if (const auto verdict = lookUp(builtIn(), ruleId))
        return *verdict;
    if (const auto verdict = host ? lookUp(host->suitability, ruleId) : std::nullopt)
        return *verdict;
    return { .hotReason = u"Not recognised as cold data, so Quillbrook will not move it."_s };
}

QList<Finding> Offload::candidates(const ReclaimReport &report, const HostCatalogue *host)
{
    // Moving less than this is not worth a link.
    constexpr qint64 leastBytes = 104'857'600;
    auto findings = report.findings;
    findings.removeIf([host](const Finding &finding) {
        return finding.redirectedOffVolume || finding.bytes <= leastBytes
            || !suitability(finding.rule.id, host).isCold();
    });
    return findings;
}

} // namespace Quillbrook
