#include "Platform/Linux/Folders/LinuxDirectorySession.h"

#include "Platform/Linux/Files/Uninterrupted.h"
#include "Platform/Linux/Folders/LinuxDirectoryReader.h"

#include <algorithm>
#include <array>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>

namespace Quillbrook {

namespace {

std::optional<std::uint64_t> mountOf(int folder)
{
    struct statx status
    {
    };
    const auto failed = uninterrupted(
        [&] { return ::statx(folder, "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC, STATX_MNT_ID, &status); });
    if (failed != 0 || (status.stx_mask & STATX_MNT_ID) == 0)
        return std::nullopt;
    return status.stx_mnt_id;
}

// The path without links, as the mount table has it; absent when it is too long to be told.
std::optional<std::string> realPathOf(int folder)
{
    std::array<char, PATH_MAX> buffer{};
    const auto link = "/proc/self/fd/" + std::to_string(folder);
    const auto length = ::readlink(link.c_str(), buffer.data(), buffer.size());
    if (length <= 0 || buffer.front() != '/')
        return std::nullopt;
    return std::string(buffer.data(), static_cast<size_t>(length));
}

} // namespace

LinuxDirectorySession::LinuxDirectorySession(
    const std::string &rootPath, const std::optional<std::vector<Mount>> &mounts)
    : m_rootPath(rootPath)
    , m_root(uninterrupted([&] { return ::open(rootPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }))
{
    if (!m_root.isOpen())
        return;
    m_rootMount = mountOf(m_root.number());
    const auto realRoot = realPathOf(m_root.number());
    if (mounts && realRoot)
        learnMounts(*mounts, *realRoot);
}

std::unique_ptr<DirectoryReader> LinuxDirectorySession::makeReader()
{
    return std::make_unique<LinuxDirectoryReader>(*this);
}

const LinuxDirectorySession::MountsInFolder *LinuxDirectorySession::mountsIn(const std::string &path) const
{
    if (m_mounts.empty() || path.size() > m_longestParent)
        return nullptr;
    const auto found = m_mounts.find(path);
    return found == m_mounts.end() ? nullptr : &found->second;
}

// Only what is mounted directly in the root's own mount can be met: the rest lies behind it or is covered.
void LinuxDirectorySession::learnMounts(const std::vector<Mount> &mounts, const std::string &realRoot)
{
    m_knowsMounts = true;
    const auto realPrefix = realRoot == "/" ? realRoot : realRoot + '/';
    const auto prefix = m_rootPath == "/" ? m_rootPath : m_rootPath + '/';
    for (const auto &mount : mounts) {
        const bool isInRootMount = !m_rootMount || mount.parentId == *m_rootMount;
        if (!isInRootMount || !mount.mountPoint.starts_with(realPrefix) || mount.mountPoint == realPrefix)
            continue;
        const auto path = prefix + mount.mountPoint.substr(realPrefix.size());
        const auto slash = path.rfind('/');
        const auto parent = slash == 0 ? std::string("/") : path.substr(0, slash);
        m_longestParent = std::max(m_longestParent, parent.size());
        m_mounts[parent].insert_or_assign(path.substr(slash + 1), mount.id);
    }
}

} // namespace Quillbrook
