#pragma once

// Owns one open file descriptor; -1 is none.

#include <unistd.h>
#include <utility>

namespace Quillbrook {

class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    FileDescriptor(FileDescriptor &&other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~FileDescriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }

    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }
    /// For system calls; stays owned here.
    [[nodiscard]] int number() const { return m_descriptor; }
    /// Hands it to the caller, who closes it.
    [[nodiscard]] int release() { return std::exchange(m_descriptor, -1); }

private:
    int m_descriptor = -1;
};

} // namespace Quillbrook
