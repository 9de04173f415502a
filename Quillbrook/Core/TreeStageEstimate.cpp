#include "Core/TreeStageEstimate.h"

#include <algorithm>

namespace Quillbrook::TreeStageEstimate {

namespace {

constexpr double share = 0.59;
constexpr qint64 smallestTellingCount = 1001;
constexpr double nearlyAll = 0.99;
constexpr double secondsOfWholeStage = 60;
constexpr double mostByTime = 0.5;

} // namespace

double fraction(const Evidence &evidence)
{
    const auto part = evidence.expectedFiles < smallestTellingCount
        ? std::min(evidence.secondsElapsed / secondsOfWholeStage, mostByTime)
        : std::min(
            static_cast<double>(evidence.filesSeen) / static_cast<double>(evidence.expectedFiles), nearlyAll);
    return part * share + start;
}

} // namespace Quillbrook::TreeStageEstimate
