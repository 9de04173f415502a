#pragma once

// What the drives say of themselves. Paths are absolute and raw bytes. A file system whose server is gone may
// hold a caller for as long as the system waits for it: not for the main thread. Callable from any other.

#include <QString>

#include <optional>
#include <string>

namespace Quillbrook {

/// Of the volume that holds a path. What it does not tell is absent. Bytes.
struct DriveFacts
{
    std::optional<qint64> available{};
    std::optional<qint64> availableForImportantUsage{};
    std::optional<bool> isRemovable{};
    std::optional<bool> isInternal{};

    bool operator==(const DriveFacts &) const = default;
};

class Drives
{
public:
    virtual ~Drives() = default;
    /// All of them absent where the volume can't be asked.
    [[nodiscard]] virtual DriveFacts facts(const std::string &path) const = 0;
    /// Whether both lie on one file system, whichever of its mounts they are reached by, links on the way and
    /// at the end followed. Absent where either can't be asked.
    [[nodiscard]] virtual std::optional<bool> areOnOneFileSystem(
        const std::string &one, const std::string &other) const = 0;
    /// What a person calls the drive that holds `path`: by where it is mounted, and where it isn't, by where
    /// drives usually are. Never empty.
    [[nodiscard]] virtual QString name(const std::string &path) const = 0;
    /// What that is likely to be, by the text of `path` alone: no drive is asked. Never empty.
    [[nodiscard]] virtual QString likelyName(const std::string &path) const = 0;
};

} // namespace Quillbrook
