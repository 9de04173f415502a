#pragma once

// What removing asks of the machine. Plain references: the owner outlives every call.

#include "Platform/KitServices.h"

namespace Quillbrook {

struct RemovalServices
{
    Trash &trash;
    FileRemoval &removal;
    const FileFacts &files;
    const Clock &clock;
    /// Null: whether an application runs can't be told.
    const RunningApps *runningApps = nullptr;
    /// Knows where links lead and what is kept; without it every path leads where it says.
    const HostGuards *guards = nullptr;

    /// That part of all there is.
    [[nodiscard]] static RemovalServices of(const KitServices &kit)
    {
        return { .trash = kit.trash,
            .removal = kit.removal,
            .files = kit.files,
            .clock = kit.clock,
            .runningApps = &kit.runningApps,
            .guards = &kit.guards };
    }
};

} // namespace Quillbrook
