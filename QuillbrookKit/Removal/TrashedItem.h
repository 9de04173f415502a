#pragma once

// One thing that the program itself moved to the Trash. A plain value.

#include "Platform/Trash.h"

namespace Quillbrook {

struct TrashedItem
{
    /// A UUID in capitals, without braces.
    QString id{};
    /// What a person knows it by.
    QString label{};
    /// Where it was, in raw bytes.
    std::string originalPath{};
    /// Where it lies in the Trash, in raw bytes.
    std::string trashPath{};
    /// As known when it was moved.
    qint64 bytes = 0;
    QDateTime movedAt{};
    /// True when an automation rule moved it; absent when it was moved by hand.
    std::optional<bool> byRule{};
    /// By what it is known in the Trash; absent for a row from before there was such a thing.
    std::optional<ThingIdentity> identity{};

    bool operator==(const TrashedItem &) const = default;

    /// A row of its own for what has just been moved by hand, with a new `id`.
    [[nodiscard]] static TrashedItem moved(TrashedItem facts);
    /// The same thing as moved by a rule.
    [[nodiscard]] TrashedItem markedByRule() const;
    /// What the Trash is asked by, so that nothing else goes in its place.
    [[nodiscard]] Provenance provenance() const
    {
        return { .originalPath = originalPath, .movedAt = movedAt, .identity = identity };
    }
};

} // namespace Quillbrook
