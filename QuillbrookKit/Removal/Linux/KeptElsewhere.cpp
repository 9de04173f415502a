#include "Removal/Linux/KeptElsewhere.h"

#include "Platform/Linux/Folders/ResolvedPath.h"

#include <algorithm>
#include <chrono>
#include <mutex>
#include <sys/stat.h>

namespace Quillbrook {

namespace {

using Watch = std::chrono::steady_clock;

constexpr std::chrono::milliseconds goodFor{ 250 };

// Absent for what is no link, or leads nowhere.
std::optional<KeptLink> linkOf(const KeptPlace &place)
{
    struct stat status = {};
    if (::lstat(place.path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode))
        return std::nullopt;
    auto target = ResolvedPath::withoutLinks(place.path + "/.");
    while (target.ends_with("/."))
        target.resize(target.size() - 2);
    const bool isElsewhere = target.starts_with('/') && target != place.path;
    return isElsewhere ? std::optional(KeptLink{ .name = place.name, .target = target }) : std::nullopt;
}

struct Answer
{
    std::mutex lock{};
    std::optional<Watch::time_point> asked{};
    std::vector<KeptLink> links{};
};

bool isWithin(const std::string &path, const std::string &folder)
{
    return path.starts_with(folder)
        && (path.size() == folder.size() || folder.ends_with('/') || path[folder.size()] == '/');
}

// What follows `folder`, with its slash; nothing for the folder itself.
std::string after(const std::string &path, const std::string &folder)
{
    return folder == "/" ? path : path.substr(folder.size());
}

std::string joined(const std::string &folder, const std::string &rest)
{
    return (folder == "/" ? std::string() : folder) + (rest == "/" ? std::string() : rest);
}

} // namespace

std::function<std::vector<KeptLink>()> keptLinks(std::vector<KeptPlace> places)
{
    return [places = std::move(places), answer = std::make_shared<Answer>()] {
        const std::lock_guard lock(answer->lock);
        const auto now = Watch::now();
        if (!answer->asked || now - *answer->asked > goodFor) {
            answer->asked = now;
            answer->links.clear();
            for (const auto &place : places)
                if (auto link = linkOf(place))
                    answer->links.push_back(*std::move(link));
        }
        return answer->links;
    };
}

std::vector<std::string> otherMountsOf(const std::string &home, const std::vector<Mount> &mounts)
{
    // Of several at one place the last hides the others.
    const Mount *own = nullptr;
    for (const auto &mount : mounts)
        if (isWithin(home, mount.mountPoint)
            && (own == nullptr || mount.mountPoint.size() >= own->mountPoint.size()))
            own = &mount;
    if (own == nullptr)
        return {};
    const auto onDisk = joined(own->root, after(home, own->mountPoint));
    std::vector<std::string> others;
    for (const auto &mount : mounts) {
        if (mount.device != own->device || !isWithin(onDisk, mount.root))
            continue;
        auto other = joined(mount.mountPoint, after(onDisk, mount.root));
        if (other != home)
            others.push_back(std::move(other));
    }
    return others;
}

} // namespace Quillbrook
