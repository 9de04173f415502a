#pragma once

// Who listens on a port of this machine's loopback address. Any program may, of whatever person.

#include <QtGlobal>

namespace Quillbrook {

enum class Listener {
    none,
    /// The person who runs this program, or an account of the system's.
    trusted,
    /// Another person, or nobody can tell who.
    foreign,
};

class LoopbackListeners
{
public:
    virtual ~LoopbackListeners() = default;
    /// Any thread; may take a while on a machine with many connections.
    [[nodiscard]] virtual Listener at(quint16 port) const = 0;
};

} // namespace Quillbrook
