#pragma once

// Volumes that answer what a test sets, the same for every path. What was asked is read while nobody asks.

#include "Platform/Volumes.h"

#include <QList>

#include <mutex>

namespace Quillbrook {

class FakeVolumes final : public Volumes
{
public:
    std::optional<VolumeCapacity> capacity(const std::string &path) const override
    {
        const std::lock_guard guard(m_lock);
        askedPaths.append(path);
        return answer;
    }

    std::optional<VolumeCapacity> answer{};
    mutable QList<std::string> askedPaths;

private:
    mutable std::mutex m_lock;
};

} // namespace Quillbrook
