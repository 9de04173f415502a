#include "Photos/PhotoSample.h"

#include "Photos/PhotoLibrary.h"

#include <algorithm>
#include <limits>

namespace Quillbrook::PhotoSample {

namespace {

// What follows the first file that lies here is not counted: it would be the same picture again.
void add(const std::vector<PhotoResource> &resources, double &total, PhotoSummary &summary)
{
    for (const auto &resource : resources) {
        total += static_cast<double>(resource.fileSize.value_or(0));
        if (resource.locallyAvailable == true) {
            ++summary.localCount;
            return;
        }
    }
}

} // namespace

PhotoSummary summary(const PhotoAssets &assets)
{
    PhotoSummary summary{ .count = assets.count() };
    const auto most = std::min(limit, summary.count);
    if (most < 1)
        return {};
    const auto stride = std::max<qsizetype>(summary.count / most, 1);
    // Files with holes may have lengths whose sum is more than a whole number holds.
    double total = 0;
    for (qsizetype index = 0; index < summary.count && summary.sampled < most; index += stride) {
        add(assets.resources(index), total, summary);
        ++summary.sampled;
    }
    constexpr auto largest = std::numeric_limits<qint64>::max();
    const auto bytes = total / static_cast<double>(summary.sampled) * static_cast<double>(summary.count);
    summary.bytes = bytes < static_cast<double>(largest) ? static_cast<qint64>(bytes) : largest;
    return summary;
}

} // namespace Quillbrook::PhotoSample
