#pragma once

// The mounts of this process for who asks about them time and again: the table is read anew only when the
// system says that it has changed, and no answer is older than that. Callable from any thread.

#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Folders/MountTable.h"

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace Quillbrook {

class WatchedMounts
{
public:
    /// Absent where the system does not tell them.
    using Mounts = std::shared_ptr<const std::optional<std::vector<Mount>>>;

    WatchedMounts();

    [[nodiscard]] Mounts now();

private:
    [[nodiscard]] bool haveChanged();

    std::mutex m_lock;
    /// Asked only whether the table has changed since it was asked last.
    FileDescriptor m_table;
    Mounts m_mounts;
};

} // namespace Quillbrook
