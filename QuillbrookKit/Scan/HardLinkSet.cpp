#include "Scan/HardLinkSet.h"

#include <utility>

namespace Quillbrook {

namespace {

constexpr std::size_t expectedFiles = 16384;

} // namespace

bool HardLinkSet::insert(std::uint64_t device, std::uint64_t fileId)
{
    // Most small folders have no such file, and then need no room for any.
    if (m_slots.empty())
        m_slots.resize(expectedFiles * 2);
    auto &found = slot(device, fileId);
    if (found.fileId != 0)
        return false;
    found = { device, fileId };
    if (++m_count > m_slots.size() / 2)
        grow();
    return true;
}

void HardLinkSet::clear()
{
    m_slots.clear();
    m_count = 0;
}

HardLinkSet::File &HardLinkSet::slot(std::uint64_t device, std::uint64_t fileId)
{
    const auto mask = m_slots.size() - 1;
    // Ids come in runs: multiplying by an odd constant spreads them over the upper bits.
    auto hash = (fileId ^ (device << 40U) ^ device) * 0x9E3779B97F4A7C15ULL;
    hash ^= hash >> 32U;
    auto index = hash & mask;
    while (m_slots[index].fileId != 0 && (m_slots[index].fileId != fileId || m_slots[index].device != device))
        index = (index + 1) & mask;
    return m_slots[index];
}

void HardLinkSet::grow()
{
    auto files = std::exchange(m_slots, std::vector<File>(m_slots.size() * 2));
    for (const auto &file : files) {
        if (file.fileId != 0)
            slot(file.device, file.fileId) = file;
    }
}

} // namespace Quillbrook
