#pragma once

// Who listens, from the kernel's tables of connections, which name the owner of each.

#include "Platform/LoopbackListeners.h"

#include <string>

namespace Quillbrook {

class LinuxLoopbackListeners final : public LoopbackListeners
{
public:
    struct Sources
    {
        std::string tcp = "/proc/net/tcp";
        std::string tcp6 = "/proc/net/tcp6";
        /// Of this program.
        unsigned userId = ownUserId();
    };

    LinuxLoopbackListeners();
    explicit LinuxLoopbackListeners(Sources sources);

    /// Counts who listens on 127.0.0.1 or on every address. Where there are several, all have to be trusted.
    [[nodiscard]] Listener at(quint16 port) const override;

    [[nodiscard]] static unsigned ownUserId();

private:
    Sources m_sources;
};

} // namespace Quillbrook
