#pragma once

// Runs nothing, or another program in the place of the one asked for, and remembers what was asked.

#include "Platform/ProcessRunner.h"

#include <QList>

#include <functional>

namespace Quillbrook {

class FakeProcessRunner final : public ProcessRunner
{
public:
    [[nodiscard]] std::optional<Result> run(const Command &command) const override
    {
        commands.append(command);
        return answer ? answer(command) : std::nullopt;
    }

    std::function<std::optional<Result>(const Command &)> answer{};
    mutable QList<Command> commands;
};

} // namespace Quillbrook
