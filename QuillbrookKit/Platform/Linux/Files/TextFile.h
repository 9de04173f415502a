#pragma once

// Reading the small text files by which the kernel tells about itself.

#include <optional>
#include <string>

namespace Quillbrook::TextFile {

/// All of the file; absent when it can't be opened or read.
[[nodiscard]] std::optional<std::string> read(const std::string &path);

} // namespace Quillbrook::TextFile
