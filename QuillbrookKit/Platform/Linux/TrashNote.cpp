#include "Platform/Linux/TrashNote.h"

#include <algorithm>

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
