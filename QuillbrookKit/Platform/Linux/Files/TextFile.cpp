#include "Platform/Linux/Files/TextFile.h"

#include "Platform/Linux/Files/FileDescriptor.h"

#include <cerrno>
#include <fcntl.h>

namespace Quillbrook {

namespace {

// The kernel writes its tables anew for each read of this size: a large one keeps them whole.
constexpr size_t readBytes = 65536;

} // namespace

std::optional<std::string> TextFile::read(const std::string &path)
{
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen())
        return std::nullopt;
    std::string text;
    for (;;) {
        const auto length = text.size();
        text.resize(length + readBytes);
        const auto count = ::read(file.number(), text.data() + length, readBytes);
        if (count < 0 && errno != EINTR)
            return std::nullopt;
        text.resize(length + static_cast<size_t>(count > 0 ? count : 0));
        if (count == 0)
            return text;
    }
}

} // namespace Quillbrook
