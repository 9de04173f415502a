#pragma once

// The one running program, or not, as a test has it; another start is the signal.

#include "Platform/AppInstance.h"

namespace Quillbrook {

class FakeAppInstance final : public AppInstance
{
public:
    bool claim() override { return isTheOne; }

    bool isTheOne = true;
};

} // namespace Quillbrook
