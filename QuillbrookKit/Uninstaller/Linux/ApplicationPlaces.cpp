#include "Uninstaller/Linux/ApplicationPlaces.h"

#include "Platform/HomeFolder.h"
#include "Platform/Linux/Folders/LinuxBaseFolders.h"
#include "StandardisedPath.h"

#include <QFile>
#include <QProcessEnvironment>

#include <algorithm>
#include <unistd.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

std::string raw(const QString &text)
{
    return QFile::encodeName(text).toStdString();
}

// The absolute paths of a list with colons between; `otherwise` where it is empty.
std::vector<std::string> folders(const QString &list, const QString &otherwise)
{
    std::vector<std::string> found;
    for (const auto &folder : (list.isEmpty() ? otherwise : list).split(u':', Qt::SkipEmptyParts)) {
        if (!folder.startsWith(u'/'))
            continue;
        const auto path = standardisedPath(raw(folder), std::string());
        if (std::ranges::find(found, path) == found.end())
            found.push_back(path);
    }
    return found;
}

std::string either(const QString &variable, const std::string &usual)
{
    return variable.startsWith(u'/') ? standardisedPath(raw(variable), std::string()) : usual;
}

std::string executable()
{
    std::string path(4096, '\0');
    const auto length = ::readlink("/proc/self/exe", path.data(), path.size());
    return length > 0 ? path.substr(0, static_cast<size_t>(length)) : std::string();
}

} // namespace

ApplicationPlaces ApplicationPlaces::ofThisUser(
    const HomeFolder &home, const QProcessEnvironment &environment)
{
    const auto own = home.rawRealHomeDirectory();
    const auto bases = LinuxBaseFolders::of(environment);
    const auto base = [&](const std::optional<QString> &moved, const char *usual) {
        return moved ? raw(*moved) : own + usual;
    };
    ApplicationPlaces places{ .home = own,
        .data = base(bases.data, "/.local/share"),
        .config = base(bases.config, "/.config"),
        .cache = base(bases.cache, "/.cache"),
        .state = base(bases.state, "/.local/state"),
        .systemData = folders(environment.value(u"XDG_DATA_DIRS"_s), u"/usr/local/share:/usr/share"_s),
        .systemFlatpak = either(environment.value(u"FLATPAK_SYSTEM_DIR"_s), "/var/lib/flatpak"),
        .snapd = "/var/lib/snapd",
        .snaps = "/snap",
        .programs = folders(environment.value(u"PATH"_s), u"/usr/local/bin:/usr/bin:/bin"_s),
        .systemConfig = "/etc",
        .systemState = "/var/lib",
        .dpkgQuery = "/usr/bin/dpkg-query",
        .rpm = "/usr/bin/rpm",
        .flatpak = "/usr/bin/flatpak",
        .lastIconThemes = { "Adwaita", "breeze" },
        .desktops = environment.value(u"XDG_CURRENT_DESKTOP"_s).split(u':', Qt::SkipEmptyParts) };
    places.userFlatpak = either(environment.value(u"FLATPAK_USER_DIR"_s), places.data + "/flatpak");
    if (const auto path = executable(); !path.empty())
        places.ownFiles.push_back(path);
    if (const auto image = environment.value(u"APPIMAGE"_s); image.startsWith(u'/'))
        places.ownFiles.push_back(raw(image));
    return places;
}

} // namespace Quillbrook
