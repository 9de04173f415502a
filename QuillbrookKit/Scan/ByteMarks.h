#pragma once

// One bit for each byte of a long run of bytes.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Quillbrook {

class ByteMarks
{
public:
    explicit ByteMarks(size_t byteCount)
        : m_words(byteCount / wordBits + 1)
    {
    }

    void mark(size_t byte)
    {
        m_words[byte / wordBits] |= std::uint64_t{ 1 } << (byte % wordBits);
        m_isEmpty = false;
    }

    /// Whether nothing is marked.
    [[nodiscard]] bool isEmpty() const { return m_isEmpty; }

    /// Whether one of `length` bytes from `start` on is marked.
    [[nodiscard]] bool holdsOneOf(size_t start, size_t length) const
    {
        if (length == 0)
            return false;
        const auto last = start + length - 1;
        const auto firstMask = ~std::uint64_t{ 0 } << (start % wordBits);
        const auto lastMask = ~std::uint64_t{ 0 } >> (wordBits - 1 - last % wordBits);
        auto word = start / wordBits;
        const auto lastWord = last / wordBits;
        if (word == lastWord)
            return (m_words[word] & firstMask & lastMask) != 0;
        if ((m_words[word] & firstMask) != 0)
            return true;
        while (++word < lastWord) {
            if (m_words[word] != 0)
                return true;
        }
        return (m_words[lastWord] & lastMask) != 0;
    }

private:
    static constexpr size_t wordBits = 64;

    std::vector<std::uint64_t> m_words;
    bool m_isEmpty = true;
};

} // namespace Quillbrook
