#pragma once

// The space kept back, as a file in the program's own folder.

#include "Platform/SpaceReserve.h"

#include <mutex>
#include <string>

namespace Quillbrook {

class LinuxSpaceReserve final : public SpaceReserve
{
public:
    /// What every file system needs to take a few small files more: the greediest wanted this much.
    static constexpr long long bytes = 1024LL * 1024;

    /// `path` is the file; the folders to it are made when the space is first kept.
    explicit LinuxSpaceReserve(std::string path);

    [[nodiscard]] bool release() override;
    void replenish() override;

private:
    const std::string m_path;
    std::mutex m_lock;
};

} // namespace Quillbrook
