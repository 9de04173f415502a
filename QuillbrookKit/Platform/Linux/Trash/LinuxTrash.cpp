#include "Platform/Linux/Trash/LinuxTrash.h"

#include "Platform/Clock.h"
#include "Platform/Linux/Files/LinuxErrorText.h"
#include "Platform/Linux/Folders/ResolvedPath.h"
#include "Platform/Linux/Trash/CarefulRename.h"
#include "Platform/Linux/Trash/HeldThing.h"
#include "Platform/Linux/Trash/TrashNote.h"
#include "Platform/SpaceReserve.h"
#include "StandardisedPath.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <random>
#include <set>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr int placeFlags = O_PATH | O_DIRECTORY;
// Names that are taken are tried in order for so long, and then at random: a trash full of things of one name
// would be searched from its first for each new one.
constexpr std::uint64_t triesInOrder = 64;
constexpr std::uint64_t mostTries = 256;

bool isWithin(const std::string &path, const std::string &folder)
{
    return path.starts_with(folder)
        && (path.size() == folder.size() || folder.ends_with('/') || path[folder.size()] == '/');
}

// Behind a link ".." leads elsewhere than its text says.
bool climbs(const std::string &path)
{
    return (path + '/').find("/../") != std::string::npos;
}

std::string below(const std::string &folder, const std::string &name)
{
    return folder + (folder.ends_with('/') ? "" : "/") + name;
}

std::uint64_t randomNumber()
{
    static thread_local std::mt19937_64 numbers{ std::random_device()() };
    return numbers() >> 1U;
}

} // namespace

struct LinuxTrash::Thing
{
    HeldThing held{};
    MountedDevice device{};
    bool isMount = false;
    // Where it is without links on the way, and as the note tells it in a home trash.
    std::string path{};
    std::string origin{};
};

struct LinuxTrash::Journey
{
    const Thing &thing;
    const TrashOrder &order;
    TrashedThing arrived{};
    std::optional<QString> refusal{};
};

LinuxTrash::LinuxTrash(TrashPlaces places, SpaceReserve &reserve, const Clock &clock, const FileCalls &calls)
    : m_places(std::move(places))
    , m_reserve(reserve)
    , m_clock(clock)
    , m_calls(calls)
    , m_folders(m_places, calls)
{
}

std::expected<TrashedThing, QString> LinuxTrash::move(const std::string &path, const TrashOrder &order)
{
    const auto thing = thingAt(path);
    if (!thing)
        return std::unexpected(LinuxErrorText::sentence(thing.error()));
    if (const auto sentence = order.judge ? order.judge(thing->held.seen()) : std::nullopt)
        return std::unexpected(*sentence);
    if (const auto sentence = objection(*thing))
        return std::unexpected(*sentence);
    Journey journey{ .thing = *thing, .order = order };
    const auto error = withReserve([&] { return moveToTrash(journey); });
    if (journey.refusal)
        return std::unexpected(*journey.refusal);
    if (error != 0)
        return std::unexpected(LinuxErrorText::sentence(error == EXDEV ? ENOTSUP : error));
    return journey.arrived;
}

std::shared_ptr<void> LinuxTrash::hold()
{
    const std::scoped_lock lock(m_mutex);
    auto open = m_open.lock();
    if (!open) {
        open = std::make_shared<OpenTrash>();
        m_open = open;
    }
    return open;
}

std::shared_ptr<OpenTrash> LinuxTrash::open() const
{
    const std::scoped_lock lock(m_mutex);
    return m_open.lock();
}

void LinuxTrash::flush(const std::vector<std::string> &folders) const
{
    std::set<std::uint64_t> devices;
    for (const auto &path : folders) {
        const FileDescriptor folder(m_calls.openAt(AT_FDCWD, path.c_str(), O_RDONLY | O_DIRECTORY));
        struct statx status = {};
        if (folder.isOpen() && m_calls.statAt(folder.number(), "", AT_EMPTY_PATH, status) == 0
            && devices.insert(MountedDevice::of(status).device).second)
            std::ignore = m_calls.syncVolume(folder.number());
    }
}

bool LinuxTrash::holds(const std::string &path) const
{
    return m_places.position(standardisedPath(path, {}))
        || m_places.position(standardisedPath(ResolvedPath::withoutLinks(path), {}));
}

int LinuxTrash::withReserve(const std::function<int()> &attempt) const
{
    auto error = attempt();
    if (!LinuxErrorText::isLackOfSpace(error) || !m_reserve.release())
        return error;
    error = attempt();
    m_reserve.replenish();
    return error;
}

std::expected<LinuxTrash::Thing, int> LinuxTrash::thingAt(const std::string &path) const
{
    auto held = HeldThing::at(m_calls, path);
    if (!held)
        return std::unexpected(held.error());
    const auto device = MountedDevice::of(held->folderStatus);
    const auto &status = held->status;
    const bool isMountRoot
        = (status.stx_attributes & status.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) != 0;
    // A volume within the volume is a folder with a device of its own; files have such ones on some layered
    // file systems.
    const auto place = MountedDevice::of(status);
    const bool isMount
        = isMountRoot || place.mount != device.mount || (held->isFolder() && place.device != device.device);
    const auto resolved = held->path();
    return Thing{ .held = *std::move(held),
        .device = device,
        .isMount = isMount,
        .path = resolved,
        .origin = climbs(path) ? resolved : standardisedPath(path, {}) };
}

