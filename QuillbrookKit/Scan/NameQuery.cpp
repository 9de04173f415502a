#include "Scan/NameQuery.h"

#include "RawText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace Quillbrook {

namespace {

constexpr size_t blockBytes = 64;

/// The only characters beyond ASCII whose lower case or composed form holds an ASCII character: U+0130,
/// U+037E, U+1FEF and U+212A.
constexpr std::array<std::string_view, 4> foldingToAscii{ "\xc4\xb0", "\xcd\xbe", "\xe1\xbf\xaf",
    "\xe2\x84\xaa" };

bool isBeyondAscii(char byte)
{
    return (static_cast<unsigned char>(byte) & 0x80U) != 0;
}

QString folded(const QString &text)
{
    return text.toLower().normalized(QString::NormalizationForm_C);
}

/// How a byte is compared with a lower-case ASCII character: the letters differ from their capitals in one
/// bit, which all letters have set and which no other capital has.
struct Comparison
{
    explicit Comparison(char lowerCase)
        : value(static_cast<unsigned char>(lowerCase))
        , caseBit(lowerCase >= 'a' && lowerCase <= 'z' ? 0x20 : 0)
    {
    }

    [[nodiscard]] bool equals(char byte) const
    {
        return (static_cast<unsigned char>(byte) | caseBit) == value;
    }

    unsigned char value;
    unsigned char caseBit;
};

/// What a block of bytes may hold, seen by the whole block at once.
struct Glimpse
{
    /// 1 at each place where the text may begin.
    std::array<unsigned char, blockBytes> beginnings{};
    bool isAscii = true;
};

// Looks for the text's first, second and last character at their distances. Written without branches, for
// the compiler to take many bytes at a time.
Glimpse glimpse(const char *block, std::string_view text)
{
    const Comparison first(text.front());
    const Comparison second(text[text.size() > 1 ? 1 : 0]);
    const Comparison last(text.back());
    const auto *atSecond = block + (text.size() > 1 ? 1 : 0);
    const auto *atLast = block + text.size() - 1;
    Glimpse seen;
    unsigned char allBits = 0;
    for (size_t i = 0; i < blockBytes; ++i) {
        seen.beginnings[i] = static_cast<unsigned char>(static_cast<unsigned char>(first.equals(block[i]))
            & static_cast<unsigned char>(second.equals(atSecond[i]))
            & static_cast<unsigned char>(last.equals(atLast[i])));
        allBits = static_cast<unsigned char>(allBits | static_cast<unsigned char>(block[i]));
    }
    seen.isAscii = (allBits & 0x80U) == 0;
    return seen;
}

// Calls `visit` with each place of `block` that is set, passing over eight unset ones at a time.
void forEachSet(const std::array<unsigned char, blockBytes> &block, auto &&visit)
{
    for (size_t word = 0; word < blockBytes; word += sizeof(std::uint64_t)) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, block.data() + word, sizeof(eight));
        if (eight == 0)
            continue;
        for (auto place = word; place < word + sizeof(eight); ++place) {
            if (block[place] != 0)
                visit(place);
        }
    }
}

void markWhatFoldsToAscii(std::string_view names, size_t begin, size_t end, ByteMarks &marks)
{
    for (auto place = begin; place < end; ++place) {
        if (!isBeyondAscii(names[place]))
            continue;
        const auto rest = names.substr(place);
        if (std::ranges::any_of(
                foldingToAscii, [&](std::string_view character) { return rest.starts_with(character); }))
            marks.mark(place);
    }
}

} // namespace

NameQuery::NameQuery(const QString &text)
    : m_text(folded(text))
    , m_bytes(m_text.toStdString())
    , m_isAscii(isAscii(m_bytes))
{
}

bool NameQuery::isHeldBy(std::string_view name) const
{
    return folded(repairedText(name)).contains(m_text);
}

ByteMarks NameQuery::marks(std::span<const char> names) const
{
    ByteMarks marks(names.size());
    if (m_isAscii) {
        markAscii(names, marks);
        return marks;
    }
    // A name that is ASCII folds to ASCII.
    for (size_t place = 0; place < names.size(); ++place) {
        if (isBeyondAscii(names[place]))
            marks.mark(place);
    }
    return marks;
}

// A name that holds an ASCII text holds its letters in some case, or a character that folds to one of them.
void NameQuery::markAscii(std::span<const char> names, ByteMarks &marks) const
{
    const std::string_view all(names.data(), names.size());
    const auto length = m_bytes.size();
    size_t begin = 0;
    for (; begin + blockBytes + length <= all.size(); begin += blockBytes) {
        const auto seen = glimpse(all.data() + begin, m_bytes);
        forEachSet(seen.beginnings, [&](size_t place) {
            if (isAsciiFoundAt(all.data() + begin + place))
                marks.mark(begin + place);
        });
        if (!seen.isAscii)
            markWhatFoldsToAscii(all, begin, begin + blockBytes, marks);
    }
    markWhatFoldsToAscii(all, begin, all.size(), marks);
    for (; begin + length <= all.size(); ++begin) {
        if (isAsciiFoundAt(all.data() + begin))
            marks.mark(begin);
    }
}

bool NameQuery::isAsciiFoundAt(const char *place) const
{
    return std::ranges::all_of(
        m_bytes, [&](char character) { return Comparison(character).equals(*place++); });
}

} // namespace Quillbrook
