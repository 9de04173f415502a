#include "Platform/Linux/Drives/LinuxSpeedProbe.h"

#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Files/LinuxErrorText.h"

#include <QUuid>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view probePrefix = ".quillbrook-probe-";
constexpr size_t uuidLength = 36;
constexpr std::time_t secondsOfADay = 86'400;
constexpr size_t blockBytes = 1'048'576;
constexpr size_t alignment = 4096;
constexpr double leastSeconds = 0.0001;

using Seconds = std::chrono::duration<double>;

double since(std::chrono::steady_clock::time_point start)
{
    return std::max(Seconds(std::chrono::steady_clock::now() - start).count(), leastSeconds);
}

bool isProbeName(std::string_view name)
{
    return name.size() == probePrefix.size() + uuidLength && name.starts_with(probePrefix)
        && !QUuid(QString::fromLatin1(name.data() + probePrefix.size(), uuidLength)).isNull();
}

// What a measurement left that was cut off with the power, or killed where files have to have a name. Younger
// ones may be of one that runs.
void removeOldProbes(int folder)
{
    const auto close = [](DIR *entries) { ::closedir(entries); };
    const std::unique_ptr<DIR, decltype(close)> entries(
        ::fdopendir(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)));
    const auto now = std::time(nullptr);
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the stream is this function's own
    while (const auto *entry = entries ? ::readdir(entries.get()) : nullptr) {
        struct stat status = {};
        if (isProbeName(entry->d_name) && ::fstatat(folder, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0
            && S_ISREG(status.st_mode) && status.st_uid == ::geteuid()
            && now - status.st_mtim.tv_sec > secondsOfADay)
            ::unlinkat(folder, entry->d_name, 0);
    }
}

// The file of one measurement. On failure it is not open, with errno.
class ProbeFile
{
public:
    explicit ProbeFile(int folder)
        : m_folder(folder)
        , m_file(::openat(folder, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600))
    {
        if (m_file.isOpen() || errno == ENOSPC || errno == EROFS || errno == EACCES)
            return;
        m_name = std::string(probePrefix) + QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
        m_file = FileDescriptor(
            ::openat(folder, m_name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!m_file.isOpen())
            m_name.clear();
    }
    ProbeFile(const ProbeFile &) = delete;
    ProbeFile &operator=(const ProbeFile &) = delete;
    ~ProbeFile()
    {
        const int error = errno;
        if (!m_name.empty())
            ::unlinkat(m_folder, m_name.c_str(), 0);
        errno = error;
    }

    [[nodiscard]] bool isOpen() const { return m_file.isOpen(); }
    [[nodiscard]] int number() const { return m_file.number(); }

    /// Whether the page cache is passed from now on.
    bool setDirect(bool isDirect) const
    {
        const int flags = ::fcntl(number(), F_GETFL);
        return flags >= 0 && ::fcntl(number(), F_SETFL, isDirect ? flags | O_DIRECT : flags & ~O_DIRECT) == 0;
    }

private:
    int m_folder;
    std::string m_name;
    FileDescriptor m_file;
};

// A mebibyte, at an address that devices take.
class Block
{
public:
    Block()
        : m_bytes(static_cast<char *>(std::aligned_alloc(alignment, blockBytes)))
    {
        std::memset(m_bytes.get(), 0, blockBytes);
    }
    [[nodiscard]] char *bytes() const { return m_bytes.get(); }

private:
    struct Free
    {
        void operator()(char *bytes) const { std::free(bytes); }
    };
    std::unique_ptr<char, Free> m_bytes;
};

// 0, or an errno.
int write(const ProbeFile &file, const Block &block, const SpeedProbe::Sample &sample)
{
    bool isDirect = file.setDirect(true);
    for (qint64 done = 0; done < sample.bytes;) {
        if (sample.stop.stop_requested())
            return ECANCELED;
        const auto count = std::min<size_t>(blockBytes, static_cast<size_t>(sample.bytes - done));
        const auto written = ::pwrite(file.number(), block.bytes(), count, done);
        if (written > 0) {
            done += written;
        } else if (written < 0 && errno == EINVAL && isDirect) {
            isDirect = false;
            file.setDirect(false);
        } else if (written == 0 || errno != EINTR) {
            return written == 0 ? EIO : errno;
        }
    }
    return ::fsync(file.number()) == 0 ? 0 : errno;
}

void read(const ProbeFile &file, const Block &block, const SpeedProbe::Sample &sample)
{
    bool isDirect = file.setDirect(true);
    const auto dropCache = [&file] {
        file.setDirect(false);
        ::fdatasync(file.number());
        ::posix_fadvise(file.number(), 0, 0, POSIX_FADV_DONTNEED);
    };
    if (!isDirect)
        dropCache();
    for (qint64 done = 0; done < sample.bytes && !sample.stop.stop_requested();) {
        const auto count = std::min<size_t>(blockBytes, static_cast<size_t>(sample.bytes - done));
        const auto taken = ::pread(file.number(), block.bytes(), count, done);
        if (taken < 0 && errno == EINVAL && isDirect) {
            isDirect = false;
            dropCache();
        } else if (taken < 1 && (taken == 0 || errno != EINTR)) {
            return;
        } else {
            done += std::max<ssize_t>(taken, 0);
        }
    }
}

// Rights that no file has by default, and an attribute: file systems without them accept both and forget.
bool keepsAttributes(const ProbeFile &file)
{
    constexpr mode_t unusual = 0610;
    constexpr mode_t rights = 07777;
    struct stat status = {};
    return ::fchmod(file.number(), unusual) == 0 && ::fstat(file.number(), &status) == 0
        && (status.st_mode & rights) == unusual
        && ::fsetxattr(file.number(), "user.quillbrook.probe", "1", 1, 0) == 0;
}

} // namespace

std::expected<MeasuredSpeed, QString> LinuxSpeedProbe::measure(const Sample &sample) const
{
    const FileDescriptor folder(::open(sample.folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen())
        return std::unexpected(LinuxErrorText::sentence(errno));
    removeOldProbes(folder.number());
    const ProbeFile file(folder.number());
    if (!file.isOpen())
        return std::unexpected(LinuxErrorText::sentence(errno));
    const Block block;
    MeasuredSpeed speed;
    auto start = std::chrono::steady_clock::now();
    if (const int error = write(file, block, sample); error != 0)
        return std::unexpected(LinuxErrorText::sentence(error));
    speed.writeSeconds = since(start);
    start = std::chrono::steady_clock::now();
    read(file, block, sample);
    speed.readSeconds = since(start);
    speed.keepsAttributes = keepsAttributes(file);
    return speed;
}

} // namespace Quillbrook
