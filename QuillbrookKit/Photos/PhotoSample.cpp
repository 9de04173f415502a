#include "Photos/PhotoSample.h"

#include "Photos/PhotoLibrary.h"

#include <algorithm>

namespace Quillbrook::PhotoSample {

namespace {

// What follows the first file that lies here is not counted: it would be the same picture again.
void add(const std::vector<PhotoResource> &resources, qint64 &total, PhotoSummary &summary)
{
    for (const auto &resource : resources) {
        total += resource.fileSize.value_or(0);
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
    qint64 total = 0;
    for (qsizetype index = 0; index < summary.count && summary.sampled < most; index += stride) {
        add(assets.resources(index), total, summary);
        ++summary.sampled;
    }
    summary.bytes = static_cast<qint64>(static_cast<double>(total) / static_cast<double>(summary.sampled)
        * static_cast<double>(summary.count));
    return summary;
}

} // namespace Quillbrook::PhotoSample
