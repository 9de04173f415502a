#pragma once

// Paths that are longer than what the system takes as one.

#include "Platform/Linux/Files/FileDescriptor.h"

#include <functional>
#include <string>

namespace Quillbrook::LongPath {

/// Opens a folder below another by its name, which the system can take: openat with what flags are wanted.
using Opener = std::function<int(int folder, const char *path)>;

/// Opens the folder at `path` (absolute) with as many calls as its length wants, following links; not open,
/// with errno, where one fails or a single name is too long.
[[nodiscard]] FileDescriptor openFolder(const std::string &path, const Opener &open);
/// As a place only.
[[nodiscard]] FileDescriptor openFolder(const std::string &path);

/// Whether the system takes it as one.
[[nodiscard]] bool isShort(const std::string &path);

} // namespace Quillbrook::LongPath
