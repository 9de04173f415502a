#include "Platform/Linux/Trash/TreeEraser.h"

#include "Platform/Linux/Folders/MountedDevice.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <optional>
#include <string_view>

namespace Quillbrook {

namespace {

constexpr size_t mostOpenLevels = 32;
constexpr size_t bufferBytes = 32768;
// Each has to have deleted something: more only follows a program that keeps making new files.
constexpr int mostPasses = 16;
constexpr int mostRaces = 8;
constexpr int folderFlags = O_DIRECTORY | O_NOFOLLOW;
constexpr mode_t ownersRights = S_IRWXU;

struct Identity
{
    std::uint64_t device = 0;
    std::uint64_t inode = 0;

    bool operator==(const Identity &) const = default;
};

Identity identity(const struct statx &status)
{
    constexpr unsigned bitsOfMinor = 32;
    return { .device = (std::uint64_t{ status.stx_dev_major } << bitsOfMinor) | status.stx_dev_minor,
        .inode = status.stx_ino };
}

bool isDotEntry(const char *name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

bool isNotEmpty(int error)
{
    return error == ENOTEMPTY || error == EEXIST;
}

} // namespace

struct TreeEraser::Entry : dirent64
{
};

struct TreeEraser::Buffer
{
    size_t filled = 0;
    size_t offset = 0;
    alignas(dirent64) std::array<char, bufferBytes> bytes; // NOLINT: filled by the system
};

struct TreeEraser::Level
{
    std::string name{};
    // Closed, and without a buffer, where too many others are open below it.
    FileDescriptor folder{};
    std::unique_ptr<Buffer> buffer{};
    Identity identity{};
    // Where its listing goes on.
    off_t position = 0;
    int passes = 1;
    // In this pass.
    bool hasDeleted = false;
    // Something in it stays, so that it stays too.
    bool stays = false;
    // What it was before the owner was given all rights.
    std::optional<mode_t> modeBefore{};
};

TreeEraser::TreeEraser(const FileCalls &calls, int startFolder)
    : m_calls(calls)
    , m_start(startFolder)
{
}

TreeEraser::~TreeEraser() = default;

Erasure TreeEraser::erase(const char *name)
{
    struct statx status = {};
    m_result = {};
    if (m_calls.statAt(m_start, "", AT_EMPTY_PATH, status) != 0) {
        recordFailure(errno, nullptr);
        return m_result;
    }
    m_place = MountedDevice::of(status);
    const auto error = unlink(nullptr, name, 0);
    if (error == EISDIR)
        enter(name);
    else if (error != 0)
        recordFailure(error, nullptr);
    else
        ++m_result.removed;
    while (!m_levels.empty()) {
        if (const auto *entry = next(m_levels.back()))
            take(*entry);
        else
            leave();
    }
    return m_result;
}

const TreeEraser::Entry *TreeEraser::next(Level &level)
{
    if (!level.buffer) {
        level.buffer = m_spareBuffers.empty() ? std::make_unique<Buffer>() : std::move(m_spareBuffers.back());
        if (!m_spareBuffers.empty())
            m_spareBuffers.pop_back();
        level.buffer->filled = 0;
        level.buffer->offset = 0;
        if (m_calls.seek(level.folder.number(), level.position) < 0) {
            recordFailure(errno, nullptr);
            level.stays = true;
            return nullptr;
        }
    }
    auto &buffer = *level.buffer;
    for (;;) {
        if (buffer.offset == buffer.filled) {
            const auto count = m_calls.list(level.folder.number(), buffer.bytes.data(), buffer.bytes.size());
            if (count < 0 && errno != ENOENT) {
                recordFailure(errno, nullptr);
                level.stays = true;
            }
            if (count <= 0)
                return nullptr;
            buffer.filled = static_cast<size_t>(count);
            buffer.offset = 0;
        }
        const auto *entry = reinterpret_cast<const Entry *>(buffer.bytes.data() + buffer.offset);
        buffer.offset += entry->d_reclen;
        level.position = entry->d_off;
        if (!isDotEntry(entry->d_name))
            return entry;
    }
}

void TreeEraser::take(const Entry &entry)
{
    if (entry.d_type == DT_DIR) {
        enter(entry.d_name);
        return;
    }
    auto &level = m_levels.back();
    const auto error = unlink(&level, entry.d_name, 0);
    if (error == EISDIR) {
        enter(entry.d_name);
    } else if (error == 0) {
        ++m_result.removed;
        level.hasDeleted = true;
    } else if (error != ENOENT) {
        recordFailure(error, entry.d_name);
        level.stays = true;
    }
}

void TreeEraser::enter(const char *name)
{
    std::optional<mode_t> modeBefore;
    auto folder = openGranting(name, modeBefore);
    if (folder.isOpen()) {
        m_levels.push_back({ .name = name, .folder = std::move(folder), .modeBefore = modeBefore });
        closeOutermost(mostOpenLevels);
        return;
    }
    auto error = errno;
    auto *parent = m_levels.empty() ? nullptr : &m_levels.back();
    // A folder a moment ago, and a link or a file by now: it goes as what it is.
    if (error == ELOOP || error == ENOTDIR)
        error = unlink(parent, name, 0);
    if (error == 0)
        ++m_result.removed;
    if (parent != nullptr && error == 0)
        parent->hasDeleted = true;
    if (error == 0 || (error == ENOENT && parent != nullptr))
        return;
    recordFailure(error, parent != nullptr ? name : nullptr);
    if (parent != nullptr)
        parent->stays = true;
}

void TreeEraser::leave()
{
    if (!reopenParent()) {
        // What lies above has been moved away, and can't be told from what must not be touched.
        recordFailure(ESTALE, nullptr);
        m_levels.clear();
        m_closedLevels = 0;
        return;
    }
    auto &level = m_levels.back();
    auto *parent = parentOfLast();
    const auto error = level.stays ? 0 : unlink(parent, level.name.c_str(), AT_REMOVEDIR);
    if (isNotEmpty(error) && level.hasDeleted && level.passes < mostPasses) {
        startAgain(level);
        return;
    }
    if (error != 0 && error != ENOENT) {
        recordFailure(error, nullptr);
        level.stays = true;
    }
    if (level.stays)
        putBackRights(level);
    else if (error == 0)
        ++m_result.removed;
    if (parent != nullptr) {
        parent->stays |= level.stays;
        parent->hasDeleted |= !level.stays;
    }
    pop();
}

// Some file systems leave entries out of a listing while others are deleted.
void TreeEraser::startAgain(Level &level)
{
    ++level.passes;
    level.hasDeleted = false;
    level.position = 0;
    if (level.buffer)
        m_spareBuffers.push_back(std::move(level.buffer));
}

void TreeEraser::pop()
{
    if (auto &buffer = m_levels.back().buffer)
        m_spareBuffers.push_back(std::move(buffer));
    m_levels.pop_back();
}

// -1 with errno: EBUSY for what is mounted, EXDEV for a volume within the volume, which no mount shows.
int TreeEraser::openFolder(const char *name, int flags)
{
    FileDescriptor folder(openOnMount(name, flags));
    struct statx status = {};
    if (!folder.isOpen() || m_calls.statAt(folder.number(), "", AT_EMPTY_PATH, status) != 0)
        return -1;
    const auto place = MountedDevice::of(status);
    if (place == m_place)
        return folder.release();
    errno = place.mount != m_place.mount ? EBUSY : EXDEV;
    return -1;
}

int TreeEraser::openOnMount(const char *name, int flags)
{
    for (int race = 0; m_canRefuseMounts && race < mostRaces; ++race) {
        const auto folder = m_calls.openBelow(folderNow(), name, folderFlags | flags);
        if (folder >= 0)
            return folder;
        if (errno == EXDEV)
            errno = EBUSY;
        // Old kernels and some sandboxes lack that call, and it gives up when something is renamed meanwhile.
        if (errno == ENOSYS || errno == EPERM)
            m_canRefuseMounts = false;
        else if (errno != EAGAIN)
            return -1;
    }
    return m_calls.openAt(folderNow(), name, folderFlags | flags);
}

// Gives the owner the rights to look into it, and to look into the folder that it is in, where they are
// missing.
FileDescriptor TreeEraser::openGranting(const char *name, std::optional<mode_t> &modeBefore)
{
    auto folder = openFolder(name, O_RDONLY);
    if (folder < 0 && (errno == EMFILE || errno == ENFILE)) {
        closeOutermost(1);
        folder = openFolder(name, O_RDONLY);
    }
    if (folder < 0 && errno == EACCES && !m_levels.empty() && grantRights(m_levels.back()))
        folder = openFolder(name, O_RDONLY);
    if (folder >= 0 || errno != EACCES)
        return FileDescriptor(folder);
    const FileDescriptor place(openFolder(name, O_PATH));
    struct statx status = {};
    if (place.isOpen() && m_calls.statAt(place.number(), "", AT_EMPTY_PATH, status) == 0) {
        const auto mode = static_cast<mode_t>(status.stx_mode & 07777U);
        if ((mode & ownersRights) != ownersRights
            && m_calls.changeMode(place.number(), mode | ownersRights) == 0) {
            FileDescriptor granted(openFolder(name, O_RDONLY));
            if (granted.isOpen())
                modeBefore = mode;
            else
                std::ignore = m_calls.changeMode(place.number(), mode);
            return granted;
        }
    }
    errno = EACCES;
    return {};
}

int TreeEraser::unlink(Level *parent, const char *name, int flags)
{
    const auto folder = parent != nullptr ? parent->folder.number() : m_start;
    if (m_calls.unlinkAt(folder, name, flags) == 0)
        return 0;
    const auto error = errno;
    if (error != EACCES || parent == nullptr || !grantRights(*parent))
        return error;
    return m_calls.unlinkAt(folder, name, flags) == 0 ? 0 : errno;
}

bool TreeEraser::grantRights(Level &level)
{
    struct statx status = {};
    const auto folder = level.folder.number();
    if (level.modeBefore || m_calls.statAt(folder, "", AT_EMPTY_PATH, status) != 0)
        return false;
    const auto mode = static_cast<mode_t>(status.stx_mode & 07777U);
    if ((mode & ownersRights) == ownersRights || m_calls.changeMode(folder, mode | ownersRights) != 0)
        return false;
    level.modeBefore = mode;
    return true;
}

void TreeEraser::putBackRights(Level &level)
{
    if (level.modeBefore)
        std::ignore = m_calls.changeMode(level.folder.number(), *level.modeBefore);
}

void TreeEraser::closeOutermost(size_t mostOpen)
{
    while (m_levels.size() - m_closedLevels > mostOpen) {
        auto &level = m_levels[m_closedLevels];
        struct statx status = {};
        if (m_calls.statAt(level.folder.number(), "", AT_EMPTY_PATH, status) != 0)
            return;
        level.identity = identity(status);
        if (level.buffer)
            m_spareBuffers.push_back(std::move(level.buffer));
        level.folder = {};
        ++m_closedLevels;
    }
}

bool TreeEraser::reopenParent()
{
    if (m_levels.size() < 2 || m_closedLevels < m_levels.size() - 1)
        return true;
    auto &child = m_levels.back();
    auto &parent = m_levels[m_levels.size() - 2];
    FileDescriptor folder(m_calls.openAt(child.folder.number(), "..", O_RDONLY | folderFlags));
    if (!folder.isOpen() && errno == EACCES && grantRights(child))
        folder = FileDescriptor(m_calls.openAt(child.folder.number(), "..", O_RDONLY | folderFlags));
    struct statx status = {};
    if (!folder.isOpen() || m_calls.statAt(folder.number(), "", AT_EMPTY_PATH, status) != 0
        || identity(status) != parent.identity)
        folder = walkDown(m_levels.size() - 1);
    if (!folder.isOpen())
        return false;
    parent.folder = std::move(folder);
    --m_closedLevels;
    return true;
}

// From where it all began, when the way up from a folder leads elsewhere: it was moved.
FileDescriptor TreeEraser::walkDown(size_t depth)
{
    FileDescriptor folder;
    for (size_t i = 0; i < depth; ++i) {
        const auto from = i == 0 ? m_start : folder.number();
        FileDescriptor next(m_calls.openAt(from, m_levels[i].name.c_str(), O_RDONLY | folderFlags));
        struct statx status = {};
        if (!next.isOpen() || m_calls.statAt(next.number(), "", AT_EMPTY_PATH, status) != 0
            || identity(status) != m_levels[i].identity)
            return {};
        folder = std::move(next);
    }
    return folder;
}

TreeEraser::Level *TreeEraser::parentOfLast()
{
    return m_levels.size() > 1 ? &m_levels[m_levels.size() - 2] : nullptr;
}

int TreeEraser::folderNow() const
{
    return m_levels.empty() ? m_start : m_levels.back().folder.number();
}

void TreeEraser::recordFailure(int error, const char *name)
{
    if (m_result.failures++ > 0)
        return;
    m_result.firstError = error;
    for (size_t i = 1; i < m_levels.size(); ++i)
        m_result.firstPath += (i > 1 ? "/" : "") + m_levels[i].name;
    if (name != nullptr && !m_levels.empty())
        m_result.firstPath += (m_result.firstPath.empty() ? "" : "/") + std::string(name);
}

} // namespace Quillbrook
