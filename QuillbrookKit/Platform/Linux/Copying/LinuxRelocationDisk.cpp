#include "Platform/Linux/Copying/LinuxRelocationDisk.h"

#include "Platform/Linux/Copying/CopyProcess.h"
#include "Platform/Linux/Copying/RelocationObjection.h"
#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Files/LinuxErrorText.h"
#include "Platform/Linux/Folders/ResolvedPath.h"
#include "Platform/Linux/Trash/TreeEraser.h"
#include "StandardisedPath.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <future>
#include <memory>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

FileIdentity identityOf(const struct statx &status)
{
    constexpr unsigned bitsOfMinor = 32;
    constexpr std::int64_t perSecond = 1'000'000'000;
    const auto &born = status.stx_btime;
    return { .device = (std::uint64_t{ status.stx_dev_major } << bitsOfMinor) | status.stx_dev_minor,
        .inode = status.stx_ino,
        .born = (status.stx_mask & STATX_BTIME) != 0 ? born.tv_sec * perSecond + born.tv_nsec : 0 };
}

// A name in an open folder. Not open, with errno, where the folder can't be.
struct OpenPlace
{
    OpenPlace(const FileCalls &calls, const std::string &path)
    {
        errno = EINVAL;
        if (const auto split = SplitPath::of(path)) {
            folder = FileDescriptor(calls.openAt(AT_FDCWD, split->folder.c_str(), O_PATH | O_DIRECTORY));
            name = split->name;
        }
    }

    [[nodiscard]] bool isOpen() const { return folder.isOpen(); }
    [[nodiscard]] bool hasStatus(const FileCalls &calls, struct statx &status) const
    {
        return isOpen() && calls.statAt(folder.number(), name.c_str(), 0, status) == 0;
    }
    [[nodiscard]] bool holds(const FileCalls &calls, const FileIdentity &identity) const
    {
        struct statx status = {};
        return hasStatus(calls, status) && identityOf(status) == identity;
    }
    [[nodiscard]] bool holdsLink(const FileCalls &calls, const FileIdentity &identity) const
    {
        struct statx status = {};
        return hasStatus(calls, status) && S_ISLNK(status.stx_mode) && identityOf(status) == identity;
    }

    FileDescriptor folder;
    std::string name;
};

CopyResult failedCopy(int error)
{
    return { .error = LinuxErrorText::sentence(error), .isTaken = error == EEXIST };
}

// Makes the target, where nothing may be, and opens it. Not open, with errno, where that fails.
FileDescriptor makeTarget(const FileCalls &calls, const OpenPlace &place, bool isFolder)
{
    constexpr mode_t ownFolder = 0700;
    constexpr mode_t ownFile = 0600;
    const auto folder = place.folder.number();
    const auto *name = place.name.c_str();
    if (!isFolder)
        return FileDescriptor(calls.openAt(folder, name, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, ownFile));
    if (calls.makeFolderAt(folder, name, ownFolder) != 0)
        return {};
    return FileDescriptor(calls.openAt(folder, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW));
}

} // namespace

LinuxRelocationDisk::LinuxRelocationDisk(const FileCalls &calls)
    : m_calls(calls)
{
}

std::optional<QString> LinuxRelocationDisk::objection(
    const std::string &source, const std::string &folder) const
{
    if (auto objection = RelocationObjection::ofSource(source))
        return objection;
    return RelocationObjection::ofDestination(source, folder);
}

std::optional<QString> LinuxRelocationDisk::objection(const std::string &source) const
{
    return RelocationObjection::ofSource(source);
}

CopyResult LinuxRelocationDisk::copy(const CopyOrder &order) const
{
    const FileDescriptor source(m_calls.openAt(AT_FDCWD, order.source.c_str(), O_PATH | O_NOFOLLOW));
    struct statx status = {};
    if (!source.isOpen() || m_calls.statAt(source.number(), "", AT_EMPTY_PATH, status) != 0)
        return failedCopy(errno);
    const bool isFolder = S_ISDIR(status.stx_mode);
    const OpenPlace place(m_calls, order.target);
    if (!place.isOpen())
        return failedCopy(errno);
    const auto target = makeTarget(m_calls, place, isFolder);
    if (!target.isOpen())
        return failedCopy(errno);
    CopyResult result{ .source = identityOf(status) };
    if (m_calls.statAt(target.number(), "", AT_EMPTY_PATH, status) != 0)
        return failedCopy(errno);
    result.made = identityOf(status);

    const auto run = CopyProcess::run({ .source = { .descriptor = source.number(), .path = order.source },
        .target = { .descriptor = target.number(), .path = order.target },
        .isFolder = isFolder,
        .onProgress = order.onProgress,
        .stop = order.stop });
    result.stopped = run.end == CopyProcess::End::stopped;
    if (run.end != CopyProcess::End::whole)
        result.error = run.error;
    else
        writeOut(order, target.number(), result);
    return result;
}

