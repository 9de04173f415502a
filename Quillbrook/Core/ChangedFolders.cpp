#include "Core/ChangedFolders.h"

#include "Removal/Books.h"
#include "StandardisedPath.h"

#include <set>

namespace Quillbrook {

namespace {

template <typename Things, typename FolderOf>
std::vector<std::string> folders(const Things &things, const FolderOf &folderOf)
{
    std::set<std::string> each;
    for (const auto &thing : things)
        each.insert(folderOf(thing));
    return { each.begin(), each.end() };
}

} // namespace

// Where a volume is mounted in such a folder, its things lie on that one.
std::vector<std::string> ChangedFolders::of(const QList<Finding> &findings)
{
    return folders(findings, [](const Finding &finding) {
        return finding.rule.emptyContentsOnly ? finding.rawPath : parentOf(finding.rawPath);
    });
}

std::vector<std::string> ChangedFolders::of(const std::vector<PathRemoval::Removal> &removals)
{
    return folders(removals, [](const PathRemoval::Removal &removal) { return parentOf(removal.path); });
}

std::vector<std::string> ChangedFolders::of(const std::vector<TrashedItem> &items)
{
    return folders(items, [](const TrashedItem &item) { return parentOf(item.trashPath); });
}

std::vector<std::string> ChangedFolders::of(const std::vector<HeldItem> &things)
{
    return folders(things, [](const HeldItem &held) { return parentOf(held.item.trashPath); });
}

} // namespace Quillbrook
