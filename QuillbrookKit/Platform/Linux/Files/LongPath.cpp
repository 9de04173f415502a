#include "Platform/Linux/Files/LongPath.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>

namespace Quillbrook::LongPath {

namespace {

constexpr size_t longestPath = PATH_MAX - 1;

} // namespace

bool isShort(const std::string &path)
{
    return path.size() <= longestPath;
}

FileDescriptor openFolder(const std::string &path, const Opener &open)
{
    FileDescriptor folder;
    int from = AT_FDCWD;
    size_t start = 0;
    while (path.size() - start > longestPath) {
        const auto slash = path.rfind('/', start + longestPath);
        if (slash == std::string::npos || slash <= start) {
            errno = ENAMETOOLONG;
            return {};
        }
        folder = FileDescriptor(open(from, path.substr(start, slash - start).c_str()));
        if (!folder.isOpen())
            return {};
        from = folder.number();
        start = path.find_first_not_of('/', slash);
        if (start == std::string::npos)
            return folder;
    }
    return FileDescriptor(open(from, path.c_str() + start));
}

FileDescriptor openFolder(const std::string &path)
{
    return openFolder(path, [](int folder, const char *name) {
        return ::openat(folder, name, O_PATH | O_DIRECTORY | O_CLOEXEC);
    });
}

} // namespace Quillbrook::LongPath