std::optional<QString> LinuxTrash::objection(const Thing &thing) const
{
    if (m_places.position(thing.path))
        return u"It is in the Trash already."_s;
    if (isWithin(m_places.homeTrash, thing.path))
        return u"The Trash itself lies in it."_s;
    if (thing.isMount)
        return u"It is a drive, or something else that is mounted."_s;
    if (!thing.held.isFolder())
        return std::nullopt;
    if (isWithin(ResolvedPath::withoutLinks(m_places.homeTrash), thing.path))
        return u"The Trash itself lies in it."_s;
    const auto mounts = m_calls.mounts();
    if (!mounts)
        return u"The system does not tell whether a drive is mounted in it."_s;
    const bool holdsMount = std::ranges::any_of(
        *mounts, [&](const Mount &mount) { return isWithin(mount.mountPoint, thing.path); });
    return holdsMount ? std::optional(u"A drive, or something else, is mounted in it."_s) : std::nullopt;
}

int LinuxTrash::moveToTrash(Journey &journey) const
{
    const auto device = journey.thing.device;
    const auto kept = open();
    if (auto trash = kept ? kept->take(device) : std::nullopt; trash && m_folders.isInPlace(*trash)) {
        const auto error = moveInto(*trash, journey);
        kept->giveBack(device, *std::move(trash));
        return error;
    }
    auto trash = m_folders.forDevice(device);
    if (!trash)
        return trash.error();
    const auto error = moveInto(*trash, journey);
    if (kept)
        kept->giveBack(device, *std::move(trash));
    return error;
}

int LinuxTrash::moveInto(const TrashFolder &trash, Journey &journey) const
{
    const auto &thing = journey.thing;
    const bool isRelative = !trash.top.empty() && isWithin(thing.path, trash.top);
    const auto relative = isRelative ? thing.path.substr(below(trash.top, "").size()) : thing.origin;
    const auto born = m_calls.keepsInodes(trash.files.number()) ? bornAt(thing.held.status) : 0;
    journey.arrived.identity = ThingIdentity{
        .inode = thing.held.status.stx_ino, .born = born, .note = TrashNote::text(relative, m_clock.now())
    };
    constexpr unsigned modeBits = 07777;
    const unsigned mode = thing.held.status.stx_mode;
    if (thing.held.isFolder() && (mode & S_IWUSR) == 0)
        journey.arrived.identity->mode = mode & modeBits;
    auto longest = TrashNote::longestName;
    for (std::uint64_t tries = 1; tries <= mostTries; ++tries) {
        const auto number = tries <= triesInOrder ? tries : randomNumber();
        const auto name = TrashNote::candidate(thing.held.name, number, longest);
        const auto error = take(trash, journey, name);
        if (error == ENAMETOOLONG && longest > TrashNote::longestEncryptedName) {
            longest = TrashNote::longestEncryptedName;
            continue;
        }
        if (error != EEXIST)
            return error;
    }
    return EEXIST;
}

// Under this one name: announced, noted, moved.
int LinuxTrash::take(const TrashFolder &trash, Journey &journey, const std::string &name) const
{
    const FolderPlace note{ .folder = trash.info.number(), .name = TrashNote::nameFor(name) };
    struct statx taken = {};
    // Only names that seem to be free are announced: a trash may hold many things of one name.
    if (m_calls.statAt(note.folder, note.name.c_str(), 0, taken) == 0)
        return EEXIST;
    journey.arrived.path = trash.path + "/files/" + name;
    const auto announced
        = journey.order.announce ? journey.order.announce(journey.arrived) : std::expected<void, QString>();
    if (!announced) {
        journey.refusal = announced.error();
        return ECANCELED;
    }
    if (const auto error = writeNote(note, journey.arrived.identity->note); error != 0)
        return error;
    const auto &held = journey.thing.held;
    const FolderPlace from{ .folder = held.folder.number(), .name = held.name };
    const FolderPlace to{ .folder = trash.files.number(), .name = name };
    auto error = CarefulRename::move(m_calls, from, to);
    struct statx moved = {};
    // The name may have been given to another thing since it was judged: that one goes back.
    if (error == 0 && m_calls.statAt(to.folder, to.name.c_str(), 0, moved) == 0
        && moved.stx_ino != held.status.stx_ino && CarefulRename::move(m_calls, to, from) == 0)
        error = ESTALE;
    if (error != 0)
        std::ignore = m_calls.unlinkAt(note.folder, note.name.c_str(), 0);
    return error;
}

int LinuxTrash::writeNote(const FolderPlace &note, const std::string &text) const
{
    constexpr mode_t ownerOnly = 0600;
    FileDescriptor file(
        m_calls.openAt(note.folder, note.name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, ownerOnly));
    if (!file.isOpen())
        return errno;
    int error = 0;
    for (size_t written = 0; error == 0 && written < text.size();) {
        const auto count = m_calls.write(file.number(), text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR)
            error = errno;
        if (count == 0)
            error = ENOSPC;
        if (count > 0)
            written += static_cast<size_t>(count);
    }
    // Some file systems tell only now that there was no room.
    if (m_calls.close(file.release()) != 0 && error == 0 && errno != EINTR)
        error = errno;
    if (error != 0)
        std::ignore = m_calls.unlinkAt(note.folder, note.name.c_str(), 0);
    return error;
}

} // namespace Quillbrook
