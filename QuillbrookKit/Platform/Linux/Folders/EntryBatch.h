#pragma once

// The entries that one getdents64 gives, without "." and "..".

#include <cstddef>
#include <dirent.h>
#include <memory>

namespace Quillbrook {

class EntryBatch
{
public:
    explicit EntryBatch(size_t bytes);

    /// Replaces the entries by the next ones of `folder`, an open descriptor. False, leaving none, at the
    /// folder's end and where it can't be read on.
    [[nodiscard]] bool read(int folder);
    /// The next entry, which stays where it is until the next `read`; null when there is none left.
    [[nodiscard]] const dirent64 *next()
    {
        while (m_place < m_end) {
            const auto &entry = *reinterpret_cast<const dirent64 *>(m_buffer.get() + m_place);
            m_place += entry.d_reclen;
            if (!isFolderItself(entry.d_name))
                return &entry;
        }
        return nullptr;
    }
    /// Forgets the entries that are left.
    void clear() { m_place = m_end = 0; }

private:
    static bool isFolderItself(const char *name)
    {
        return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
    }

    size_t m_size;
    std::unique_ptr<char[]> m_buffer;
    size_t m_place = 0;
    size_t m_end = 0;
};

} // namespace Quillbrook
