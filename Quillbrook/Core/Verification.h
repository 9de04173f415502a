#pragma once

#include <QtGlobal>

namespace Quillbrook {

/// What a clearance claimed, held against what the volume said before it and after the next scan. Bytes.
struct Verification
{
    qint64 claimedBytes = 0;
    qint64 freeBefore = 0;
    qint64 freeAfter = 0;

    bool operator==(const Verification &) const = default;

    /// Whether something was claimed and at least nine tenths of it really came back.
    [[nodiscard]] bool isGood() const
    {
        return claimedBytes >= 1
            && static_cast<double>(freeAfter - freeBefore) >= 0.9 * static_cast<double>(claimedBytes);
    }
};

} // namespace Quillbrook
