#pragma once

// The one spelling of a path that the program stores and compares. Pure text: the disk is not asked, so a
// ".." after a link leads to the folder that holds the link.

#include <QString>

#include <string>

namespace Quillbrook {

/// `path` with a leading "~" replaced by `home`, doubled and trailing slashes and "." dropped and ".."
/// resolved; above "/" there is only "/". A relative path stays relative and keeps the ".." that lead out of
/// it. Empty stays empty. "~name" is an ordinary name.
[[nodiscard]] QString standardisedPath(const QString &path, const QString &home);
/// The same for raw bytes.
[[nodiscard]] std::string standardisedPath(const std::string &path, const std::string &home);

/// The folder that `path` (absolute, raw bytes) lies in; "/" for what lies there, and for "/" itself.
[[nodiscard]] std::string parentOf(const std::string &path);

/// Whether `path` is `folder` or lies in it, by their texts. `folder` is not "/".
[[nodiscard]] bool isAtOrBelow(const QString &path, const QString &folder);

} // namespace Quillbrook
