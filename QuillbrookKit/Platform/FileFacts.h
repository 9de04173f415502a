#pragma once

// What the file system says about one path, without opening it. Paths are raw bytes. Callable from any
// thread.

#include <QDateTime>

#include <cstdint>
#include <optional>
#include <string>

namespace Quillbrook {

enum class FileKind : std::uint8_t { directory, symlink, other };

/// Whole seconds, in UTC. `created` is absent where the file system keeps no birth time, or one before the
/// first second of 1970.
struct FileDates
{
    QDateTime lastModified{};
    std::optional<QDateTime> created{};

    bool operator==(const FileDates &) const = default;
};

class FileFacts
{
public:
    virtual ~FileFacts() = default;
    /// What lies at `path` itself, a link not followed; absent when nothing does or it can't be asked.
    [[nodiscard]] virtual std::optional<FileKind> kind(const std::string &path) const = 0;
    /// The dates of what `path` leads to, links followed; absent when they can't be read.
    [[nodiscard]] virtual std::optional<FileDates> dates(const std::string &path) const = 0;
};

} // namespace Quillbrook
