#include "Uninstaller/Linux/IconFiles.h"

#include "Platform/FileReading.h"
#include "Uninstaller/FolderNames.h"
#include "Uninstaller/Linux/ApplicationPlaces.h"
#include "Uninstaller/Linux/IconTheme.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>

namespace Quillbrook {

namespace fs = std::filesystem;

namespace {

constexpr std::array endings{ ".svg", ".png", ".xpm", ".jpg", ".ico" };
constexpr std::uintmax_t largestPicture = 8 * 1024 * 1024;
/// That all programs put their icons into, and that stands behind every other.
constexpr auto commonTheme = "hicolor";
/// Each name is looked for in every folder of a theme.
constexpr std::size_t mostThemes = 8;
constexpr int mostFolders = 6;

bool hasEnding(const std::string &name)
{
    return std::ranges::any_of(endings, [&](const char *ending) { return name.ends_with(ending); });
}

bool isPicture(const std::string &path)
{
    std::error_code error;
    return hasEnding(path) && fs::is_regular_file(path, error) && fs::file_size(path, error) <= largestPicture
        && !error;
}

// "64x64" or "scalable"; 0 for what holds no icons of applications.
int meritOfFolder(const std::string &name)
{
    return name == "scalable" ? meritOfIcons(1, true) : meritOfIcons(std::atoi(name.c_str()), false);
}

// Where programs put what they bring, the user's first.
std::vector<std::string> dataFolders(const ApplicationPlaces &places)
{
    std::vector<std::string> folders{ places.data, places.userFlatpak + "/exports/share",
        places.systemFlatpak + "/exports/share", places.snapd + "/desktop" };
    folders.insert(folders.end(), places.systemData.begin(), places.systemData.end());
    return folders;
}

class Themes
{
public:
    Themes(const FileReading &reading, const std::vector<std::string> &roots)
        : m_reading(reading)
        , m_roots(roots)
    {
    }

    // The folders of these themes and of those behind them, in the order in which they count.
    [[nodiscard]] std::vector<std::string> folders(std::vector<std::string> names) const
    {
        std::vector<std::string> found;
        for (std::size_t next = 0; next < names.size() && next < mostThemes; ++next) {
            const auto name = names[next];
            const auto theme = FolderNames::isName(name) ? index(name) : std::nullopt;
            if (!theme)
                continue;
            addFolders(found, name, *theme);
            for (const auto &parent : theme->parents)
                if (parent != commonTheme && std::ranges::find(names, parent) == names.end())
                    names.push_back(parent);
        }
        return found;
    }

private:
    // A theme may lie in several places. The first index counts.
    [[nodiscard]] std::optional<IconTheme> index(const std::string &name) const
    {
        for (const auto &root : m_roots)
            if (const auto text
                = m_reading.contents(root + '/' + name + "/index.theme", IconTheme::maximumBytes))
                return IconTheme::parse(*text);
        return std::nullopt;
    }

    void addFolders(std::vector<std::string> &found, const std::string &name, const IconTheme &theme) const
    {
        for (const auto &root : m_roots) {
            int count = 0;
            for (const auto &folder : theme.folders) {
                std::error_code error;
                auto path = root + '/' + name + '/' + folder;
                if (count < mostFolders && fs::is_directory(path, error)) {
                    found.push_back(std::move(path));
                    ++count;
                }
            }
        }
    }

    const FileReading &m_reading;
    const std::vector<std::string> &m_roots;
};

std::string inOneOf(const std::vector<std::string> &folders, const std::string &name)
{
    for (const auto &folder : folders)
        for (const auto *ending : { ".svg", ".png" })
            if (auto path = folder + '/' + name + ending; isPicture(path))
                return path;
    return {};
}

} // namespace

IconFiles::IconFiles(const FileReading &reading, const ApplicationPlaces &places)
{
    const auto data = dataFolders(places);
    std::vector<std::string> roots{ places.home + "/.icons" };
    for (const auto &folder : data)
        roots.push_back(folder + "/icons");
    for (const auto &root : roots) {
        const auto common = root + '/' + commonTheme;
        for (const auto &size : FolderNames::in(common))
            if (const int merit = meritOfFolder(size); merit > 0)
                add(common + '/' + size + "/apps", merit);
    }
    for (const auto &folder : data)
        add(folder + "/pixmaps", 1);
    const Themes themes(reading, roots);
    if (places.iconTheme != commonTheme)
        m_own = themes.folders({ places.iconTheme });
    m_last = themes.folders(places.lastIconThemes);
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
    std::vector<std::string> names{ raw };
    if (hasEnding(raw))
        names.push_back(raw.substr(0, raw.rfind('.')));
    for (const auto &name : names)
        if (auto path = inOneOf(m_own, name); !path.empty())
            return path;
    for (const auto &name : names)
        if (const auto found = m_found.find(name); found != m_found.end() && isPicture(found->second.path))
            return found->second.path;
    return inOneOf(m_last, raw);
}

} // namespace Quillbrook
