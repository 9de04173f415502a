#include "Platform/Linux/Folders/EntryBatch.h"

#include "Platform/Linux/Files/Uninterrupted.h"

#include <algorithm>

namespace Quillbrook {

EntryBatch::EntryBatch(size_t bytes)
    : m_size(bytes)
    , m_buffer(std::make_unique_for_overwrite<char[]>(bytes))
{
}

bool EntryBatch::read(int folder)
{
    const auto filled = uninterrupted([&] { return ::getdents64(folder, m_buffer.get(), m_size); });
    m_place = 0;
    m_end = static_cast<size_t>(std::max<ssize_t>(filled, 0));
    return m_end > 0;
}

} // namespace Quillbrook
