#pragma once

// Which processors a scan may use: those that the scheduler allows this process, no more of them than the
// quota of its control groups pays for.

#include "Platform/Processors.h"

#include <string>
#include <string_view>
#include <vector>

namespace Quillbrook {

/// A list as the kernel writes it ("0-3,8"), as single numbers in rising order; empty when it can't be
/// understood.
[[nodiscard]] std::vector<int> parseProcessorList(std::string_view text);

class LinuxProcessors final : public Processors
{
public:
    /// Where the machine tells about itself.
    struct Sources
    {
        std::string sys = "/sys";
        std::string ownControlGroup = "/proc/self/cgroup";
    };

    LinuxProcessors();
    explicit LinuxProcessors(Sources sources);

    /// The allowed processors of the highest capacity: the fast ones of a processor with two kinds of cores,
    /// all where they are equal. Absent only when the allowed processors can't be told.
    [[nodiscard]] std::optional<int> performanceCores() const override;
    [[nodiscard]] int activeProcessors() const override;

private:
    [[nodiscard]] std::vector<int> fastest(const std::vector<int> &allowed) const;
    [[nodiscard]] int withinQuota(int count) const;

    Sources m_sources;
};

} // namespace Quillbrook
