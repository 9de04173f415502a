#pragma once

// How much room a range of assets takes, judged by a sample that is spread evenly over it. Pure, but for what
// `PhotoAssets` reads; any thread.

#include <QtGlobal>

namespace Quillbrook {

class PhotoAssets;

/// `count` is exact; `bytes` is an estimate for all of them. `localCount` of the `sampled` assets have a file
/// on this machine, which is never scaled up.
struct PhotoSummary
{
    qsizetype count = 0;
    qint64 bytes = 0;
    qsizetype localCount = 0;
    qsizetype sampled = 0;

    bool operator==(const PhotoSummary &) const = default;
};

namespace PhotoSample {

/// So many assets are read at most.
inline constexpr qsizetype limit = 200;

[[nodiscard]] PhotoSummary summary(const PhotoAssets &assets);

} // namespace PhotoSample

} // namespace Quillbrook
