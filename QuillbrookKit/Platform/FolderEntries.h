#pragma once

// Goes over the names in a folder and in the folders below it, without asking anything of the files
// themselves. One object serves one walk on one thread.

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Quillbrook {

/// `name` points into the walk's scratch and is valid until its next call.
struct FolderEntry
{
    std::string_view name{};
    bool isFolder = false;
};

class FolderEntries
{
public:
    /// What is at the start of the walk; `nothing` also where a link leads nowhere.
    enum class Kind { nothing, folder, other };

    virtual ~FolderEntries() = default;
    /// Told of what a link leads to.
    [[nodiscard]] virtual Kind kind() const = 0;
    /// Opens `path`, the start of the walk or a folder met below it, in raw bytes and of any length; what was
    /// open before is closed. A link is not followed, not even at the start, and what is mounted is not
    /// entered; false for these, and for what can't be read.
    [[nodiscard]] virtual bool open(const std::string &path) = 0;
    /// Where the open folder really is, without links; absent when nothing is open or it can't be told.
    [[nodiscard]] virtual std::optional<std::string> place() const = 0;
    /// The next entry of the open folder, without "." and ".."; absent at the end and when nothing is open.
    [[nodiscard]] virtual std::optional<FolderEntry> next() = 0;
};

/// A walk of this platform that starts at `path` (absolute, raw bytes).
[[nodiscard]] std::unique_ptr<FolderEntries> folderEntries(const std::string &path);

} // namespace Quillbrook
