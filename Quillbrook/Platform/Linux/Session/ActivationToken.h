#pragma once

// The token by which a window may come to the front on Wayland. Qt 6.4 takes it from the environment alone,
// and other threads read that at any time. So its place there is made before there are threads, and is only
// written to afterwards: a setenv would move the whole environment under their eyes. Main thread only.

#include <QByteArray>

namespace Quillbrook::ActivationToken {

/// Makes the place, with the token that this process was started with. Before there are threads.
void reserve();
/// Puts the token there; an empty one takes it away. One that is too long, or holds a zero byte, counts as
/// none.
void set(const QByteArray &token);

} // namespace Quillbrook::ActivationToken
