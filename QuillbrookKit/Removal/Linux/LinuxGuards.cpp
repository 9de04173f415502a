#include "Removal/Linux/LinuxGuards.h"

#include "Platform/HomeFolder.h"
#include "Platform/Linux/Folders/LinuxBaseFolders.h"
#include "Platform/Linux/Folders/LinuxUserFolders.h"
#include "Platform/Linux/Folders/ResolvedPath.h"
#include "Platform/Linux/Folders/WatchedMounts.h"
#include "RawText.h"
#include "Removal/Linux/KeptElsewhere.h"
#include "Removal/PathGuards.h"
#include "StandardisedPath.h"

#include <QCoreApplication>
#include <QProcessEnvironment>
#include <QStandardPaths>

#include <algorithm>
#include <array>
#include <memory>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Quillbrook::LinuxGuards {

using namespace Qt::StringLiterals;

namespace {

using Named = std::optional<std::string>;
using Names = std::span<const std::string_view>;

constexpr std::array<std::string_view, 23> systemRoots{ "/boot", "/efi", "/usr", "/bin", "/sbin", "/lib",
    "/lib32", "/lib64", "/libx32", "/etc", "/var", "/srv", "/root", "/proc", "/sys", "/dev", "/run",
    "/ostree", "/sysroot", "/lost+found", "/swapfile", "/swap.img", "/swap" };
constexpr std::array<std::string_view, 4> systemFolders{ "/tmp", "/media", "/mnt", "/run/media" };
constexpr std::array<std::string_view, 9> homeFolders{ "Desktop", "Documents", "Downloads", "Music",
    "Pictures", "Public", "Templates", "Videos", "Applications" };
constexpr std::array<std::string_view, 10> appFolders{ ".config", ".local", ".local/share", ".local/state",
    ".local/bin", ".local/lib", ".cache", ".var", ".var/app", "snap" };
constexpr std::array<std::string_view, 19> keys{ ".ssh", ".gnupg", ".pki", ".password-store",
    ".local/share/keyrings", ".local/share/kwalletd", ".local/share/pass", ".config/Bitwarden",
    ".config/1Password", ".config/keepassxc", ".config/sops", ".config/rclone", ".config/gh",
    ".config/gcloud", ".aws", ".azure", ".kube", ".netrc", ".git-credentials" };
// Beside other things, in a folder that no other row keeps.
constexpr std::string_view dockerFolder = ".docker";
constexpr std::string_view dockerKeys = ".docker/config.json";
constexpr std::array<std::string_view, 7> wallets{ ".bitcoin", ".litecoin", ".ethereum", ".bitmonero",
    ".electrum", ".config/Exodus", "Monero" };
constexpr std::array<std::string_view, 3> encryptedFolders{ ".Private", ".ecryptfs", ".fscrypt" };
constexpr std::array<std::string_view, 8> sharedFolders{ "Dropbox", "Nextcloud", "ownCloud", "OneDrive",
    "MEGA", "Insync", "Seafile", "pCloudDrive" };
constexpr std::array<std::string_view, 4> containers{ ".local/share/containers", ".local/share/docker",
    ".docker/desktop", ".local/share/waydroid" };
constexpr std::array<std::string_view, 2> packageFolders{ "Calibre Library", "Zotero" };
constexpr std::array<QStringView, 7> machineEndings{ u"qcow2", u"qcow", u"vdi", u"vmdk", u"vhd", u"vhdx",
    u"vbox" };
constexpr std::array<std::string_view, 2> windowsFolders{ "drive_c", "pfx" };
constexpr std::array<std::string_view, 5> trashParts{ "", "files", "info", "expunged", "directorysizes" };

Named when(bool holds)
{
    return holds ? Named(std::in_place) : std::nullopt;
}

Named firstOf(Names names, const std::function<bool(std::string_view)> &holds)
{
    const auto found = std::ranges::find_if(names, holds);
    return found != names.end() ? Named(*found) : std::nullopt;
}

auto restWithinOneOf(Names names)
{
    return [names](const GuardedPath &path) {
        return firstOf(names, [&](auto name) { return path.restIsWithin(name); });
    };
}

std::string_view firstComponent(std::string_view rest)
{
    return rest.substr(0, rest.find('/'));
}

// How many names follow `folder`; 0 for itself and for what is not below it.
std::ptrdiff_t depthBelow(const GuardedPath &path, const std::string &folder)
{
    return path.isWithin(folder) ? std::ranges::count(path.path.substr(folder.size()), '/') : 0;
}

Named systemRoot(const GuardedPath &path)
{
    if (!path.fearsSystemRoots || path.isWithin("/run/media"))
        return std::nullopt;
    return firstOf(systemRoots, [&](auto root) { return path.isWithin(root); });
}

Named someoneElsesHome(const GuardedPath &path)
{
    const bool isBelowHomes = depthBelow(path, "/home") > 0 || depthBelow(path, "/var/home") > 0;
    return when(isBelowHomes && !path.isHome && !path.rest);
}

bool isWholeDrive(const GuardedPath &path, const Places &host)
{
    const auto deepest = [&](const std::string &folder, std::ptrdiff_t depth) {
        const auto found = depthBelow(path, folder);
        return found >= 1 && found <= depth;
    };
    return deepest("/run/media", 2) || deepest("/media", 1) || deepest("/mnt", 1)
        || (!host.userName.empty() && deepest("/media/" + host.userName, 1))
        || (host.isMountPoint && host.isMountPoint(path.path));
}

// What follows the home folder, where it lies in that.
std::string shortened(const std::string &folder, const GuardedPath &path)
{
    const auto home = path.path.substr(0, path.path.size() - path.rest.value_or(path.path).size());
    return folder.starts_with(home) ? folder.substr(home.size()) : folder;
}

// What holds one of them would take it along.
Named userFolder(const GuardedPath &path, const Places &host)
{
    for (const auto &folder : host.userFolders)
        if (path.path == folder || path.holds(folder))
            return shortened(folder, path);
    return firstOf(homeFolders, [&](auto name) { return path.restIs(name); });
}

Named keyFolder(const GuardedPath &path)
{
    const bool isDocker = path.restIs(dockerFolder) || path.restIsWithin(dockerKeys);
    return isDocker ? Named(dockerKeys) : restWithinOneOf(keys)(path);
}

Named sharedFolder(const GuardedPath &path)
{
    const auto found = restWithinOneOf(sharedFolders)(path);
    return found ? Named(firstComponent(*path.rest)) : std::nullopt;
}

Named componentOf(const GuardedPath &path, Names names)
{
    const auto components = path.components();
    const auto found = std::ranges::find_if(
        components, [&](auto component) { return std::ranges::find(names, component) != names.end(); });
    return found != components.end() ? Named(*found) : std::nullopt;
}

bool isAppImageFolder(std::string_view name)
{
    return GuardedPath::extension(name) == u"appdir";
}

Named insidePackage(const GuardedPath &path)
{
    const auto components = path.components();
    const auto found = std::ranges::find_if(components, isAppImageFolder);
    return found != components.end() ? Named(*found) : restWithinOneOf(packageFolders)(path);
}

// The folder at the top of a drive in which everyone has a trash, and the trashes of others there.
bool isTrashOfOthers(const GuardedPath &path, const Places &host)
{
    const auto name = path.lastComponent();
    const auto folder = path.path.substr(0, path.path.size() - name.size());
    constexpr std::string_view shared = "/.Trash/";
    const bool isTrash = name == ".Trash" || name.starts_with(".Trash-");
    const auto top = isTrash       ? folder
        : folder.ends_with(shared) ? folder.substr(0, folder.size() - shared.size() + 1)
                                   : std::string();
    if (top.empty() || !host.isMountPoint)
        return false;
    return host.isMountPoint(top == "/" ? top : top.substr(0, top.size() - 1));
}

Named trashItself(const GuardedPath &path, const Places &host)
{
    const auto position = host.trashes.position(path.path);
    const bool isPart = position && std::ranges::find(trashParts, position->inner) != trashParts.end();
    return when(isPart || path.holds(host.trashes.homeTrash) || (!position && isTrashOfOthers(path, host)));
}

bool holdsHome(const GuardedPath &path, const Places &host)
{
    const auto isHeld = [&](const std::string &home) { return path.holds(home); };
    return std::ranges::any_of(host.homes, isHeld)
        || (host.otherMountsOfHome && std::ranges::any_of(host.otherMountsOfHome(), isHeld));
}

// What the tables above keep, by where it is expected.
std::vector<KeptPlace> keptPlaces(const Places &host)
{
    std::vector<KeptPlace> places;
    for (const auto &home : host.homes)
        for (const auto names : { Names(PathGuards::homeSkeleton), Names(homeFolders), Names(appFolders),
                 Names(keys), Names(wallets), Names(encryptedFolders), Names(sharedFolders),
                 Names(containers), Names(packageFolders), Names(&dockerFolder, 1), Names(&dockerKeys, 1) })
            for (const auto name : names)
                places.push_back({ .name = std::string(name), .path = home + '/' + std::string(name) });
    for (const auto *folders : { &host.userFolders, &host.ownFolders })
        for (const auto &folder : *folders)
            places.push_back({ .name = folder.substr(folder.rfind('/') + 1), .path = folder });
    places.push_back({ .name = "Trash", .path = host.trashes.homeTrash });
    return places;
}

Named keptBehindALink(const GuardedPath &path, const std::vector<KeptLink> &links)
{
    const auto found = std::ranges::find_if(links, [&](const KeptLink &link) {
        const auto target = GuardedPath::composed(link.target);
        return path.path == target || path.holds(target);
    });
    return found != links.end() ? Named(found->name) : std::nullopt;
}

bool isProgramItself(const GuardedPath &path, const Places &host)
{
    return std::ranges::any_of(host.programFiles, [&](const auto &file) {
        return path.path == file || path.holds(file);
    }) || std::ranges::any_of(host.ownFolders, [&](const auto &folder) { return path.isWithin(folder); });
}

std::string userName()
{
    const auto *entry = ::getpwuid(::getuid()); // NOLINT(concurrency-mt-unsafe): asked once, at the start
    return entry != nullptr ? entry->pw_name : std::string();
}

// Where the disk of a home folder is mounted in two places, or knows no letter case, a path may lead into it
// that looks like none of its own. `path` has no links on the way.
std::string throughHome(std::string path, const std::vector<std::string> &homes)
{
    const GuardedPath judged{ .path = path };
    struct stat home = {};
    if (std::ranges::any_of(homes, [&](const auto &each) { return judged.isWithin(each); }) || homes.empty()
        || ::stat(homes.front().c_str(), &home) != 0)
        return path;
    for (auto end = path.find('/', 1);; end = path.find('/', end + 1)) {
        struct stat folder = {};
        const bool isThere = ::lstat(path.substr(0, end).c_str(), &folder) == 0;
        if (isThere && folder.st_dev == home.st_dev && folder.st_ino == home.st_ino)
            return homes.front() + path.substr(std::min(end, path.size()));
        if (!isThere || end == std::string::npos)
            return path;
    }
}

bool isMountPoint(const std::vector<Mount> &mounts, const std::string &path)
{
    return std::ranges::any_of(mounts, [&](const Mount &mount) { return mount.mountPoint == path; });
}

// The desktop names them as text, in which bytes of the home folder's own path may have been repaired.
std::vector<std::string> userFolders(const FileReading &reading, const std::string &home)
{
    const auto text = repairedText(home);
    const auto config = LinuxBaseFolders::of(QProcessEnvironment::systemEnvironment()).config;
    const auto settings = rawPathBelow(home, config.value_or(text + u"/.config"_s));
    std::vector<std::string> folders;
    for (const auto &folder : LinuxUserFolders::read(reading, settings, text).all())
        folders.push_back(rawPathBelow(home, folder));
    return folders;
}

} // namespace

