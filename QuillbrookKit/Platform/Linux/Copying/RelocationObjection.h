#pragma once

// Why the system could not move something to another volume as a whole, or a link to it would not last. Asked
// before anything is touched; absolute paths in raw bytes.

#include <QString>

#include <optional>
#include <string>

namespace Quillbrook::RelocationObjection {

/// A thing that is neither a folder nor a file, is a link, is a mount, or holds one.
[[nodiscard]] std::optional<QString> ofSource(const std::string &source);
/// A folder that is gone, can't be written to, was handed over by the document portal, lies in the source or
/// holds it, or lies on the same file system.
[[nodiscard]] std::optional<QString> ofDestination(const std::string &source, const std::string &folder);

} // namespace Quillbrook::RelocationObjection
