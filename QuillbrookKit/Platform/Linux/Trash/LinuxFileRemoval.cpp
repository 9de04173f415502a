#include "Platform/Linux/Trash/LinuxFileRemoval.h"

#include "Platform/Linux/Files/LinuxErrorText.h"
#include "Platform/Linux/Folders/ResolvedPath.h"
#include "Platform/Linux/Trash/TreeEraser.h"
#include "Scan/Format.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

// In steps of what the system takes as one path.
FileDescriptor openFolder(const FileCalls &calls, const std::string &path)
{
    constexpr size_t longestPath = PATH_MAX - 1;
    constexpr int flags = O_PATH | O_DIRECTORY;
    FileDescriptor folder;
    int from = AT_FDCWD;
    size_t start = 0;
    while (path.size() - start > longestPath) {
        const auto slash = path.rfind('/', start + longestPath);
        if (slash == std::string::npos || slash <= start) {
            errno = ENAMETOOLONG;
            return {};
        }
        folder = FileDescriptor(calls.openAt(from, path.substr(start, slash - start).c_str(), flags));
        if (!folder.isOpen())
            return {};
        from = folder.number();
        start = path.find_first_not_of('/', slash);
        if (start == std::string::npos)
            return folder;
    }
    return FileDescriptor(calls.openAt(from, path.c_str() + start, flags));
}

} // namespace

LinuxFileRemoval::LinuxFileRemoval(const FileCalls &calls)
    : m_calls(calls)
{
}

std::expected<void, QString> LinuxFileRemoval::remove(const std::string &path)
{
    const auto place = SplitPath::of(path);
    if (!place)
        return std::unexpected(LinuxErrorText::sentence(EINVAL));
    const auto folder = openFolder(m_calls, place->folder);
    if (!folder.isOpen())
        return std::unexpected(LinuxErrorText::sentence(errno));
    const auto erasure = TreeEraser(m_calls, folder.number()).erase(place->name.c_str());
    if (!erasure.isComplete())
        return std::unexpected(leftText(erasure));
    return {};
}

QString LinuxFileRemoval::leftText(const Erasure &erasure)
{
    const auto why = LinuxErrorText::sentence(erasure.firstError);
    if (erasure.firstPath.empty() && erasure.failures == 1)
        return why;
    const auto first
        = erasure.firstPath.empty() ? u"It"_s : u'"' + QString::fromStdString(erasure.firstPath) + u'"';
    const auto others = erasure.failures > 1
        ? u" and %1 more"_s.arg(Format::count(static_cast<qint64>(erasure.failures - 1)))
        : QString();
    return first + others + u" could not be deleted. "_s + why;
}

} // namespace Quillbrook
