#include "Catalogue/HostItems.h"
#include "Catalogue/Simulators.h"
#include "Catalogue/StorageCatalogue.h"
#include "Platform/FileFacts.h"
#include "Scan/FileTree.h"

#include <algorithm>
#include <array>

namespace Quillbrook::StorageCatalogue {

using namespace Qt::StringLiterals;

namespace {

/// What is not larger is left out, and with it the small files that tools keep beside the things themselves.
constexpr qint64 itemThresholdBytes = 1'048'576;

/// What a namer goes by besides the tree.
struct Context
{
    const CatalogueServices &services;
    QSet<QString> booted{};
};

/// A rule whose findings open into items, with the logic that names one from its folder's name.
struct ItemisedRule
{
    QString id{};
    void (*describe)(const Context &context, const QString &childName, StorageItem &item) = nullptr;
};

void describeAndroidDevice(const Context &, const QString &childName, StorageItem &item)
{
    const auto ending = u".avd"_s;
    item.name = childName.endsWith(ending) ? childName.chopped(ending.size()) : childName;
    item.detail = u"Android virtual device"_s;
}

void describeDerivedData(const Context &, const QString &childName, StorageItem &item)
{
    if (childName == u"ModuleCache.noindex") {
        item.name = u"Shared module cache"_s;
        item.detail = u"Shared module cache for every project"_s;
        return;
    }
    item.name
        = childName.contains(u'-') ? childName.section(u'-', 0, 0, QString::SectionSkipEmpty) : childName;
    if (item.name.isEmpty())
        item.name = childName;
    item.detail = u"Build intermediates"_s;
}

void describeSimulator(const Context &context, const QString &childName, StorageItem &item)
{
    item.name = Simulators::name(context.services.reading, item.rawPath).value_or(childName);
    item.detail = u"iOS simulator"_s;
    if (context.booted.contains(childName)) {
        item.removable = false;
        item.blockedReason = u"Running right now — shut it down first."_s;
    }
}

void describeArchive(const Context &, const QString &childName, StorageItem &item)
{
    item.name = childName;
    item.detail = u"Shipped build archive"_s;
}

const std::array<ItemisedRule, 4> &itemisedTable()
{
    static const std::array<ItemisedRule, 4> table = { {
        { u"android.avd"_s, describeAndroidDevice },
        { u"xcode.deriveddata"_s, describeDerivedData },
        { u"simulator.devices"_s, describeSimulator },
        { u"xcode.archives"_s, describeArchive },
    } };
    return table;
}

/// The node whose children are the items of a finding; -1 where it has none.
qint32 itemisedNode(const Finding &finding, const FileTree &tree, qint32 root, const Places &places)
{
    const bool isItemised = itemisedRules().contains(finding.rule.id) || HostItems::rowFor(finding, places);
    return isItemised ? tree.find(finding.path, root) : FileTree::noNode;
}

} // namespace

const QSet<QString> &itemisedRules()
{
    static const auto ids = [] {
        QSet<QString> result;
        for (const auto &row : itemisedTable())
            result.insert(row.id);
        return result;
    }();
    return ids;
}

bool supportsItems(const QString &ruleId, const HostCatalogue *host)
{
    const auto isOf = [&ruleId](const HostItemisation &row) { return row.ruleId == ruleId; };
    return itemisedRules().contains(ruleId) || (host && std::ranges::any_of(host->itemisations, isOf));
}

qsizetype itemCount(const Finding &finding, const FileTree &tree, qint32 root, const Places &places)
{
    const auto node = itemisedNode(finding, tree, root, places);
    if (!tree.isValid(node))
        return 0;
    return std::ranges::count_if(
        tree.children(node), [&tree](qint32 child) { return tree.size(child) > itemThresholdBytes; });
}

QList<StorageItem> items(const CatalogueServices &services, const Finding &finding, const FileTree &tree,
    qint32 root, const Places &places)
{
    const auto row = std::ranges::find(itemisedTable(), finding.rule.id, &ItemisedRule::id);
    const bool isBuiltIn = row != itemisedTable().end();
    const auto *hostRow = isBuiltIn ? nullptr : HostItems::rowFor(finding, places);
    const auto node = itemisedNode(finding, tree, root, places);
    if (!tree.isValid(node))
        return {};
    Context context{ .services = services };
    if (finding.rule.id == u"simulator.devices")
        context.booted = Simulators::bootedIds(services.processes);

    QList<StorageItem> result;
    for (const auto child : tree.children(node)) {
        if (tree.size(child) <= itemThresholdBytes)
            continue;
        const auto childName = tree.name(child);
        StorageItem item{ .id = finding.rule.id + u'/' + childName,
            .path = tree.path(child),
            .bytes = tree.size(child),
            .rawPath = tree.rawPath(child) };
        if (const auto dates = services.files.dates(item.rawPath)) {
            item.created = dates->created;
            item.lastModified = dates->lastModified;
        }
        if (isBuiltIn)
            row->describe(context, childName, item);
        else
            HostItems::describe(*hostRow, services.reading, places, childName, item);
        result.append(std::move(item));
    }
    std::ranges::stable_sort(
        result, [](const StorageItem &a, const StorageItem &b) { return a.bytes > b.bytes; });
    return result;
}

} // namespace Quillbrook::StorageCatalogue
