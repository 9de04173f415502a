#pragma once

// A thing as a name in an open folder, by which it is judged and taken. Who exchanges a folder on the way for
// a link afterwards exchanges nothing of this.

#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Trash/FileCalls.h"
#include "Platform/TakenThing.h"

#include <expected>

namespace Quillbrook {

struct HeldThing
{
    FileDescriptor folder{};
    std::string name{};
    /// Where the folder really is, without links.
    std::string folderPath{};
    struct statx folderStatus = {};
    struct statx status = {};

    /// What lies at `path` (absolute, of any length), or an errno.
    [[nodiscard]] static std::expected<HeldThing, int> at(const FileCalls &calls, const std::string &path);

    [[nodiscard]] std::string path() const;
    [[nodiscard]] bool isFolder() const { return S_ISDIR(status.stx_mode); }
    [[nodiscard]] TakenThing seen() const;
};

/// When it was made, in nanoseconds since 1970; 0 where the file system does not keep that.
[[nodiscard]] qint64 bornAt(const struct statx &status);

} // namespace Quillbrook
