#include "Uninstaller/FolderNames.h"

#include <chrono>
#include <filesystem>

namespace Quillbrook::FolderNames {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t mostNames = 100'000;
constexpr std::size_t mostBelow = 2'000'000;

std::optional<QDateTime> modified(const fs::directory_entry &entry)
{
    std::error_code error;
    // A link's own date can't be asked for in this way, and says nothing about use.
    if (entry.is_symlink(error) || error)
        return error ? std::nullopt : std::optional(QDateTime::fromSecsSinceEpoch(0, Qt::UTC));
    const auto time = entry.last_write_time(error);
    if (error)
        return std::nullopt;
    const auto since = std::chrono::file_clock::to_sys(time).time_since_epoch();
    return QDateTime::fromMSecsSinceEpoch(
        std::chrono::floor<std::chrono::milliseconds>(since).count(), Qt::UTC);
}

} // namespace

std::vector<std::string> in(const std::string &path)
{
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
        if (names.size() == mostNames)
            return {};
        names.push_back(entry->path().filename().native());
    }
    return error ? std::vector<std::string>() : names;
}

std::optional<QDateTime> newestBelow(const std::string &path, const std::optional<QDateTime> &enough)
{
    std::error_code error;
    const fs::directory_entry top(path, error);
    if (error)
        return std::nullopt;
    auto newest = modified(top);
    if (!newest || !top.is_directory(error) || top.is_symlink(error) || (enough && *newest >= *enough))
        return newest;
    std::size_t count = 0;
    for (fs::recursive_directory_iterator entry(path, error), end; entry != end; entry.increment(error)) {
        const auto date = error || ++count > mostBelow ? std::nullopt : modified(*entry);
        if (!date)
            return std::nullopt;
        newest = std::max(*newest, *date);
        if (enough && *newest >= *enough)
            return newest;
    }
    return error ? std::nullopt : newest;
}

bool isName(const std::string &key)
{
    return !key.empty() && key != "." && key != ".." && key.find('/') == std::string::npos
        && key.find('\0') == std::string::npos;
}

} // namespace Quillbrook::FolderNames
