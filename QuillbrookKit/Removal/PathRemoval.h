#pragma once

// What happens to a path that a person picked. So far: how many things it holds.

#include <QtGlobal>

#include <string>

namespace Quillbrook::PathRemoval {

struct ItemCount
{
    qsizetype count = 0;
    /// True when counting stopped at the cap.
    bool capped = false;

    bool operator==(const ItemCount &) const = default;
};

/// How many visible entries lie below the folder at `path` (raw bytes), deep, stopping at `cap` (a cap below
/// 1 counts as 1); 1 for anything that is not a folder, 0 when nothing is there. Blocks on the disk: not for
/// the main thread.
[[nodiscard]] ItemCount itemCount(const std::string &path, qsizetype cap);

} // namespace Quillbrook::PathRemoval
