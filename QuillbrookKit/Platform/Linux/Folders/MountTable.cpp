#include "Platform/Linux/Folders/MountTable.h"

#include "Platform/Linux/Files/LinuxFileReading.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace Quillbrook {

namespace {

constexpr size_t idField = 0;
constexpr size_t parentField = 1;
constexpr size_t deviceField = 2;
constexpr size_t rootField = 3;
constexpr size_t mountPointField = 4;
constexpr size_t fieldsNeeded = 5;
// A machine of many containers has some thousand mounts, with a line each.
constexpr qsizetype longestTable = qsizetype{ 64 } * 1024 * 1024;

std::optional<std::uint64_t> number(std::string_view text)
{
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

bool isOctalDigit(char character)
{
    return character >= '0' && character <= '7';
}

// Blank, tab, line feed and backslash in a path stand as a backslash and three octal digits.
std::string unescaped(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const auto digits = text.substr(i + 1, 3);
        if (text[i] == '\\' && digits.size() == 3 && std::ranges::all_of(digits, isOctalDigit)) {
            result += static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + (digits[2] - '0'));
            i += 3;
        } else {
            result += text[i];
        }
    }
    return result;
}

// The next field of a line, which loses it.
std::string_view takeField(std::string_view &line)
{
    const auto length = std::min(line.find(' '), line.size());
    const auto field = line.substr(0, length);
    line.remove_prefix(std::min(length + 1, line.size()));
    return field;
}

std::optional<Mount> parseLine(std::string_view line)
{
    std::array<std::string_view, fieldsNeeded> fields;
    for (auto &field : fields)
        field = takeField(line);
    const auto id = number(fields[idField]);
    const auto parentId = number(fields[parentField]);
    if (!id || !parentId || !fields[mountPointField].starts_with('/'))
        return std::nullopt;
    // Behind the mount's options stand any number of fields, and a hyphen at their end.
    while (!line.empty() && takeField(line) != "-") { }
    const auto type = takeField(line);
    return Mount{ .id = *id,
        .parentId = *parentId,
        .device = std::string(fields[deviceField]),
        .root = unescaped(fields[rootField]),
        .mountPoint = unescaped(fields[mountPointField]),
        .type = unescaped(type),
        .source = unescaped(takeField(line)) };
}

} // namespace

std::vector<Mount> MountTable::parse(std::string_view mountinfo)
{
    std::vector<Mount> mounts;
    while (!mountinfo.empty()) {
        const auto length = std::min(mountinfo.find('\n'), mountinfo.size());
        if (auto mount = parseLine(mountinfo.substr(0, length)))
            mounts.push_back(std::move(*mount));
        mountinfo.remove_prefix(std::min(length + 1, mountinfo.size()));
    }
    return mounts;
}

std::optional<std::vector<Mount>> MountTable::read()
{
    const auto text = LinuxFileReading().contents("/proc/self/mountinfo", longestTable);
    if (!text)
        return std::nullopt;
    return parse({ text->constData(), static_cast<size_t>(text->size()) });
}

} // namespace Quillbrook
