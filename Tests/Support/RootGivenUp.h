#pragma once

// For suites about missing rights: root passes every check.

#include <QtGlobal>

#include <grp.h>
#include <unistd.h>

namespace Quillbrook {

/// Makes the process an ordinary user's for good, or ends it; to be called before any thread starts.
inline void giveUpRoot()
{
    constexpr unsigned nobody = 65534;
    if (::geteuid() != 0)
        return;
    if (::setgroups(0, nullptr) != 0 || ::setresgid(nobody, nobody, nobody) != 0
        || ::setresuid(nobody, nobody, nobody) != 0)
        qFatal("root can't be given up");
}

} // namespace Quillbrook