// What waits in memory for a slow drive may take minutes, and nothing can end that call. So that a stop does
// not wait as long, the copy is deleted meanwhile: what is gone need not be written.
void LinuxRelocationDisk::writeOut(const CopyOrder &order, int target, CopyResult &result) const
{
    constexpr std::chrono::milliseconds interval{ 50 };
    auto writing
        = std::async(std::launch::async, [&] { return m_calls.syncVolume(target) == 0 ? 0 : errno; });
    while (writing.wait_for(interval) != std::future_status::ready && !result.stopped) {
        if (order.stop.stop_requested()) {
            drop(order.target, *result.made);
            result.made.reset();
            result.stopped = true;
        }
    }
    const int error = writing.get();
    if (result.stopped || error != 0)
        result.error = result.stopped ? QString() : LinuxErrorText::sentence(error);
}

void LinuxRelocationDisk::drop(const std::string &path, const FileIdentity &identity) const
{
    const OpenPlace place(m_calls, path);
    if (place.holds(m_calls, identity))
        std::ignore = TreeEraser(m_calls, place.folder.number()).erase(place.name.c_str());
}

bool LinuxRelocationDisk::isStill(const std::string &path, const FileIdentity &identity) const
{
    return OpenPlace(m_calls, path).holds(m_calls, identity);
}

std::optional<qint64> LinuxRelocationDisk::allocated(const std::string &path) const
{
    constexpr qint64 blockBytes = 512;
    struct stat status = {};
    if (::lstat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode))
        return std::nullopt;
    return status.st_blocks * blockBytes;
}

std::expected<void, QString> LinuxRelocationDisk::link(
    const std::string &place, const std::string &target) const
{
    const OpenPlace at(m_calls, place);
    if (!at.isOpen() || ::symlinkat(target.c_str(), at.folder.number(), at.name.c_str()) != 0)
        return std::unexpected(LinuxErrorText::sentence(errno));
    return {};
}

std::optional<LinkFacts> LinuxRelocationDisk::linkAt(const std::string &place) const
{
    auto facts = unfollowedLinkAt(place);
    const std::unique_ptr<char, decltype(&std::free)> resolved(
        facts ? ::realpath(place.c_str(), nullptr) : nullptr, &std::free);
    if (resolved) {
        facts->leadsSomewhere = true;
        facts->target = resolved.get();
    }
    return facts;
}

std::optional<LinkFacts> LinuxRelocationDisk::unfollowedLinkAt(const std::string &place) const
{
    const OpenPlace at(m_calls, place);
    struct statx status = {};
    if (!at.hasStatus(m_calls, status) || !S_ISLNK(status.stx_mode))
        return std::nullopt;
    std::array<char, PATH_MAX> text; // NOLINT: filled by the call below
    const auto length = ::readlinkat(at.folder.number(), at.name.c_str(), text.data(), text.size());
    if (length <= 0 || static_cast<size_t>(length) == text.size())
        return std::nullopt;
    LinkFacts facts{ .text = std::string(text.data(), static_cast<size_t>(length)),
        .identity = identityOf(status) };
    const auto base = facts.text.starts_with('/') ? std::string() : parentOf(place) + '/';
    facts.target = standardisedPath(base + facts.text, std::string());
    return facts;
}

std::expected<void, QString> LinuxRelocationDisk::putInPlaceOfLink(const std::string &copy,
    const FileIdentity &copyIdentity, const std::string &place, const FileIdentity &linkIdentity) const
{
    const OpenPlace from(m_calls, copy);
    const OpenPlace to(m_calls, place);
    if (!from.holds(m_calls, copyIdentity) || !to.holdsLink(m_calls, linkIdentity))
        return std::unexpected(u"It was changed in the meantime."_s);
    const auto exchange = [&] {
        return m_calls.renameAt(
            from.folder.number(), from.name.c_str(), to.folder.number(), to.name.c_str(), RENAME_EXCHANGE);
    };
    if (exchange() != 0)
        return std::unexpected(errno == EINVAL || errno == ENOSYS
                ? u"The file system can't exchange the two in one step."_s
                : LinuxErrorText::sentence(errno));
    // Something else may have taken either place at the last moment: then all goes back.
    if (!from.holdsLink(m_calls, linkIdentity) || !to.holds(m_calls, copyIdentity)) {
        std::ignore = exchange();
        return std::unexpected(u"It was changed in the meantime."_s);
    }
    std::ignore = m_calls.unlinkAt(from.folder.number(), from.name.c_str(), 0);
    return {};
}

} // namespace Quillbrook
