#include "Platform/Linux/Folders/LinuxSpaceHolders.h"

#include "Platform/Linux/Files/FileDescriptor.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <set>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace Quillbrook {

namespace {

using namespace std::chrono_literals;

constexpr auto timeForLinks = 50ms;
constexpr auto timeForAnswers = 1000ms;
// The first ones found say enough, and each is an open file of this program.
constexpr std::size_t mostLinkedFiles = 256;
constexpr std::size_t mostPaths = 64;
constexpr std::size_t mostSnapshots = 1000;
constexpr qint64 bytesOfABlock = 512;

using Identity = std::pair<dev_t, ino_t>;

Identity identity(const struct stat &status)
{
    return { status.st_dev, status.st_ino };
}

qint64 bytesOf(const struct stat &status)
{
    return static_cast<qint64>(status.st_blocks) * bytesOfABlock;
}

struct CloseFolder
{
    void operator()(DIR *folder) const { ::closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

Folder openFolder(const std::string &path)
{
    FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    Folder stream(folder.isOpen() ? ::fdopendir(folder.number()) : nullptr);
    if (stream)
        std::ignore = folder.release();
    return stream;
}

// Empty at the end.
std::string nextName(const Folder &folder)
{
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the stream is the caller's own
    while (const auto *entry = folder ? ::readdir(folder.get()) : nullptr)
        if (const std::string_view name = entry->d_name; name != "." && name != "..")
            return std::string(name);
    return {};
}

bool isWithin(std::string_view path, std::string_view folder)
{
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

class FilesWithFurtherNames final : public LinkedFiles
{
public:
    explicit FilesWithFurtherNames(const std::vector<std::string> &paths)
        : m_folders(paths)
    {
        for (const auto &path : paths)
            see(AT_FDCWD, path);
        while (!m_folders.empty() && isOn())
            walk();
    }

    qint64 bytesHeld() override
    {
        qint64 bytes = 0;
        for (const auto &each : m_files) {
            struct stat now = {};
            const bool isKnown = ::fstat(each.file.number(), &now) == 0;
            // One whose names are all there was not removed.
            if (isKnown && now.st_nlink > 0 && now.st_nlink < each.names)
                bytes += bytesOf(now);
        }
        m_files.clear();
        return bytes;
    }

private:
    struct File
    {
        FileDescriptor file{};
        nlink_t names = 0;
    };

    [[nodiscard]] bool isOn() const { return !m_deadline.hasExpired() && m_files.size() < mostLinkedFiles; }

    void walk()
    {
        const auto path = std::move(m_folders.back());
        m_folders.pop_back();
        const auto folder = openFolder(path);
        for (auto name = nextName(folder); !name.empty() && isOn(); name = nextName(folder))
            if (see(::dirfd(folder.get()), name))
                m_folders.push_back(path + '/' + name);
    }

    // Whether it is a folder.
    bool see(int folder, const std::string &name)
    {
        struct stat status = {};
        if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            return false;
        if (S_ISREG(status.st_mode) && status.st_nlink > 1 && m_seen.insert(identity(status)).second) {
            FileDescriptor file(::openat(folder, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
            if (file.isOpen())
                m_files.push_back({ .file = std::move(file), .names = status.st_nlink });
        }
        return S_ISDIR(status.st_mode);
    }

    QDeadlineTimer m_deadline{ timeForLinks };
    std::vector<std::string> m_folders;
    std::set<Identity> m_seen;
    std::vector<File> m_files;
};

// The path of a removed file that is open as `name` in that folder of a process; empty for all others.
std::string removedPath(int folder, const std::string &name)
{
    constexpr std::string_view mark = " (deleted)";
    std::array<char, PATH_MAX> text; // NOLINT: filled by the call below
    const auto length = ::readlinkat(folder, name.c_str(), text.data(), text.size());
    const std::string_view told(text.data(), static_cast<size_t>(std::max<ssize_t>(length, 0)));
    return told.ends_with(mark) ? std::string(told.substr(0, told.size() - mark.size())) : std::string();
}

QString programName(const std::string &process)
{
    const FileDescriptor file(::open((process + "/comm").c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 64> text{};
    const auto length = file.isOpen() ? ::read(file.number(), text.data(), text.size()) : 0;
    return QString::fromLocal8Bit(text.data(), static_cast<qsizetype>(std::max<ssize_t>(length, 0)))
        .trimmed();
}

class OpenFileSearch
{
public:
    explicit OpenFileSearch(const std::vector<std::string> &paths)
        : m_paths(paths)
    {
    }

    void process(const std::string &path)
    {
        struct stat status = {};
        if (::stat(path.c_str(), &status) != 0 || status.st_uid != ::getuid())
            return;
        const auto folder = openFolder(path + "/fd");
        OpenFiles found;
        bool isAny = false;
        for (auto name = nextName(folder); !name.empty() && !isOver(); name = nextName(folder)) {
            const auto removed = removedPath(::dirfd(folder.get()), name);
            const bool isMeant = !removed.empty()
                && std::ranges::any_of(m_paths, [&](const auto &place) { return isWithin(removed, place); });
            if (!isMeant || ::fstatat(::dirfd(folder.get()), name.c_str(), &status, 0) != 0
                || !S_ISREG(status.st_mode) || status.st_nlink > 0)
                continue;
            isAny = true;
            if (m_seen.insert(identity(status)).second)
                found.bytes += bytesOf(status);
        }
        if (!isAny)
            return;
        found.program = programName(path);
        const auto known = std::ranges::find(m_found, found.program, &OpenFiles::program);
        if (known == m_found.end())
            m_found.push_back(std::move(found));
        else
            known->bytes += found.bytes;
    }

    [[nodiscard]] bool isOver() const { return m_deadline.hasExpired(); }
    [[nodiscard]] std::vector<OpenFiles> found()
    {
        std::ranges::stable_sort(m_found, std::greater(), &OpenFiles::bytes);
        return std::move(m_found);
    }

private:
    const std::vector<std::string> &m_paths;
    QDeadlineTimer m_deadline{ timeForAnswers };
    std::set<Identity> m_seen;
    std::vector<OpenFiles> m_found;
};

constexpr unsigned zfsMagic = 0x2fc12fc1;

unsigned fileSystemOf(const std::string &path)
{
    struct statfs facts = {};
    return ::statfs(path.c_str(), &facts) == 0 ? static_cast<unsigned>(facts.f_type) : 0;
}

// The top of a subvolume has a number of its own, and what ZFS shows in its folder of snapshots is one.
bool isSnapshotHere(const std::string &path)
{
    constexpr ino_t topOfSubvolume = 256;
    struct stat status = {};
    const auto system = fileSystemOf(path);
    return system == zfsMagic
        || (system == BTRFS_SUPER_MAGIC && ::lstat(path.c_str(), &status) == 0
            && status.st_ino == topOfSubvolume);
}

bool isThere(const std::string &path)
{
    struct stat status = {};
    return ::lstat(path.c_str(), &status) == 0;
}

} // namespace

LinuxSpaceHolders::LinuxSpaceHolders()
    : LinuxSpaceHolders({ .isSnapshot = isSnapshotHere })
{
}

LinuxSpaceHolders::LinuxSpaceHolders(Places places)
    : m_places(std::move(places))
{
}

std::unique_ptr<LinkedFiles> LinuxSpaceHolders::linkedFiles(const std::vector<std::string> &paths) const
{
    return std::make_unique<FilesWithFurtherNames>(paths);
}

std::vector<OpenFiles> LinuxSpaceHolders::openFiles(const std::vector<std::string> &paths) const
{
    OpenFileSearch search(paths);
    const auto processes = openFolder(m_places.processes);
    for (auto name = nextName(processes); !name.empty() && !search.isOver(); name = nextName(processes))
        if (name.find_first_not_of("0123456789") == std::string::npos)
            search.process(m_places.processes + '/' + name);
    return search.found();
}

std::vector<QString> LinuxSpaceHolders::snapshots(const std::vector<std::string> &paths) const
{
    const QDeadlineTimer deadline{ timeForAnswers };
    std::set<std::string> names;
    // What lies at `path` in each snapshot that the folder `kept` shows, below `inner` there.
    const auto search = [&](const std::string &kept, const std::string &inner, const std::string &rest) {
        const auto folder = openFolder(kept);
        std::size_t count = 0;
        for (auto name = nextName(folder);
             !name.empty() && ++count <= mostSnapshots && !deadline.hasExpired(); name = nextName(folder)) {
            const auto top = kept + '/' + name + inner;
            if (isThere(top + rest) && m_places.isSnapshot(top))
                names.insert(name);
        }
    };
    for (std::size_t i = 0; i < std::min(paths.size(), mostPaths); ++i) {
        const auto &path = paths[i];
        for (auto end = path.rfind('/'); end != std::string::npos && !deadline.hasExpired();
             end = end == 0 ? std::string::npos : path.rfind('/', end - 1)) {
            const auto folder = path.substr(0, end);
            const auto rest = path.substr(end);
            search(folder + "/.snapshots", "/snapshot", rest);
            search(folder + "/.zfs/snapshot", "", rest);
        }
    }
    std::vector<QString> found;
    std::ranges::transform(
        names, std::back_inserter(found), [](const auto &name) { return QString::fromStdString(name); });
    return found;
}

bool LinuxSpaceHolders::countsExactly(const std::string &path) const
{
    constexpr std::array<unsigned, 3> systems{ EXT4_SUPER_MAGIC, TMPFS_MAGIC, MSDOS_SUPER_MAGIC };
    auto folder = path;
    while (folder.size() > 1 && !isThere(folder))
        folder.resize(std::max<std::size_t>(folder.find_last_of('/'), 1));
    return std::ranges::find(systems, fileSystemOf(folder)) != systems.end();
}

} // namespace Quillbrook
