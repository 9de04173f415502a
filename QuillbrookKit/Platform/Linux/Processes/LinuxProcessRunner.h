#pragma once

// Programs by QProcess, each in a process group of its own, so that its end takes its children along.

#include "Platform/ProcessRunner.h"

namespace Quillbrook {

class LinuxProcessRunner final : public ProcessRunner
{
public:
    [[nodiscard]] std::optional<Result> run(const Command &command) const override;
};

} // namespace Quillbrook
