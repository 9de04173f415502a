#pragma once

// Whether an application may be uninstalled, and what outside of itself is its own. It is no promise about
// later: each path is guarded again when it goes. A plain value.

#include "Uninstaller/AppBundle.h"
#include "Uninstaller/Leftover.h"

#include <optional>
#include <vector>

namespace Quillbrook {

struct Plan
{
    AppBundle app{};
    /// Largest first.
    std::vector<Leftover> leftovers{};
    /// Why it can't be uninstalled, as a sentence for a person; then there are no leftovers.
    std::optional<QString> blocked{};

    bool operator==(const Plan &) const = default;

    /// Those that need no administrator, in order.
    [[nodiscard]] std::vector<Leftover> removableLeftovers() const
    {
        std::vector<Leftover> removable;
        for (const auto &leftover : leftovers)
            if (!leftover.needsAdministrator)
                removable.push_back(leftover);
        return removable;
    }
    /// Bytes of the removable ones.
    [[nodiscard]] qint64 leftoverBytes() const
    {
        qint64 total = 0;
        for (const auto &leftover : removableLeftovers())
            total += leftover.bytes;
        return total;
    }
    [[nodiscard]] qint64 totalBytes() const { return app.bytes + leftoverBytes(); }
};

} // namespace Quillbrook
