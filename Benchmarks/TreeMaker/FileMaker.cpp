#include "TreeMaker/FileMaker.h"

#include "TreeMaker/Names.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace Quillbrook::Benchmarks {

namespace {

constexpr std::size_t rememberedFiles = 4096;
constexpr std::uint64_t symlinkThousandths = 10;
constexpr std::uint64_t hardLinkThousandths = 5;

// What a file's content is like. Bytes are reserved, not written: that gives it the blocks that writing
// would, without the data passing through the page cache.
struct SizeClass
{
    std::uint64_t thousandths;
    std::int64_t fewestBytes;
    std::int64_t mostBytes;
    bool isHole;
};

constexpr std::array sizeClasses{
    SizeClass{ .thousandths = 525, .fewestBytes = 0, .mostBytes = 0, .isHole = false },
    SizeClass{ .thousandths = 20, .fewestBytes = 1, .mostBytes = 10'000'000, .isHole = true },
    SizeClass{ .thousandths = 410, .fewestBytes = 1, .mostBytes = 4096, .isHole = false },
    SizeClass{ .thousandths = 35, .fewestBytes = 4097, .mostBytes = 8192, .isHole = false },
    SizeClass{ .thousandths = 10, .fewestBytes = 8193, .mostBytes = 65536, .isHole = false },
};

bool giveSize(int file, Random &random)
{
    auto left = random.below(1000);
    for (const auto &row : sizeClasses) {
        if (left >= row.thousandths) {
            left -= row.thousandths;
            continue;
        }
        if (row.mostBytes == 0)
            return true;
        const auto bytes = static_cast<off_t>(random.between(
            static_cast<std::uint64_t>(row.fewestBytes), static_cast<std::uint64_t>(row.mostBytes)));
        if (row.isHole)
            return ::ftruncate(file, bytes) == 0;
        errno = ::posix_fallocate(file, 0, bytes);
        return errno == 0;
    }
    return true;
}

} // namespace

FileMaker::FileMaker(const TreePlan &plan, int root)
    : m_plan(plan)
    , m_root(root)
    , m_random(~plan.request.seed)
{
}

bool FileMaker::fill(int descriptor, std::size_t folder)
{
    const auto &planned = m_plan.folders[folder];
    for (std::uint32_t number = 0; number < planned.files; ++number, ++m_serial) {
        const auto name = makeFileName(planned.style, number, m_serial, m_random);
        if (!makeEntry(descriptor, folder, name))
            return false;
    }
    return true;
}

bool FileMaker::makeEntry(int descriptor, std::size_t folder, const std::string &name)
{
    if (m_plan.request.kind != TreeKind::home)
        return makeFile(descriptor, name);
    const auto which = m_random.below(1000);
    if (which < symlinkThousandths)
        return makeSymlink(descriptor, name);
    if (which < symlinkThousandths + hardLinkThousandths && !m_linkable.empty())
        return makeHardLink(descriptor, name);
    rememberForLinks(folder, name);
    return makeFile(descriptor, name);
}

bool FileMaker::makeFile(int descriptor, const std::string &name)
{
    const auto file = ::openat(descriptor, name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644);
    if (file < 0)
        return false;
    const bool sized = m_plan.request.kind != TreeKind::home || giveSize(file, m_random);
    const auto error = errno;
    ::close(file);
    errno = error;
    return sized;
}

bool FileMaker::makeSymlink(int descriptor, const std::string &name)
{
    // To a folder that is there (never entered by a scan, and a loop if it were), to nothing, or to nothing
    // by a target so long that it needs a block of its own.
    const auto kind = m_random.below(10);
    const auto target = kind < 5 ? std::string("..")
        : kind < 9               ? "not there " + std::to_string(m_serial)
                                 : "far away/" + std::string(150, 'x') + std::to_string(m_serial);
    return ::symlinkat(target.c_str(), descriptor, name.c_str()) == 0;
}

bool FileMaker::makeHardLink(int descriptor, const std::string &name)
{
    const auto &file = m_linkable[m_random.below(m_linkable.size())];
    const auto path = relativePath(m_plan, file.folder);
    return ::linkat(m_root, (path.empty() ? file.name : path + '/' + file.name).c_str(), descriptor,
               name.c_str(), 0)
        == 0;
}

void FileMaker::rememberForLinks(std::size_t folder, const std::string &name)
{
    if (m_linkable.size() < rememberedFiles)
        m_linkable.push_back({ folder, name });
    else if (m_random.chance(50))
        m_linkable[m_random.below(rememberedFiles)] = { folder, name };
}

} // namespace Quillbrook::Benchmarks
