#pragma once

// Raw bytes of the disk as text. Names are bytes there, which need not be UTF-8.

#include <QString>

#include <string>
#include <string_view>

namespace Quillbrook {

/// `raw` as text, for people to read and for tables to compare with: U+FFFD stands for what is not UTF-8. A
/// leading byte order mark is part of a name and stays.
[[nodiscard]] QString repairedText(std::string_view raw);

/// The way back for an absolute path that was put together below the text of a folder, of which `folder` are
/// the raw bytes: what lies below it is told by the path, and where it is by those bytes. Any other path is
/// what it says.
[[nodiscard]] std::string rawPathBelow(const std::string &folder, const QString &path);

[[nodiscard]] bool isAscii(std::string_view bytes);

} // namespace Quillbrook
