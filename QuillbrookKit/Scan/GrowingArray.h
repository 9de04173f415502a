#pragma once

// A growing array of plain values for stores of millions of elements. Unlike std::vector it grows through
// realloc, which moves large blocks by remapping pages instead of copying them, so that growth never holds
// the old and the new block at once; and it hands out room without filling it first. Not copyable.

#include "Fatal.h"

#include <algorithm>
#include <cstdlib>
#include <span>
#include <type_traits>

namespace Quillbrook {

template <typename T>
class GrowingArray
{
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

public:
    GrowingArray() = default;
    GrowingArray(const GrowingArray &) = delete;
    GrowingArray &operator=(const GrowingArray &) = delete;
    ~GrowingArray() { std::free(m_data); }

    /// Makes room for `capacity` elements in all; untouched room takes no memory.
    void reserve(size_t capacity)
    {
        if (capacity <= m_capacity)
            return;
        auto *data = std::realloc(m_data, capacity * sizeof(T));
        if (data == nullptr)
            fatal("out of memory");
        m_data = static_cast<T *>(data);
        m_capacity = capacity;
    }

    /// Makes the array `count` elements longer and returns the first of them, for the caller to fill.
    [[nodiscard]] T *extend(size_t count)
    {
        if (count > m_capacity - m_size)
            reserve(std::max(m_size + count, m_capacity * 2));
        auto *first = m_data + m_size;
        m_size += count;
        return first;
    }

    void append(const T &element) { *extend(1) = element; }

    /// Forgets the elements and keeps their room.
    void clear() { m_size = 0; }

    [[nodiscard]] size_t size() const { return m_size; }
    [[nodiscard]] const T *data() const { return m_data; }
    [[nodiscard]] T &operator[](size_t index) { return m_data[index]; }
    [[nodiscard]] const T &operator[](size_t index) const { return m_data[index]; }
    [[nodiscard]] operator std::span<const T>() const { return { m_data, m_size }; }

private:
    T *m_data = nullptr;
    size_t m_size = 0;
    size_t m_capacity = 0;
};

} // namespace Quillbrook
