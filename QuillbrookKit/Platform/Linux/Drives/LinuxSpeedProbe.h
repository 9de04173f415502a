#pragma once

// A drive's speed by a file without a name, where the file system has such, which the kernel takes away
// whatever becomes of this process; by a named one elsewhere. Written and read past the page cache.

#include "Platform/SpeedProbe.h"

namespace Quillbrook {

class LinuxSpeedProbe final : public SpeedProbe
{
public:
    [[nodiscard]] std::expected<MeasuredSpeed, QString> measure(const Sample &sample) const override;
};

} // namespace Quillbrook
