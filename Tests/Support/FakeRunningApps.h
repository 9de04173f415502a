#pragma once

// Applications of which a test says whether they run: none does, at first.

#include "Platform/RunningApps.h"

namespace Quillbrook {

class FakeRunningApps final : public RunningApps
{
public:
    [[nodiscard]] std::optional<bool> isRunning(const QString & /*applicationId*/) const override
    {
        return answer;
    }

    std::optional<bool> answer = false;
};

} // namespace Quillbrook
