#pragma once

// What the file system says about one path, without opening it. Paths are raw bytes. Callable from any
// thread.

#include <QDateTime>

#include <cstdint>
#include <optional>
#include <string>

namespace Quillbrook {

enum class FileKind : std::uint8_t { directory, symlink, other };

/// Whole seconds, in UTC. `created` is a `birthTime`, absent too where the file system has no such thing.
struct FileDates
{
    QDateTime lastModified{};
    std::optional<QDateTime> created{};

    bool operator==(const FileDates &) const = default;
};

/// The birth time that a file system tells in seconds since 1970; absent for one before the first second, by
/// which file systems say that they keep none.
[[nodiscard]] inline std::optional<QDateTime> birthTime(qint64 seconds)
{
    return seconds >= 1 ? std::optional(QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC)) : std::nullopt;
}

class FileFacts
{
public:
    virtual ~FileFacts() = default;
    /// What lies at `path` itself, a link not followed; absent when nothing does or it can't be asked.
    [[nodiscard]] virtual std::optional<FileKind> kind(const std::string &path) const = 0;
    /// The dates of what `path` leads to, links followed; absent when they can't be read.
    [[nodiscard]] virtual std::optional<FileDates> dates(const std::string &path) const = 0;
    /// How many bytes the file at `path` itself is long, a link not followed; absent when it can't be asked.
    [[nodiscard]] virtual std::optional<qint64> length(const std::string &path) const = 0;
};

/// The number of the inode of what lies at `path` itself (raw bytes); absent when nothing does or it can't be
/// asked. Needs no service, so that it can be asked where the answer may come after they are gone.
[[nodiscard]] std::optional<std::uint64_t> inodeAt(const std::string &path);

} // namespace Quillbrook
