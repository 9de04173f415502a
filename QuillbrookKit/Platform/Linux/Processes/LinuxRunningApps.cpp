#include "Platform/Linux/Processes/LinuxRunningApps.h"

#include "Platform/FileReading.h"
#include "Platform/FolderEntries.h"
#include "Platform/Linux/Files/FlatpakInfo.h"

#include <cerrno>
#include <csignal>
#include <sys/stat.h>
#include <utility>

namespace Quillbrook {

namespace {

// Far more than anyone runs. Where there is more, nobody reads on, and nothing can be told.
constexpr int mostEntries = 1024;
constexpr qsizetype longestInfo = 262'144;
constexpr qsizetype longestNumber = 32;

bool isMissing(const std::string &path)
{
    struct stat status = {};
    return ::lstat(path.c_str(), &status) != 0 && errno == ENOENT;
}

// A process that may not be signalled is another user's, which got the number after the instance had ended.
std::optional<bool> isAlive(const std::optional<QByteArray> &number)
{
    bool isNumber = false;
    const auto process = number.value_or(QByteArray()).trimmed().toInt(&isNumber);
    if (!isNumber || process < 1)
        return std::nullopt;
    return ::kill(process, 0) == 0;
}

} // namespace

LinuxRunningApps::LinuxRunningApps(const FileReading &reading, std::string runtimeFolder)
    : m_reading(reading)
    , m_runtimeFolder(std::move(runtimeFolder))
{
}

std::optional<bool> LinuxRunningApps::isRunning(const QString &applicationId) const
{
    if (!m_runtimeFolder.starts_with('/') || isMissing(m_runtimeFolder))
        return std::nullopt;
    const auto folder = m_runtimeFolder + "/.flatpak";
    if (isMissing(folder))
        return false;
    const auto entries = folderEntries(folder);
    if (!entries->open(folder))
        return std::nullopt;
    bool isEachTold = true;
    int count = 0;
    while (const auto entry = entries->next()) {
        if (++count > mostEntries)
            return std::nullopt;
        // Beside the instances there are folders of whole applications, whose names have dots.
        if (entry->name.contains('.'))
            continue;
        const auto instance = folder + '/' + std::string(entry->name);
        const auto info = m_reading.contents(instance + "/info", longestInfo);
        const auto name = parseFlatpakInfo(info.value_or(QByteArray())).application;
        if (!name.isEmpty() && name != applicationId)
            continue;
        const auto alive = isAlive(m_reading.contents(instance + "/pid", longestNumber));
        if (!name.isEmpty() && alive.value_or(false))
            return true;
        isEachTold &= alive.has_value() && !*alive;
    }
    return isEachTold ? std::optional(false) : std::nullopt;
}

} // namespace Quillbrook
