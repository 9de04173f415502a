#pragma once

// Raw bytes of the disk as text. Names are bytes there, which need not be UTF-8.

#include <QString>

#include <string_view>

namespace Quillbrook {

/// `raw` as text, for people to read and for tables to compare with: U+FFFD stands for what is not UTF-8. A
/// leading byte order mark is part of a name and stays.
[[nodiscard]] QString repairedText(std::string_view raw);

[[nodiscard]] bool isAscii(std::string_view bytes);

} // namespace Quillbrook
