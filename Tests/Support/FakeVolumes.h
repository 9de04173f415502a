#pragma once

// Volumes that answer what a test sets, the same for every path.

#include "Platform/Volumes.h"

#include <QStringList>

namespace Quillbrook {

class FakeVolumes final : public Volumes
{
public:
    std::optional<VolumeCapacity> capacity(const QString &path) const override
    {
        askedPaths.append(path);
        return answer;
    }

    std::optional<VolumeCapacity> answer{};
    mutable QStringList askedPaths;
};

} // namespace Quillbrook
