#pragma once

// Where the bar of a scan stands in the tree stage: after the quick stage's share, and short of done, which
// only the end of the scan is. Pure functions.

#include <QtGlobal>

namespace Quillbrook::TreeStageEstimate {

/// The quick stage's share of the bar; the tree stage begins there.
inline constexpr double start = 0.4;

struct Evidence
{
    qsizetype filesSeen = 0;
    /// Files of the last finished scan; absent or small figures say nothing and are 0.
    qint64 expectedFiles = 0;
    double secondsElapsed = 0;
};

/// By the files seen when the expected number says something (above 1000), else by the time gone: a first
/// scan creeps for 30 seconds and then stays. Never above 0.9841.
[[nodiscard]] double fraction(const Evidence &evidence);

} // namespace Quillbrook::TreeStageEstimate
