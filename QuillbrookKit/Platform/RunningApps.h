#pragma once

// Whether an application runs, for those that the system keeps apart by an ID, such as "org.videolan.VLC".
// Any thread; blocks on the disk.

#include <QString>

#include <optional>

namespace Quillbrook {

class RunningApps
{
public:
    virtual ~RunningApps() = default;
    /// At this moment, in this user's session. Absent when it can't be told.
    [[nodiscard]] virtual std::optional<bool> isRunning(const QString &applicationId) const = 0;
};

} // namespace Quillbrook
