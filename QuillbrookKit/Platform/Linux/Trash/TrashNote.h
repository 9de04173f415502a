#pragma once

// What the trash writes down of a thing (NAME.trashinfo in its folder `info`), and the names it gives. Pure
// functions on raw bytes.

#include <QDateTime>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Quillbrook::TrashNote {

inline constexpr std::string_view suffix = ".trashinfo";
/// The longest name most file systems take, in bytes, and the longest of one that keeps names encrypted.
inline constexpr size_t longestName = 255;
inline constexpr size_t longestEncryptedName = 143;

/// The whole note. `origin` is where the thing was, absolute or relative to the top of the trash's volume.
[[nodiscard]] std::string text(std::string_view origin, const QDateTime &deleted);

/// The origin in a note; absent where it names none. Signs of encoding that encode nothing stand for
/// themselves.
[[nodiscard]] std::optional<std::string> origin(std::string_view note);

/// Whether a note says both what it has to, to its end.
[[nodiscard]] bool isWhole(std::string_view note);

/// Whether a note was written at `moment`: only where it tells that moment as the time here. One from before
/// the machine was taken to another zone is not.
[[nodiscard]] bool isOf(std::string_view note, const QDateTime &moment);

/// The name for the `attempt`-th try, from 1: first `name` itself, then with the number before its extension;
/// shortened at a whole character so that a note's name has at most `longest` bytes.
[[nodiscard]] std::string candidate(
    std::string_view name, std::uint64_t attempt, size_t longest = longestName);

/// The note's name for a thing's.
[[nodiscard]] inline std::string nameFor(std::string_view name)
{
    return std::string(name).append(suffix);
}

} // namespace Quillbrook::TrashNote
