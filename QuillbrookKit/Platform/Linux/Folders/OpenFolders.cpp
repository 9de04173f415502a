#include "Platform/Linux/Folders/OpenFolders.h"

#include "Platform/Linux/Files/Uninterrupted.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <utility>

namespace Quillbrook {

namespace {

// With up to 32 workers this stays well below the usual limit of 1024 descriptors.
constexpr size_t mostOpenFolders = 8;
constexpr size_t longestPath = PATH_MAX - 1;
constexpr int folderFlags = O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW;

} // namespace

OpenFolders::OpenFolders(std::string rootPath, int rootDescriptor)
    : m_rootLength(rootPath == "/" ? 0 : rootPath.size())
    , m_root(rootDescriptor)
    , m_path(std::move(rootPath))
{
    m_line.reserve(mostOpenFolders);
}

int OpenFolders::open(const std::string &path)
{
    keepAncestorsOf(path);
    auto folder = openFromNearest(path);
    if (!folder.isOpen() && (errno == EMFILE || errno == ENFILE)) {
        m_line.clear();
        folder = openFromNearest(path);
    }
    if (!folder.isOpen())
        return -1;
    if (m_line.size() == mostOpenFolders)
        m_line.erase(m_line.begin());
    // `m_path` begins with the nearest ancestor's path already; only what follows is copied.
    const auto known = m_line.empty() ? 0 : m_line.back().pathLength;
    m_path.replace(known, std::string::npos, path, known);
    m_line.push_back({ path.size(), std::move(folder) });
    return m_line.back().folder.number();
}

void OpenFolders::keepAncestorsOf(const std::string &path)
{
    const auto isAncestor = [&](size_t length) {
        return length < path.size() && path[length] == '/'
            && std::string_view(path).substr(0, length) == std::string_view(m_path).substr(0, length);
    };
    while (!m_line.empty() && !isAncestor(m_line.back().pathLength))
        m_line.pop_back();
}

FileDescriptor OpenFolders::openFromNearest(const std::string &path)
{
    const auto length = m_line.empty() ? m_rootLength : m_line.back().pathLength;
    const auto folder = m_line.empty() ? m_root : m_line.back().folder.number();
    if (path.size() <= length + 1)
        return openAt(folder, ".", O_RDONLY);
    return openBelow(folder, path.c_str() + length + 1, path.size() - length - 1);
}

FileDescriptor OpenFolders::openBelow(int folder, const char *relativePath, size_t length)
{
    FileDescriptor step;
    while (length > longestPath) {
        const auto cut = std::string_view(relativePath, longestPath + 1).rfind('/');
        if (cut == std::string_view::npos)
            return {};
        step = openAt(folder, std::string(relativePath, cut).c_str(), O_PATH);
        if (!step.isOpen())
            return {};
        folder = step.number();
        relativePath += cut + 1;
        length -= cut + 1;
    }
    return openAt(folder, relativePath, O_RDONLY);
}

FileDescriptor OpenFolders::openAt(int folder, const char *relativePath, int flags)
{
    if (m_canRefuseMounts) {
        // A mount that came after the mount table was read is refused here instead of being entered.
        open_how how{};
        how.flags = static_cast<__u64>(folderFlags | flags);
        how.resolve = RESOLVE_NO_XDEV | RESOLVE_NO_SYMLINKS;
        const auto descriptor
            = uninterrupted([&] { return ::syscall(SYS_openat2, folder, relativePath, &how, sizeof(how)); });
        if (descriptor >= 0 || (errno != ENOSYS && errno != EPERM))
            return FileDescriptor(static_cast<int>(descriptor));
    }
    // Old kernels and some sandboxes lack that call.
    FileDescriptor opened(uninterrupted([&] { return ::openat(folder, relativePath, folderFlags | flags); }));
    if (opened.isOpen())
        m_canRefuseMounts = false;
    return opened;
}

} // namespace Quillbrook
