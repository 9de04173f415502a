#include "Platform/Linux/Folders/LinuxDirectoryReader.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
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

bool isDotEntry(const char *name)
{
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

} // namespace

LinuxDirectoryReader::LinuxDirectoryReader(const LinuxDirectorySession &session)
    : m_session(session)
    , m_folders(session.rootPath(), session.rootDescriptor())
    , m_rootMount(session.rootDevice().value_or(0))
    , m_buffer(std::make_unique_for_overwrite<char[]>(bufferBytes))
{
    m_records.reserve(recordRoom);
}

bool LinuxDirectoryReader::open(const std::string &path, bool)
{
    if (m_session.rootDescriptor() < 0)
        return false;
    m_folder = m_folders.open(path);
    m_mounts = m_session.mountsIn(path);
    return m_folder >= 0;
}

std::span<const DirectoryRecord> LinuxDirectoryReader::next()
{
    m_records.clear();
    while (m_records.empty()) {
        const auto filled = ::getdents64(m_folder, m_buffer.get(), bufferBytes);
        if (filled <= 0)
            break;
        for (ssize_t offset = 0; offset < filled;) {
            const auto &entry = *reinterpret_cast<const dirent64 *>(m_buffer.get() + offset);
            if (!isDotEntry(entry.d_name))
                addRecord(entry);
            offset += entry.d_reclen;
        }
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
    if (isMountedOver(record, entry.d_type))
        return;
    record.device = m_rootMount;
    const bool needsNoAsking = entry.d_type == DT_DIR && m_session.knowsMounts();
    if (!needsNoAsking && !askFile(record, entry.d_name))
        m_records.pop_back();
}

// Where the kind is not told either, a folder is assumed: what is mounted is not asked.
bool LinuxDirectoryReader::isMountedOver(DirectoryRecord &record, unsigned char kind) const
{
    if (m_mounts == nullptr)
        return false;
    const auto mount = m_mounts->find(record.name);
    if (mount == m_mounts->end())
        return false;
    if (kind == DT_UNKNOWN)
        record.type = Type::directory;
    record.device = mount->second;
    record.isMountPoint = record.type == Type::directory;
    return true;
}

// False when the entry has gone meanwhile. One that may not be asked stays, by what its folder tells of it.
bool LinuxDirectoryReader::askFile(DirectoryRecord &record, const char *name) const
{
    struct statx status;
    if (::statx(m_folder, name, askFlags, askMask, &status) != 0)
        return errno != ENOENT;
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
