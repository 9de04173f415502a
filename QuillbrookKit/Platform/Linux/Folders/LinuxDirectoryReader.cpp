#include "Platform/Linux/Folders/LinuxDirectoryReader.h"

#include "Platform/Linux/Files/Uninterrupted.h"

#include <algorithm>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>

namespace Quillbrook {

namespace {

constexpr size_t bufferBytes = 262144;
constexpr size_t recordRoom = 4096;
constexpr std::uint64_t blockBytes = 512;
constexpr std::uint64_t mostBlocks = std::numeric_limits<std::int64_t>::max() / blockBytes;
// Nothing is mounted by asking, and no server is asked for what is known already.
constexpr int askFlags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
constexpr unsigned askMask = STATX_TYPE | STATX_INO | STATX_NLINK | STATX_BLOCKS | STATX_MNT_ID;

using Type = DirectoryRecord::Type;

Type typeOfKind(unsigned char kind)
{
    switch (kind) {
    case DT_DIR:
        return Type::directory;
    case DT_LNK:
        return Type::symlink;
    default:
        return Type::other;
    }
}

} // namespace

LinuxDirectoryReader::LinuxDirectoryReader(const LinuxDirectorySession &session)
    : m_session(session)
    , m_folders(session.rootPath(), session.rootDescriptor())
    , m_rootMount(session.rootDevice().value_or(0))
    , m_batch(bufferBytes)
{
    m_records.reserve(recordRoom);
}

bool LinuxDirectoryReader::open(const std::string &path, OtherDevices others)
{
    if (m_session.rootDescriptor() < 0)
        return false;
    m_others = others;
    m_folder = m_folders.open(path);
    m_mounts = m_session.mountsIn(path);
    return m_folder >= 0;
}

std::span<const DirectoryRecord> LinuxDirectoryReader::next()
{
    m_records.clear();
    while (m_records.empty() && m_batch.read(m_folder)) {
        while (const auto *entry = m_batch.next())
            addRecord(*entry);
    }
    return m_records;
}

void LinuxDirectoryReader::close()
{
    m_folder = -1;
}

void LinuxDirectoryReader::addRecord(const dirent64 &entry)
{
    auto &record = m_records.emplace_back();
    record.name = entry.d_name;
    record.type = typeOfKind(entry.d_type);
    const auto mount = mountOver(record.name);
    record.device = mount.value_or(m_rootMount);
    if (mount) {
        // Where the kind is not told either, a folder is assumed: no mounted folder is asked.
        if (entry.d_type == DT_UNKNOWN)
            record.type = Type::directory;
        record.isMountPoint = record.type == Type::directory;
    }
    const bool isNamedOnly = mount && (record.isMountPoint || m_others == OtherDevices::named);
    const bool isKnownFolder = entry.d_type == DT_DIR && m_session.knowsMounts();
    if (!isNamedOnly && !isKnownFolder && !askFile(record, entry.d_name))
        m_records.pop_back();
}

// The mount that covers an entry of the open folder.
std::optional<std::uint64_t> LinuxDirectoryReader::mountOver(std::string_view name) const
{
    if (m_mounts == nullptr)
        return std::nullopt;
    const auto mount = m_mounts->find(name);
    return mount == m_mounts->end() ? std::nullopt : std::optional(mount->second);
}

// False when the entry has gone meanwhile. One that may not be asked stays, by what its folder tells of it.
bool LinuxDirectoryReader::askFile(DirectoryRecord &record, const char *name) const
{
    struct statx status;
    if (uninterrupted([&] { return ::statx(m_folder, name, askFlags, askMask, &status); }) != 0) {
        record.isMeasured = false;
        return errno != ENOENT;
    }
    const auto kind = status.stx_mode & S_IFMT;
    record.type = kind == S_IFDIR ? Type::directory : kind == S_IFLNK ? Type::symlink : Type::other;
    record.device = (status.stx_mask & STATX_MNT_ID) != 0 ? status.stx_mnt_id : 0;
    record.isMountPoint
        = record.type == Type::directory && (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    record.fileDevice = (std::uint64_t{ status.stx_dev_major } << 32U) | status.stx_dev_minor;
    record.fileId = status.stx_ino;
    record.allocatedSize
        = static_cast<std::int64_t>(std::min<std::uint64_t>(status.stx_blocks, mostBlocks) * blockBytes);
    record.linkCount = status.stx_nlink;
    return true;
}

} // namespace Quillbrook
