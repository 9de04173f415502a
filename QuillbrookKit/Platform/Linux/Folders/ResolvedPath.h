#pragma once

// Where a path leads without the links on the way to it, as the kernel would go.

#include <optional>
#include <string>

namespace Quillbrook {

/// A path as a folder and a name in it, for calls that must not follow a link at the end.
struct SplitPath
{
    std::string folder{};
    std::string name{};

    bool operator==(const SplitPath &) const = default;

    /// Absent for what names nothing in a folder: a path that is not absolute, "/", one that ends with "." or
    /// "..", or holds a NUL. Slashes at the end are dropped.
    [[nodiscard]] static std::optional<SplitPath> of(const std::string &path);
};

namespace ResolvedPath {

/// `path` (absolute, raw bytes) with the links on the way resolved; its last component is followed only where
/// it is "." or "..". The path as it was given where nothing is there or it can't be reached; empty where it
/// can't be told.
[[nodiscard]] std::string withoutLinks(const std::string &path);

/// The path by which the kernel knows an open folder, of any length; absent where it can't be told.
[[nodiscard]] std::optional<std::string> ofFolder(int folder);

} // namespace ResolvedPath

} // namespace Quillbrook
