#include "Uninstaller/Linux/LinuxLeftovers.h"

#include "Uninstaller/FolderNames.h"

#include <algorithm>
#include <array>

namespace Quillbrook::LinuxLeftovers {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype piecesForStart = 3;

// Names that no single application owns in the user's folders, in lower case. Many a program is called "run".
constexpr std::array sharedNames{ u"app", u"application", u"applications", u"apprun", u"autostart",
    u"backgrounds", u"bash", u"bash-completion", u"bin", u"cache", u"config", u"containers", u"cups", u"data",
    u"dbus-1", u"dconf", u"desktop", u"desktop-directories", u"doc", u"environment.d", u"fish", u"flatpak",
    u"fontconfig", u"fonts", u"gconf", u"gdm", u"git", u"glib-2.0", u"gnome", u"gnome-session",
    u"gnome-shell", u"goa-1.0", u"gstreamer-1.0", u"gui", u"gtk-2.0", u"gtk-3.0", u"gtk-4.0", u"gvfs",
    u"gvfs-metadata", u"icc", u"icons", u"ibus", u"info", u"kde", u"kdedefaults", u"keyrings",
    u"kglobalaccel", u"kwalletd", u"kwin", u"launch", u"launcher", u"lib", u"locale", u"local", u"main",
    u"man", u"menus", u"mesa_shader_cache", u"mime", u"mimeapps.list", u"pipewire", u"pixmaps", u"plasma",
    u"plasmashell", u"program", u"pulse", u"qt5ct", u"qt6ct", u"quillbrook", u"recently-used.xbel", u"run",
    u"session", u"share", u"sounds", u"start", u"state", u"system", u"systemd", u"themes", u"thumbnails",
    u"tmp", u"tracker3", u"trash", u"user-dirs.dirs", u"user-dirs.locale", u"user-places.xbel", u"vulkan",
    u"wallpapers", u"wireplumber", u"xdg-desktop-portal", u"xfce4", u"xorg", u"zsh" };

// Programs that start others, or in which others run, in lower case and without a version behind them.
constexpr std::array launchers{ u"appimagelauncher", u"appimagelauncherd", u"ash", u"bash", u"bottles",
    u"bottles-cli", u"brave", u"brave-browser", u"bun", u"bwrap", u"cargo", u"chrome", u"chromium",
    u"chromium-browser", u"dash", u"dbus-launch", u"deno", u"distrobox", u"distrobox-enter", u"docker",
    u"dotnet", u"electron", u"env", u"epiphany", u"exec", u"falkon", u"firefox", u"firefox-esr", u"firejail",
    u"fish", u"flatpak", u"flatpak-run", u"gamemoderun", u"gamescope", u"gapplication", u"gio", u"gjs",
    u"gnome-terminal", u"google-chrome", u"google-chrome-beta", u"google-chrome-stable", u"gtk-launch",
    u"guile", u"heroic", u"ionice", u"java", u"javaw", u"julia", u"kde-open", u"kioclient", u"konqueror",
    u"konsole", u"ksh", u"librewolf", u"lua", u"lutris", u"mangohud", u"microsoft-edge",
    u"microsoft-edge-stable", u"mono", u"msedge", u"nice", u"node", u"nodejs", u"nohup", u"npm", u"npx",
    u"opera", u"optirun", u"perl", u"php", u"pipx", u"pkexec", u"podman", u"prime-run", u"primusrun",
    u"proxychains", u"pwsh", u"python", u"rscript", u"ruby", u"setsid", u"sh", u"snap", u"stdbuf", u"steam",
    u"steam-runtime", u"sudo", u"systemd-run", u"taskset", u"tclsh", u"timeout", u"toolbox", u"torsocks",
    u"umu-run", u"uv", u"uvx", u"vivaldi", u"vivaldi-stable", u"waterfox", u"waydroid", u"wine", u"wine64",
    u"wish", u"x-terminal-emulator", u"x-www-browser", u"xdg-open", u"xterm", u"xvfb-run", u"zsh" };

bool isIn(const auto &list, const QString &word)
{
    return std::ranges::any_of(list, [&](const char16_t *known) { return word == QStringView(known); });
}

bool isPlainWord(const QString &name)
{
    return std::ranges::all_of(name, [](QChar letter) { return letter.isLetterOrNumber(); });
}

bool isSame(const QString &one, const QString &other)
{
    return one.compare(other, Qt::CaseInsensitive) == 0;
}

// A name that says nothing of whose it is, or that forms no path.
bool isUsable(const QString &name)
{
    return FolderNames::isName(name.toStdString()) && !name.startsWith(u'.') && name.size() > 1
        && !isShared(name) && !isLauncher(name);
}

} // namespace

bool isShared(const QString &name)
{
    return isIn(sharedNames, name.toLower());
}

