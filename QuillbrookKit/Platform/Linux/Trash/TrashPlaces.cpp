#include "Platform/Linux/Trash/TrashPlaces.h"

#include "Platform/HomeFolder.h"
#include "Platform/Linux/Folders/LinuxHomeFolder.h"
#include "Platform/Linux/Folders/MountTable.h"
#include "Platform/Linux/Folders/ResolvedPath.h"
#include "StandardisedPath.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <unistd.h>

namespace Quillbrook {

namespace {

std::string environment(const char *name)
{
    const auto *value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nothing here sets any
    return value != nullptr ? value : "";
}

std::optional<TrashPlaces::Position> within(const std::string &path, const std::string &trash)
{
    if (trash.empty() || !path.starts_with(trash))
        return std::nullopt;
    if (path.size() == trash.size())
        return TrashPlaces::Position{ .trash = trash };
    if (path[trash.size()] != '/')
        return std::nullopt;
    return TrashPlaces::Position{ .trash = trash, .inner = path.substr(trash.size() + 1) };
}

// Only at the top of a volume does such a folder mean anything: elsewhere it is a copy of one.
bool isTopOfVolume(const std::string &folder)
{
    const auto mounts = MountTable::read();
    return !mounts
        || std::ranges::any_of(*mounts, [&](const Mount &mount) { return mount.mountPoint == folder; });
}

} // namespace

TrashPlaces TrashPlaces::ofThisUser(const HomeFolder &home)
{
    // In a sandbox the usual variable tells of its own folder, where nobody would look for what was thrown
    // away, and which goes with the program.
    std::string data;
    if (!isStrictSnap(QProcessEnvironment::systemEnvironment()))
        data = environment(environment("FLATPAK_ID").empty() ? "XDG_DATA_HOME" : "HOST_XDG_DATA_HOME");
    if (!data.starts_with('/'))
        data = home.rawRealHomeDirectory() + "/.local/share";
    return { .homeTrash = standardisedPath(data + "/Trash", {}), .user = ::getuid() };
}

std::optional<TrashPlaces::Position> TrashPlaces::position(const std::string &path) const
{
    if (auto found = within(path, homeTrash))
        return found;
    if (auto found = within(path, ResolvedPath::withoutLinks(homeTrash)))
        return Position{ .trash = homeTrash, .inner = found->inner };
    for (const auto &name : namesOnVolumes()) {
        for (auto start = path.find(name); start != std::string::npos; start = path.find(name, start + 1)) {
            auto found = within(path, path.substr(0, start + name.size()));
            if (found && isTopOfVolume(start == 0 ? "/" : path.substr(0, start)))
                return found;
        }
    }
    return std::nullopt;
}

bool TrashPlaces::isOnAbsentVolume(const std::string &path) const
{
    return std::ranges::any_of(namesOnVolumes(), [&path](const auto &name) {
        return path.contains(name + '/');
    }) && !position(path);
}

std::array<std::string, 2> TrashPlaces::namesOnVolumes() const
{
    return { '/' + ownTrashName(), "/.Trash/" + userName() };
}

} // namespace Quillbrook
