#pragma once

// Space kept back that is only counted.

#include "Platform/SpaceReserve.h"

#include <functional>

namespace Quillbrook {

class FakeSpaceReserve final : public SpaceReserve
{
public:
    [[nodiscard]] bool release() override
    {
        ++released;
        if (!isKept)
            return false;
        isKept = false;
        if (onRelease)
            onRelease();
        return true;
    }
    void replenish() override
    {
        ++replenished;
        isKept = true;
    }

    bool isKept = true;
    int released = 0;
    int replenished = 0;
    std::function<void()> onRelease{};
};

} // namespace Quillbrook
