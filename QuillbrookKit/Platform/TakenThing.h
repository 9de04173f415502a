#pragma once

// What is about to leave its place, as it is seen through the open folder from which it is taken, and by what
// it is known again afterwards. Plain values.

#include "Platform/FileFacts.h"

#include <QString>

#include <functional>

namespace Quillbrook {

struct TakenThing
{
    /// Where the folder really is, without links, followed by the thing's own name.
    std::string path{};
    FileKind kind = FileKind::other;
    std::uint64_t inode = 0;
};

/// Asked right before a thing is taken through the same open folder. A sentence keeps the thing where it is.
using TakingJudge = std::function<std::optional<QString>(const TakenThing &thing)>;

/// By what a thing in the Trash is known again: its inode and its birth time, in nanoseconds since 1970,
/// where the file system keeps both, as long as no other note has taken the place of its own; by its whole
/// note elsewhere, where `born` is 0. Never by its device, which changes from start to start.
struct ThingIdentity
{
    std::uint64_t inode = 0;
    qint64 born = 0;
    std::string note{};
    /// The mode of a folder that its owner may not write to, since a move lends it that right for a moment.
    std::optional<unsigned> mode{};

    bool operator==(const ThingIdentity &) const = default;
};

} // namespace Quillbrook
