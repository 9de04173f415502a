#pragma once

// Volume figures by statvfs. Linux purges nothing by itself, so that what is available for important usage is
// what is available.

#include "Platform/Volumes.h"

namespace Quillbrook {

class LinuxVolumes final : public Volumes
{
public:
    [[nodiscard]] std::optional<VolumeCapacity> capacity(const std::string &path) const override;
};

} // namespace Quillbrook
