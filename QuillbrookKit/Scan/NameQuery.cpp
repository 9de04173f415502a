#include "Scan/NameQuery.h"

#include <algorithm>
#include <array>

namespace Quillbrook {

namespace {

constexpr auto lowerCase = [] {
    std::array<char, 256> table{};
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<char>(i >= 'A' && i <= 'Z' ? i + ('a' - 'A') : i);
    return table;
}();

/// The only characters beyond ASCII whose lower case or composed form holds an ASCII character: U+0130,
/// U+037E, U+1FEF and U+212A.
constexpr std::array<std::string_view, 4> foldingToAscii{ "\xc4\xb0", "\xcd\xbe", "\xe1\xbf\xaf",
    "\xe2\x84\xaa" };

char lowered(char byte)
{
    return lowerCase[static_cast<unsigned char>(byte)];
}

bool isAscii(std::string_view bytes)
{
    return std::ranges::none_of(bytes, [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; });
}

QString folded(const QString &text)
{
    return text.toLower().normalized(QString::NormalizationForm_C);
}

} // namespace

NameQuery::NameQuery(const QString &text)
    : m_text(folded(text))
    , m_ascii(m_text.toStdString())
    , m_isAscii(isAscii(m_ascii))
{
}

bool NameQuery::isHeldBy(std::string_view name) const
{
    if (!m_isAscii)
        return !isAscii(name) && isFoundInText(name);
    // Most names are ASCII and most names do not match, so the bytes decide. In a name that is not ASCII a
    // found letter may be part of a composed character, and a few characters fold to a letter.
    if (isFoundInAscii(name))
        return isAscii(name) || isFoundInText(name);
    if (isAscii(name))
        return false;
    return std::ranges::any_of(foldingToAscii, [&](std::string_view character) {
        return name.find(character) != std::string_view::npos;
    }) && isFoundInText(name);
}

bool NameQuery::isFoundInAscii(std::string_view name) const
{
    const auto length = m_ascii.size();
    if (length == 0)
        return true;
    if (name.size() < length)
        return false;
    const auto first = m_ascii.front();
    const auto lastStart = name.size() - length;
    for (size_t start = 0; start <= lastStart; ++start) {
        if (lowered(name[start]) != first)
            continue;
        size_t matched = 1;
        while (matched < length && lowered(name[start + matched]) == m_ascii[matched])
            ++matched;
        if (matched == length)
            return true;
    }
    return false;
}

bool NameQuery::isFoundInText(std::string_view name) const
{
    return folded(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()))).contains(m_text);
}

} // namespace Quillbrook
