#include "PropertyListBounds.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace Quillbrook {

namespace {

constexpr int maximumDepth = 128;
/// Bytes of all objects when each is counted wherever it is named, and a fixed charge for each naming.
constexpr std::uint64_t maximumUnfolded = std::uint64_t{ 64 } * 1024 * 1024;
constexpr std::uint64_t chargePerObject = 64;
/// In the XML form nothing is named twice, so that the number of containers bounds their depth.
constexpr qsizetype maximumXmlContainers = 10'000;

constexpr qsizetype headerBytes = 8;
constexpr qsizetype trailerBytes = 32;

/// Walks the objects of a binary property list as a parser would, adding up what it would build.
class BinaryWalk
{
public:
    explicit BinaryWalk(QByteArrayView data)
        : m_data(data)
    {
    }

    bool withinBounds()
    {
        if (m_data.size() < headerBytes + trailerBytes)
            return false;
        const auto trailer = m_data.size() - trailerBytes;
        m_offsetBytes = static_cast<std::uint8_t>(m_data[trailer + 6]);
        m_referenceBytes = static_cast<std::uint8_t>(m_data[trailer + 7]);
        m_objectCount = number(trailer + 8, 8).value_or(0);
        const auto top = number(trailer + 16, 8);
        const auto table = number(trailer + 24, 8);
        if (m_offsetBytes < 1 || m_offsetBytes > 8 || m_referenceBytes < 1 || m_referenceBytes > 8 || !top
            || !table || *table >= static_cast<std::uint64_t>(trailer))
            return false;
        m_table = static_cast<qsizetype>(*table);
        return visit(*top, 0);
    }

private:
    /// A big-endian number of `length` bytes; absent when it would lie outside.
    [[nodiscard]] std::optional<std::uint64_t> number(qsizetype at, qsizetype length) const
    {
        if (at < 0 || length > m_data.size() || at > m_data.size() - length)
            return std::nullopt;
        std::uint64_t value = 0;
        for (qsizetype i = 0; i < length; ++i)
            value = (value << 8) | static_cast<std::uint8_t>(m_data[at + i]);
        return value;
    }

    [[nodiscard]] std::optional<qsizetype> offsetOf(std::uint64_t object) const
    {
        // Any index beyond the file's own length is outside, which also keeps the product below small.
        if (object >= m_objectCount || object >= static_cast<std::uint64_t>(m_data.size()))
            return std::nullopt;
        const auto offset = number(m_table + static_cast<qsizetype>(object) * m_offsetBytes, m_offsetBytes);
        if (!offset || *offset >= static_cast<std::uint64_t>(m_data.size()))
            return std::nullopt;
        return static_cast<qsizetype>(*offset);
    }

    bool charge(std::uint64_t bytes)
    {
        m_unfolded += chargePerObject + std::min(bytes, maximumUnfolded);
        return m_unfolded <= maximumUnfolded;
    }

    bool visit(std::uint64_t object, int depth)
    {
        const auto offset = offsetOf(object);
        if (!offset || depth > maximumDepth)
            return false;
        const auto marker = static_cast<std::uint8_t>(m_data[*offset]);
        const auto kind = marker >> 4;
        std::uint64_t count = marker & 0x0f;
        auto content = *offset + 1;
        // From 15 on the count follows as an integer object of its own.
        if (count == 15 && kind >= 0x4) {
            const auto width = number(content, 1);
            if (!width || (*width >> 4) != 0x1 || (*width & 0x0f) > 3)
                return false;
            const auto countBytes = qsizetype(1) << (*width & 0x0f);
            const auto told = number(content + 1, countBytes);
            if (!told)
                return false;
            count = *told;
            content += 1 + countBytes;
        }
        constexpr int array = 0xa;
        constexpr int set = 0xc;
        constexpr int dictionary = 0xd;
        if (kind == array || kind == set || kind == dictionary)
            return visitMembers(content, kind == dictionary ? 2 : 1, count, depth);
        // The longest unit is that of a UTF-16 text, which at most doubles again as UTF-8.
        return charge(std::min(count, maximumUnfolded) * 4);
    }

    bool visitMembers(qsizetype content, std::uint64_t perMember, std::uint64_t count, int depth)
    {
        if (count > static_cast<std::uint64_t>(m_data.size()) || !charge(0))
            return false;
        for (std::uint64_t member = 0; member < count * perMember; ++member) {
            const auto reference
                = number(content + static_cast<qsizetype>(member) * m_referenceBytes, m_referenceBytes);
            if (!reference || !visit(*reference, depth + 1))
                return false;
        }
        return true;
    }

    QByteArrayView m_data;
    qsizetype m_offsetBytes = 0;
    qsizetype m_referenceBytes = 0;
    std::uint64_t m_objectCount = 0;
    qsizetype m_table = 0;
    std::uint64_t m_unfolded = 0;
};

bool xmlWithinBounds(QByteArrayView data)
{
    qsizetype containers = 0;
    for (const QByteArrayView opening : { QByteArrayView("<array"), QByteArrayView("<dict") })
        for (auto at = data.indexOf(opening); at >= 0; at = data.indexOf(opening, at + opening.size()))
            if (++containers > maximumXmlContainers)
                return false;
    return true;
}

} // namespace

bool isWithinPropertyListBounds(QByteArrayView data)
{
    return data.startsWith("bplist") ? BinaryWalk(data).withinBounds() : xmlWithinBounds(data);
}

} // namespace Quillbrook