Places places(const HomeFolder &home, const FileReading &reading)
{
    const auto homePath = home.rawRealHomeDirectory();
    const auto watched = std::make_shared<WatchedMounts>();
    Places host{ .userName = userName(),
        .homes = { homePath, ResolvedPath::withoutLinks(homePath + "/.") },
        .trashes = TrashPlaces::ofThisUser(home),
        .isMountPoint =
            [watched](const std::string &path) {
                const auto mounts = watched->now();
                return *mounts && isMountPoint(**mounts, path);
            },
        .otherMountsOfHome =
            [watched, home = ResolvedPath::withoutLinks(homePath + "/.")] {
                const auto mounts = watched->now();
                return *mounts ? otherMountsOf(home, **mounts) : std::vector<std::string>();
            } };
    for (const auto &folder : userFolders(reading, homePath))
        host.userFolders.push_back(GuardedPath::composed(folder));
    host.programFiles.push_back(QCoreApplication::applicationFilePath().toStdString());
    if (const auto image = qEnvironmentVariable("APPIMAGE"); image.startsWith(u'/'))
        host.programFiles.push_back(standardisedPath(image.toStdString(), {}));
    for (const auto place : { QStandardPaths::GenericDataLocation, QStandardPaths::GenericConfigLocation })
        host.ownFolders.push_back((QStandardPaths::writableLocation(place) + u"/Quillbrook"_s).toStdString());
    host.ownFolders.push_back(homePath + "/.var/app/com.tarnwick.Quillbrook");
    return host;
}

