#pragma once

// What lies on another drive behind a link, and the way back. The link may be one that Quillbrook left, or
// the person's own.

#include "Catalogue/StorageCatalogue.h"
#include "Offload/OffloadError.h"
#include "Offload/OffloadServices.h"
#include "Platform/RelocationDisk.h"

#include <expected>
#include <functional>
#include <stop_token>
#include <vector>

namespace Quillbrook {

/// A place of a cold rule that is a link to another file system, or leads nowhere because that is not there.
struct MovedThing
{
    QString ruleId{};
    /// The rule's.
    QString title{};
    /// Where the link is, absolute.
    std::string place{};
    LinkFacts link{};
    /// What a person calls the drive.
    QString drive{};
    /// Absent where the drive doesn't tell, or isn't there.
    std::optional<qint64> driveFree{};
    /// What it holds there; absent as long as that was not measured.
    std::optional<qint64> bytes{};
    /// Whether it is known what lies behind the link. Until then all is by the link's own words.
    bool isAnswered = false;

    bool operator==(const MovedThing &) const = default;

    [[nodiscard]] bool isThere() const { return link.leadsSomewhere; }
};

namespace Offload {

/// The links at places of cold rules, in the order of the tables, without asking the drives that they lead
/// to. Links on the way to a place don't count.
[[nodiscard]] std::vector<MovedThing> links(
    const OffloadServices &services, const StorageCatalogue::Places &places);
/// One of those with what its drive tells, but for what it holds; absent where it leads to the file system
/// that it lies on, or is gone. Held for as long as a drive does not answer.
[[nodiscard]] std::optional<MovedThing> answered(const OffloadServices &services, const MovedThing &link);

struct Return
{
    /// As it was found.
    MovedThing thing{};
    /// Told on the calling thread: bytes written, and of how many.
    std::function<void(qint64 bytes, qint64 total)> onProgress{};
    /// Asked when the copy is whole, and nothing else has been touched; false ends it as a stop does. May be
    /// empty.
    std::function<bool()> mayFinish{};
    /// Told when it stands in its place: all that is left to do is on the drive. May be empty.
    std::function<void()> onReturned{};
    std::stop_token stop{};
};

/// What came of bringing something back: it stands where the link was.
struct Returned
{
    /// Why the copy on the drive did not go to that drive's Trash; absent when it did.
    std::optional<QString> leftBehind{};
};

/// Copies it beside its link, measures the copy, exchanges the two in one step, and moves what lies on the
/// drive to the drive's Trash. On an error the link is there as it was, and leads to the whole thing.
[[nodiscard]] std::expected<Returned, OffloadError> bringBack(
    const OffloadServices &services, const Return &order);

} // namespace Offload

} // namespace Quillbrook
