#include "Uninstaller/Linux/IconTheme.h"

#include "Uninstaller/FolderNames.h"
#include "Uninstaller/Linux/KeyFile.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr auto mainGroup = "Icon Theme";
// Rows show icons of half this size, on a dense screen of this one.
constexpr int bestSize = 64;
constexpr int largestSize = 4096;
constexpr int meritOfOutlines = 10'000;
constexpr int meritOfLarge = 5000;
// The largest themes that are known have a third of that.
constexpr qsizetype mostFolders = 1000;

// Names with slashes between, none of which leads out of the theme.
bool leadsBelow(const QString &folder)
{
    const auto names = folder.split(u'/');
    return std::ranges::all_of(
        names, [](const QString &name) { return FolderNames::isName(name.toStdString()); });
}

int meritOf(const KeyFile &index, const QString &folder)
{
    const auto name = folder.toUtf8();
    const auto *group = name.constData();
    if (index.text(group, "Context") != u"Applications")
        return 0;
    const auto size = std::clamp(index.number(group, "Size"), 0, largestSize);
    const auto scale = std::clamp(index.number(group, "Scale"), 1, 4);
    return meritOfIcons(size * scale, index.text(group, "Type") == u"Scalable");
}

} // namespace

int meritOfIcons(int size, bool isScalable)
{
    if (size <= 0)
        return 0;
    if (isScalable)
        return meritOfOutlines + size;
    return size >= bestSize ? std::max(meritOfLarge - size, bestSize) : size;
}

std::optional<IconTheme> IconTheme::parse(QByteArrayView bytes)
{
    const auto index = bytes.size() <= maximumBytes ? KeyFile::parse(bytes) : std::nullopt;
    if (!index)
        return std::nullopt;
    IconTheme theme;
    for (const auto &parent : index->words(mainGroup, "Inherits"))
        if (auto name = parent.trimmed().toStdString(); FolderNames::isName(name))
            theme.parents.push_back(std::move(name));
    std::vector<std::pair<int, std::string>> found;
    for (const auto &folder : index->words(mainGroup, "Directories").mid(0, mostFolders))
        if (const int merit = leadsBelow(folder) ? meritOf(*index, folder) : 0; merit > 0)
            found.emplace_back(merit, folder.toStdString());
    std::ranges::stable_sort(found, std::ranges::greater(), &std::pair<int, std::string>::first);
    for (auto &[merit, folder] : found)
        theme.folders.push_back(std::move(folder));
    return theme;
}

} // namespace Quillbrook
