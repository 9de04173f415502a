#pragma once

// How many processor cores a scan may use.

#include <optional>

namespace Quillbrook {

class Processors
{
public:
    virtual ~Processors() = default;
    /// Performance cores this process may run on, at least 1; absent where the machine does not tell.
    [[nodiscard]] virtual std::optional<int> performanceCores() const = 0;
    /// All logical processors this process may run on, at least 1.
    [[nodiscard]] virtual int activeProcessors() const = 0;
};

} // namespace Quillbrook
