#include "Platform/Linux/Files/LinuxFileReading.h"

#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Files/Uninterrupted.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Quillbrook {

namespace {

// The kernel's own files tell no size, and are written anew for each read: a large one keeps a table whole.
constexpr qsizetype bytesOfAnUnknownSize = 65536;

} // namespace

std::optional<QByteArray> LinuxFileReading::contents(const std::string &path, qsizetype limit) const
{
    // O_NONBLOCK keeps the opening of a pipe that nobody writes to from waiting; it means nothing for a
    // regular file, and nothing else is read.
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat facts = {};
    if (!file.isOpen() || ::fstat(file.number(), &facts) != 0 || !S_ISREG(facts.st_mode)
        || facts.st_size > limit)
        return std::nullopt;
    // One byte more than the size said, so that a file that grows meanwhile is noticed.
    QByteArray bytes(facts.st_size > 0 ? static_cast<qsizetype>(facts.st_size) + 1 : bytesOfAnUnknownSize,
        Qt::Uninitialized);
    qsizetype length = 0;
    for (;;) {
        if (length > limit)
            return std::nullopt;
        if (length == bytes.size())
            bytes.resize(bytes.size() * 2);
        const auto count = uninterrupted([&] {
            return ::read(file.number(), bytes.data() + length, static_cast<size_t>(bytes.size() - length));
        });
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            break;
        length += count;
    }
    bytes.resize(length);
    return bytes;
}

} // namespace Quillbrook
