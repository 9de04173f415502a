#pragma once

// For suites about missing rights: root passes every check.

#include <grp.h>
#include <unistd.h>

namespace Quillbrook {

/// Makes the process an ordinary user's for good; to be called before any thread starts. False when root
/// could not be given up.
[[nodiscard]] inline bool giveUpRoot()
{
    constexpr unsigned nobody = 65534;
    if (::geteuid() != 0)
        return true;
    return ::setgroups(0, nullptr) == 0 && ::setresgid(nobody, nobody, nobody) == 0
        && ::setresuid(nobody, nobody, nobody) == 0;
}

} // namespace Quillbrook