bool isLauncher(const QString &program)
{
    auto stem = program.toLower();
    if (isIn(launchers, stem))
        return true;
    while (!stem.isEmpty() && (stem.back().isDigit() || stem.back() == u'.' || stem.back() == u'-'))
        stem.chop(1);
    return isIn(launchers, stem);
}

bool isUsableId(const QString &id)
{
    return isUsable(id);
}

std::vector<std::string> usableNames(const InstalledApp &app)
{
    std::vector<std::string> names;
    const auto add = [&](const QString &name) {
        if (isUsable(name) && std::ranges::find(names, name.toStdString()) == names.end())
            names.push_back(name.toStdString());
    };
    const auto &name = app.app.name;
    // "Files" or "Settings" may be anybody's.
    const bool isOwnWord = isSame(name, app.app.bundleID) || isSame(name, app.programName);
    if (!isPlainWord(name) || isOwnWord) {
        add(name);
        if (isOwnWord)
            add(name.toLower());
    }
    add(app.programName);
    return names;
}

std::vector<Location> locations(const ApplicationPlaces &places)
{
    using enum LeftoverKind;
    std::vector<Location> table{
        { .directory = places.home + "/.var/app",
            .kind = container,
            .origins = { AppOrigin::flatpakOfUser, AppOrigin::flatpakOfSystem } },
        { .directory = places.home + "/snap", .kind = container, .origins = { AppOrigin::snap } },
        { .directory = places.data, .kind = supportFiles },
        { .directory = places.data, .kind = supportFiles, .byName = true },
        { .directory = places.config, .kind = preferences },
        { .directory = places.config, .kind = preferences, .byName = true },
        { .directory = places.config, .kind = preferences, .suffix = "rc", .byName = true },
        { .directory = places.config, .kind = preferences, .suffix = ".conf" },
        { .directory = places.config, .kind = preferences, .suffix = ".conf", .byName = true },
        { .directory = places.cache, .kind = cache },
        { .directory = places.cache, .kind = cache, .byName = true },
        { .directory = places.state, .kind = savedState },
        { .directory = places.state, .kind = savedState, .byName = true },
        { .directory = places.config + "/autostart", .kind = launchItem, .suffix = ".desktop" },
        { .directory = places.config + "/systemd/user",
            .kind = launchItem,
            .suffix = ".service",
            .byStart = true },
        { .directory = places.data + "/systemd/user",
            .kind = launchItem,
            .suffix = ".service",
            .byStart = true },
        { .directory = places.data + "/dbus-1/services", .kind = launchItem, .suffix = ".service" },
        { .directory = places.systemConfig + "/xdg/autostart",
            .kind = launchItem,
            .suffix = ".desktop",
            .needsAdministrator = true },
        { .directory = places.systemState, .kind = systemWide, .needsAdministrator = true },
        { .directory = places.systemConfig, .kind = systemWide, .byName = true, .needsAdministrator = true },
    };
    for (const auto &size : FolderNames::in(places.data + "/icons/hicolor"))
        for (const auto *ending : { ".png", ".svg", ".xpm" })
            table.push_back({ .directory = places.data + "/icons/hicolor/" + size + "/apps",
                .kind = supportFiles,
                .suffix = ending,
                .isPartOfApp = true });
    return table;
}

bool Claim::covers(const std::string &inDirectory, const std::string &entry) const
{
    if (directory != inDirectory)
        return false;
    return isStart ? entry.starts_with(name) && entry.ends_with(suffix) : entry == name;
}

std::vector<Claim> claims(const std::vector<Location> &table, const InstalledApp &app)
{
    const auto id = app.app.bundleID.toStdString();
    const bool isIdUsable = isUsableId(app.app.bundleID);
    const bool isIdLong = app.app.bundleID.split(u'.', Qt::SkipEmptyParts).size() >= piecesForStart;
    const auto names = usableNames(app);
    std::vector<Claim> found;
    for (const auto &location : table) {
        if (!location.origins.empty()
            && std::ranges::find(location.origins, app.origin) == location.origins.end())
            continue;
        const Claim claim{ .directory = location.directory,
            .kind = location.kind,
            .needsAdministrator = location.needsAdministrator,
            .isPartOfApp = location.isPartOfApp,
            .isByLongId = isIdLong && !location.byName };
        const auto add = [&](const std::string &key) {
            auto own = claim;
            own.name = key + location.suffix;
            found.push_back(std::move(own));
        };
        if (location.byName) {
            std::ranges::for_each(names, add);
        } else if (location.byStart && isIdUsable && isIdLong) {
            auto own = claim;
            own.name = id;
            own.suffix = location.suffix;
            own.isStart = true;
            found.push_back(std::move(own));
        } else if (isIdUsable) {
            add(id);
        }
    }
    return found;
}

} // namespace Quillbrook::LinuxLeftovers
