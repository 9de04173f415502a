#pragma once

// The names in one folder, and the newest date in one. For the uninstaller's own use.

#include <QDateTime>

#include <optional>
#include <string>
#include <vector>

namespace Quillbrook::FolderNames {

/// The names (raw bytes) in the folder that `path` leads to, in the order the disk tells them; none where it
/// can't be read or holds more than anybody's would.
[[nodiscard]] std::vector<std::string> in(const std::string &path);

/// When the newest of `path` and of all below it was modified, links not followed. Absent where that can't be
/// told whole. It stops at the first that isn't older than `enough`, and tells that one.
[[nodiscard]] std::optional<QDateTime> newestBelow(
    const std::string &path, const std::optional<QDateTime> &enough = {});

/// Whether `key` can be the name of one entry: it is neither empty nor "." nor "..", and has no slash and no
/// zero byte.
[[nodiscard]] bool isName(const std::string &key);

} // namespace Quillbrook::FolderNames
