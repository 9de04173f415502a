#pragma once

// Processors that a test sets.

#include "Platform/Processors.h"

namespace Quillbrook {

class FakeProcessors final : public Processors
{
public:
    std::optional<int> performanceCores() const override { return performance; }
    int activeProcessors() const override { return active; }

    std::optional<int> performance = 2;
    int active = 4;
};

} // namespace Quillbrook
