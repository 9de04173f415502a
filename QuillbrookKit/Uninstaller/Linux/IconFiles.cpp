#include "Uninstaller/Linux/IconFiles.h"

#include "Uninstaller/FolderNames.h"
#include "Uninstaller/Linux/ApplicationPlaces.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <filesystem>

namespace Quillbrook {

namespace fs = std::filesystem;

namespace {

constexpr std::array endings{ ".svg", ".png", ".xpm", ".jpg", ".ico" };
constexpr std::uintmax_t largestPicture = 8 * 1024 * 1024;
// Rows show icons of half this size, on a dense screen of this one.
constexpr int bestSize = 64;
constexpr int meritOfOutlines = 10'000;
constexpr int meritOfLarge = 5000;

bool isPicture(const std::string &path)
{
    std::error_code error;
    const auto isKnown = [&](const char *ending) { return path.ends_with(ending); };
    return std::ranges::any_of(endings, isKnown) && fs::is_regular_file(path, error)
        && fs::file_size(path, error) <= largestPicture && !error;
}

// "64x64" or "scalable"; 0 for what holds no icons of applications.
int merit(const std::string &folder)
{
    if (folder == "scalable")
        return meritOfOutlines;
    const int size = std::atoi(folder.c_str());
    return size >= bestSize ? std::max(meritOfLarge - size, 1) : std::max(size, 0);
}

} // namespace

IconFiles::IconFiles(const ApplicationPlaces &places)
{
    std::vector<std::string> bases{ places.data, places.userFlatpak + "/exports/share",
        places.systemFlatpak + "/exports/share", places.snapd + "/desktop" };
    bases.insert(bases.end(), places.systemData.begin(), places.systemData.end());
    for (const auto &base : bases) {
        for (const auto &size : FolderNames::in(base + "/icons/hicolor"))
            if (const int worth = merit(size); worth > 0)
                add(base + "/icons/hicolor/" + size + "/apps", worth);
        add(base + "/pixmaps", 1);
        for (const auto &theme : places.iconThemes)
            for (const auto *below :
                { "/scalable/apps", "/apps/64", "/apps/48", "/64x64/apps", "/48x48/apps" })
                m_themes.push_back(base + "/icons/" + theme + below);
    }
}

void IconFiles::add(const std::string &folder, int merit)
{
    for (const auto &name : FolderNames::in(folder)) {
        const auto dot = name.rfind('.');
        if (dot == std::string::npos || dot == 0)
            continue;
        auto &best = m_found[name.substr(0, dot)];
        if (merit > best.merit)
            best = { .path = folder + '/' + name, .merit = merit };
    }
}

std::string IconFiles::file(const QString &icon) const
{
    const auto raw = QFile::encodeName(icon).toStdString();
    if (raw.starts_with('/'))
        return isPicture(raw) ? raw : std::string();
    if (!FolderNames::isName(raw))
        return {};
    // Some name a file.
    const auto dot = raw.rfind('.');
    for (const auto &name : { raw, dot == std::string::npos ? raw : raw.substr(0, dot) })
        if (const auto found = m_found.find(name); found != m_found.end() && isPicture(found->second.path))
            return found->second.path;
    for (const auto &folder : m_themes)
        for (const auto *ending : { ".svg", ".png" })
            if (const auto path = folder + '/' + raw + ending; isPicture(path))
                return path;
    return {};
}

} // namespace Quillbrook
