#pragma once

// Sums of sizes that come from a file, which can say anything: they stop at the ends of the range.

#include <QtGlobal>

#include <limits>

namespace Quillbrook {

[[nodiscard]] inline qint64 cappedSum(qint64 a, qint64 b)
{
    qint64 sum = 0;
    if (!__builtin_add_overflow(a, b, &sum))
        return sum;
    return b > 0 ? std::numeric_limits<qint64>::max() : std::numeric_limits<qint64>::min();
}

} // namespace Quillbrook
