#pragma once

// System calls that a signal may interrupt.

#include <cerrno>

namespace Quillbrook {

/// What `call` returns, which is tried again as long as a signal interrupts it (-1 with EINTR).
template <typename Call>
[[nodiscard]] auto uninterrupted(Call &&call)
{
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

} // namespace Quillbrook
