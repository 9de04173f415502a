#pragma once

// Who holds space that was to come back: what the system tells about things that were removed. Each answer
// takes a second at the most; what was not looked at by then, or may not be looked at, is not told. Paths are
// absolute, raw bytes, and without links. Callable from any thread; blocks on the disk.

#include <QString>

#include <memory>
#include <string>
#include <vector>

namespace Quillbrook {

/// Files that are about to be removed and have further names. Holds none of their space once it has answered.
class LinkedFiles
{
public:
    virtual ~LinkedFiles() = default;
    /// How many bytes are still there by another name. To be asked once, after the removal.
    [[nodiscard]] virtual qint64 bytesHeld() = 0;
};

/// A program that has removed files open.
struct OpenFiles
{
    /// As the system names the process.
    QString program{};
    qint64 bytes = 0;

    bool operator==(const OpenFiles &) const = default;
};

class SpaceHolders
{
public:
    virtual ~SpaceHolders() = default;

    /// Looks for files with further names in what is about to be removed, for a twentieth of a second.
    [[nodiscard]] virtual std::unique_ptr<LinkedFiles> linkedFiles(
        const std::vector<std::string> &paths) const = 0;
    /// The user's own programs that have files open which lay in one of `paths` and are removed, the one that
    /// holds most first.
    [[nodiscard]] virtual std::vector<OpenFiles> openFiles(const std::vector<std::string> &paths) const = 0;
    /// The names of the snapshots in which one of `paths` is still there.
    [[nodiscard]] virtual std::vector<QString> snapshots(const std::vector<std::string> &paths) const = 0;
    /// Whether what a file takes on the volume of `path` comes back to the byte when it goes, so that what is
    /// missing was taken by others. Not so where files can share what they hold, or are compressed.
    [[nodiscard]] virtual bool countsExactly(const std::string &path) const = 0;
};

} // namespace Quillbrook
