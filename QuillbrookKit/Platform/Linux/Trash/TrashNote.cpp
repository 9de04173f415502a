#include "Platform/Linux/Trash/TrashNote.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace Quillbrook::TrashNote {

namespace {

bool standsForItself(char byte)
{
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9')
        || std::string_view("-_.~/").find(byte) != std::string_view::npos;
}

std::string percentEncoded(std::string_view bytes)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(bytes.size());
    for (const char byte : bytes) {
        if (standsForItself(byte)) {
            encoded += byte;
            continue;
        }
        const auto value = static_cast<unsigned char>(byte);
        encoded += '%';
        encoded += digits[value >> 4U];
        encoded += digits[value & 15U];
    }
    return encoded;
}

// Absent for what is no digit of a hexadecimal number.
std::optional<unsigned> digit(char byte)
{
    unsigned value = 0;
    const auto result = std::from_chars(&byte, &byte + 1, value, 16);
    return result.ec == std::errc() ? std::optional(value) : std::nullopt;
}

std::string percentDecoded(std::string_view text)
{
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto high = text[i] == '%' && i + 2 < text.size() ? digit(text[i + 1]) : std::nullopt;
        const auto low = high ? digit(text[i + 2]) : std::nullopt;
        bytes += low ? static_cast<char>(*high * 16 + *low) : text[i];
        i += low ? 2 : 0;
    }
    return bytes;
}

// What follows `key` in its line; absent where the note has no such line.
std::optional<std::string_view> value(std::string_view note, std::string_view key)
{
    const auto start = note.starts_with("[Trash Info]") ? note.find(key) : std::string_view::npos;
    if (start == std::string_view::npos)
        return std::nullopt;
    const auto rest = note.substr(start + key.size());
    return rest.substr(0, rest.find_first_of("\r\n"));
}

QDateTime deletionDate(std::string_view note)
{
    const auto told = value(note, "\nDeletionDate=").value_or(std::string_view());
    return QDateTime::fromString(
        QString::fromUtf8(told.data(), static_cast<qsizetype>(told.size())), Qt::ISODate);
}

// Not within a character; of bytes that are no text at most as many go as a character can have.
std::string_view shortened(std::string_view name, size_t longest)
{
    if (name.size() <= longest)
        return name;
    constexpr int mostContinued = 3;
    auto size = longest;
    for (int i = 0; i < mostContinued && size > 0; ++i, --size)
        if ((static_cast<unsigned char>(name[size]) & 0xC0U) != 0x80U)
            return name.substr(0, size);
    return name.substr(0, (static_cast<unsigned char>(name[size]) & 0xC0U) != 0x80U ? size : longest);
}

} // namespace

std::string text(std::string_view origin, const QDateTime &deleted)
{
    const auto local = deleted.toLocalTime().toString(u"yyyy-MM-ddThh:mm:ss").toStdString();
    return "[Trash Info]\nPath=" + percentEncoded(origin) + "\nDeletionDate=" + local + '\n';
}

std::optional<std::string> origin(std::string_view note)
{
    const auto path = percentDecoded(value(note, "\nPath=").value_or(std::string_view()));
    return path.empty() ? std::nullopt : std::optional(path);
}

bool isWhole(std::string_view note)
{
    return origin(note) && deletionDate(note).isValid() && note.ends_with('\n');
}

bool isOf(std::string_view note, const QDateTime &moment)
{
    // Between the note and the row in the ledger lies a rename, on a disk that may be slow.
    constexpr qint64 slack = 10;
    const auto written = deletionDate(note);
    return written.isValid() && moment.isValid() && std::abs(moment.secsTo(written)) <= slack;
}

std::string candidate(std::string_view name, std::uint64_t attempt, size_t longest)
{
    const auto room = longest - suffix.size();
    if (attempt <= 1)
        return std::string(shortened(name, room));
    auto number = '.' + std::to_string(attempt);
    const auto dot = name.rfind('.');
    const bool hasExtension = dot != std::string_view::npos && dot > 0 && name.size() - dot <= room / 2;
    const auto extension = hasExtension ? name.substr(dot) : std::string_view();
    const auto stem = name.substr(0, name.size() - extension.size());
    number.append(extension);
    return std::string(shortened(stem, room - number.size())).append(number);
}

} // namespace Quillbrook::TrashNote