HostGuards guards(const Places &places)
{
    const auto host = std::make_shared<const Places>(places);
    const auto links = keptLinks(keptPlaces(*host));
    const auto notInHome = [](std::string_view root) {
        return [root](const GuardedPath &path) { return when(path.fearsSystemRoots && path.isWithin(root)); };
    };
    return {
        .guards = {
            {
                .names = [](const GuardedPath &path) { return when(path.path == "/home" || path.path == "/var/home"); },
                .sentence = u"That holds the home folders of everyone on this computer."_s,
            },
            {
                .names = [host](const GuardedPath &path) { return when(holdsHome(path, *host)); },
                .sentence = u"That holds your home folder."_s,
            },
            {
                .names = someoneElsesHome,
                .sentence = u"That is in someone else's home folder."_s,
            },
            {
                .names = notInHome("/nix"),
                .sentence = u"{path} belongs to Nix, which keeps its own record of what is in use. Let Nix clear what it no longer needs."_s,
            },
            {
                .names = notInHome("/gnu"),
                .sentence = u"{path} belongs to Guix, which keeps its own record of what is in use. Let Guix clear what it no longer needs."_s,
            },
            {
                .names = notInHome("/snap"),
                .sentence = u"{path} belongs to Snap. Remove the app in your app store, and its space comes back."_s,
            },
            {
                .names = notInHome("/opt"),
                .sentence = u"{path} is an app installed for everyone on this computer. Remove it the way it was installed."_s,
            },
            {
                .names = [host](const GuardedPath &path) { return when(isWholeDrive(path, *host)); },
                .sentence = u"That is an entire drive, not something on it."_s,
            },
            {
                .names = systemRoot,
                .sentence = u"{path} belongs to the system. Quillbrook does not remove anything inside {named}."_s,
            },
            {
                .names = [](const GuardedPath &path) { return firstOf(systemFolders, [&](auto folder) { return path.path == folder; }); },
                .sentence = u"{name} is one of the system's own folders. Quillbrook can clear things inside it, but will not remove the folder itself."_s,
            },
            {
                .names = [host](const GuardedPath &path) { return userFolder(path, *host); },
                .sentence = u"{named} is one of your home folder's own folders. Quillbrook can clear things inside it, but will not remove the folder itself."_s,
            },
            {
                .names = [](const GuardedPath &path) { return firstOf(appFolders, [&](auto name) { return path.restIs(name); }); },
                .sentence = u"{named} is where all your apps keep their things. Quillbrook can clear things inside it, but will not remove the folder itself."_s,
            },
            {
                .names = keyFolder,
                .sentence = u"That is where your keys and passwords are kept. Losing them can lock you out for good, so Quillbrook leaves them alone."_s,
            },
            {
                .names = [](const GuardedPath &path) { return when(GuardedPath::extension(path.lastComponent()) == u"kdbx"); },
                .sentence = u"{name} is a password safe. Losing it can lock you out for good, so Quillbrook leaves it alone."_s,
            },
            {
                .names = restWithinOneOf(wallets),
                .sentence = u"That can hold a digital wallet. Whatever is in it would be gone for good, so Quillbrook leaves it alone."_s,
            },
            {
                .names = restWithinOneOf(encryptedFolders),
                .sentence = u"That is where your encrypted files are really kept. Taking a piece out makes them unreadable."_s,
            },
            {
                .names = sharedFolder,
                .sentence = u"That is in {named}, which is shared with your other devices. Removing it here removes it there too, so it is not Quillbrook's to take."_s,
            },
            {
                .names = [](const GuardedPath &path) { return when(path.restIsWithin(".gvfs")); },
                .sentence = u"That lives on another computer or belongs to another app. It takes no space here."_s,
            },
            {
                .names = [host](const GuardedPath &path) { return trashItself(path, *host); },
                .sentence = u"That is the Trash itself. Empty it instead, and the space comes back."_s,
            },
            {
                .names = [host](const GuardedPath &path) { return when(host->trashes.position(path.path).has_value()); },
                .sentence = u"That is already in the Trash. Empty the Trash to get the space back."_s,
            },
            {
                .names = [](const GuardedPath &path) { return when(path.restIsWithin(".local/share/flatpak")); },
                .sentence = u"{path} belongs to Flatpak, which keeps its own record of what is installed. Remove the app in your app store instead."_s,
            },
            {
                .names = restWithinOneOf(containers),
                .sentence = u"That is where containers are kept. Taking a piece out breaks them, and a database in there may be the only copy. Remove containers with the app that made them."_s,
            },
            {
                .names = [](const GuardedPath &path) { return when(std::ranges::find(machineEndings, QStringView(GuardedPath::extension(path.lastComponent()))) != machineEndings.end()); },
                .sentence = u"{name} is part of a virtual machine. Remove the machine in the app that made it."_s,
            },
            {
                .names = [](const GuardedPath &path) { return componentOf(path, windowsFolders); },
                .sentence = u"That is inside {named}, a Windows folder that programs depend on. Taking a piece out breaks them. Remove the program in the app that installed it."_s,
            },
            {
                .names = [](const GuardedPath &path) { return when(isAppImageFolder(path.lastComponent()) || firstOf(packageFolders, [&](auto name) { return path.restIs(name); })); },
                .sentence = PathGuards::packageSentence(),
            },
            {
                .names = insidePackage,
                .sentence = PathGuards::insidePackageSentence(),
            },
            {
                .names = [host](const GuardedPath &path) { return when(isProgramItself(path, *host)); },
                .sentence = u"That is Quillbrook itself."_s,
            },
            {
                .names = [links](const GuardedPath &path) { return keptBehindALink(path, links()); },
                .sentence = QCoreApplication::translate("LinuxGuards", "{named} is a link, and this is where it leads, or holds that. Quillbrook can clear things inside it, but will not remove the folder itself."),
            },
        },
        .sparesHomeFromSystemRoots = true,
        .withoutLinks = [host](const std::string &path) { return throughHome(ResolvedPath::withoutLinks(path), host->homes); },
        .inHome = [host](const std::string &path) { return throughHome(path, host->homes); },
        .keptTargets = [links] {
            std::vector<std::string> targets;
            for (const auto &link : links())
                targets.push_back(link.target);
            return targets;
        },
    };
}

} // namespace Quillbrook::LinuxGuards
