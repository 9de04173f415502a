#pragma once

// A little space kept back for the day on which nothing is free, so that things can still be moved to the
// Trash, and the books about it kept, on a full disk. Used around a write that failed for want of space:
// `release`, try once more, `replenish`. Callable from any thread, and blocks on the disk.

namespace Quillbrook {

class SpaceReserve
{
public:
    virtual ~SpaceReserve() = default;

    /// Gives the space up. False when none was kept, and trying again makes no sense.
    [[nodiscard]] virtual bool release() = 0;
    /// Keeps the space again where there is room for it; silent where there isn't. Harmless when it is kept
    /// already.
    virtual void replenish() = 0;
};

} // namespace Quillbrook
