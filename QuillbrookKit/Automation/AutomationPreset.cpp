#include "Automation/AutomationPreset.h"

namespace Quillbrook {

using namespace Qt::StringLiterals;

const QList<AutomationPreset> &AutomationPreset::builtIn()
{
    // clang-format off
    static const QList<AutomationPreset> table = {
        {
            .id = u"preset.xcode"_s,
            .title = u"Keep Xcode in check"_s,
            .blurb = u"Xcode's build folder is the single biggest thing it makes, and it comes back on the next build. Cleared when the disk fills up."_s,
            .ruleIds = { u"xcode.deriveddata"_s, u"xcode.doccache"_s, u"simulator.caches"_s },
            .triggerUsedPercent = 90.0,
        },
        {
            .id = u"preset.buildtools"_s,
            .title = u"Keep build tools in check"_s,
            .blurb = u"Package and build caches from Gradle, npm and the command-line tools. Each one refetches what it needs next time you build."_s,
            .ruleIds = { u"gradle.daemon"_s, u"caches.devtools"_s, u"npm.cacache"_s },
            .triggerUsedPercent = 90.0,
        },
        {
            .id = u"preset.browsers"_s,
            .title = u"Keep browser caches down"_s,
            .blurb = u"Cached pages and images from your browsers and chat apps. Sites load a little slower once, and you stay signed in."_s,
            .ruleIds = { u"browser.caches"_s, u"browser.serviceworkers"_s, u"chat.caches"_s },
            .triggerUsedPercent = 90.0,
        },
        {
            .id = u"preset.iosupdates"_s,
            .title = u"Old iOS software updates"_s,
            .blurb = u"Installer files macOS downloaded for your iPhone or iPad and never cleaned up. Re-downloaded if they are ever needed again."_s,
            .ruleIds = { u"ios.updates"_s },
            .triggerUsedPercent = 90.0,
        },
    };
    // clang-format on
    return table;
}

QList<AutomationPreset> AutomationPreset::all(const HostCatalogue &host)
{
    auto presets = builtIn();
    for (auto &preset : presets)
        for (const auto &row : host.presets)
            if (row.id == preset.id)
                preset.ruleIds.append(row.ruleIds);
    for (const auto &own : host.ownPresets)
        presets.append({ .id = own.id,
            .title = own.title,
            .blurb = own.blurb,
            .ruleIds = own.ruleIds,
            .triggerUsedPercent = own.triggerUsedPercent });
    return presets;
}

} // namespace Quillbrook
