#include "Removal/PathRemoval.h"

#include "Platform/FolderEntries.h"

#include <algorithm>
#include <vector>

namespace Quillbrook::PathRemoval {

namespace {

bool isHidden(std::string_view name)
{
    return name.starts_with('.');
}

} // namespace

ItemCount itemCount(const std::string &path, qsizetype cap)
{
    // Looks through a link at what is there, while the walk follows none, not even the first: what lies
    // behind a link would stay if the link were removed.
    const auto entries = folderEntries(path);
    if (entries->kind() == FolderEntries::Kind::nothing)
        return {};
    if (entries->kind() == FolderEntries::Kind::other)
        return { .count = 1 };

    const auto enough = std::max<qsizetype>(cap, 1);
    qsizetype count = 0;
    std::vector<std::string> folders{ path };
    while (!folders.empty()) {
        const auto folder = std::move(folders.back());
        folders.pop_back();
        if (!entries->open(folder))
            continue;
        while (const auto entry = entries->next()) {
            if (isHidden(entry->name))
                continue;
            if (++count == enough)
                return { .count = cap, .capped = true };
            if (entry->isFolder)
                folders.push_back(folder + '/' + std::string(entry->name));
        }
    }
    return { .count = count };
}

} // namespace Quillbrook::PathRemoval
