#include "Catalogue/StorageCatalogue.h"

#include <algorithm>

namespace Quillbrook::StorageCatalogue {

using namespace Qt::StringLiterals;

namespace {

const QList<HostRuleIds> &builtInRelations()
{
    static const QList<HostRuleIds> table = {
        { u"android.avd"_s, { u"simulator.devices"_s, u"xcode.deriveddata"_s } },
        { u"simulator.devices"_s, { u"android.avd"_s, u"simulator.caches"_s } },
        { u"xcode.deriveddata"_s, { u"xcode.archives"_s, u"simulator.devices"_s } },
        { u"xcode.archives"_s, { u"xcode.deriveddata"_s, u"ios.devicesupport"_s } },
        { u"gradle.caches"_s, { u"gradle.daemon"_s, u"android.avd"_s } },
        { u"gradle.daemon"_s, { u"gradle.caches"_s } },
        { u"caches.devtools"_s, { u"npm.cacache"_s, u"pub.cache"_s } },
        { u"npm.cacache"_s, { u"caches.devtools"_s } },
    };
    return table;
}

const QStringList *lookUp(const QList<HostRuleIds> &table, const QString &id)
{
    const auto row = std::ranges::find(table, id, &HostRuleIds::id);
    return row == table.end() ? nullptr : &row->ruleIds;
}

} // namespace

const ReclaimRule *rule(const QString &ruleId, const HostCatalogue *host)
{
    if (const auto found = std::ranges::find(rules(), ruleId, &ReclaimRule::id); found != rules().end())
        return &*found;
    if (host)
        for (const auto &row : host->rules)
            if (row.rule.id == ruleId)
                return &row.rule;
    return nullptr;
}

QStringList related(const QString &ruleId, const HostCatalogue *host)
{
    if (const auto *ids = lookUp(builtInRelations(), ruleId))
        return *ids;
    const auto *ids = host ? lookUp(host->related, ruleId) : nullptr;
    return ids ? *ids : QStringList();
}

} // namespace Quillbrook::StorageCatalogue
