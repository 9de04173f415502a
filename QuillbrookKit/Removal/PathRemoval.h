#pragma once

// How a path that a person picked, or that the uninstaller proposes, leaves the disk. Such a path comes from
// no catalogue: it may be the home folder, a drive, or the running program. Each has to pass the guards
// first. Everything here is synchronous, may block on the disk, keeps no state, and may be called from any
// thread. Paths are raw bytes.

#include "Removal/TrashedItem.h"

#include <QtGlobal>

#include <vector>

namespace Quillbrook {

class RemovalJournal;
struct HostGuards;
struct RemovalServices;

namespace PathRemoval {

/// What was seen where a thing was picked. A folder may have changed in it since.
struct Picked
{
    bool isDirectory = false;
    std::uint64_t inode = 0;

    bool operator==(const Picked &) const = default;
};

/// One thing to remove. `bytes` is the caller's figure; `label` is what a person knows the thing by. Where
/// `picked` is given, nothing else than that goes.
struct Item
{
    std::string path{};
    qint64 bytes = 0;
    QString label{};
    std::optional<Picked> picked{};

    bool operator==(const Item &) const = default;
};

/// How to remove. `host` holds the guards that the machine adds; none when it is absent. `journal` is written
/// before each move to the Trash, where there is one; without its line nothing is moved.
struct Manner
{
    bool permanent = false;
    std::string home{};
    const HostGuards *host = nullptr;
    RemovalJournal *journal = nullptr;
};

/// The result of one attempt.
struct Removal
{
    /// As given.
    std::string path{};
    /// The caller's figure on success, else 0.
    qint64 bytes = 0;
    /// The row for the ledger, when the thing went to the Trash.
    std::optional<TrashedItem> trashed{};
    /// Why it is still there, in words for a person.
    std::optional<QString> error{};

    bool operator==(const Removal &) const = default;

    [[nodiscard]] bool succeeded() const { return !error; }
};

struct ItemCount
{
    qsizetype count = 0;
    /// True when counting stopped at the cap.
    bool capped = false;

    bool operator==(const ItemCount &) const = default;
};

/// Why `path` must stay, as a sentence for a person; absent when it may be removed. `home` is the home folder
/// (absolute). The content of the disk is never looked at; the host's guards may look at where links lead and
/// at what is mounted.
[[nodiscard]] std::optional<QString> refusal(
    const std::string &path, const std::string &home, const HostGuards *host = nullptr);

/// Removes one thing, to the Trash or for good, unless a guard refuses it. The guards are asked about the
/// path first, and then about where the open folder really is that the thing is taken from. A failed move to
/// the Trash never becomes a deletion. Writes to no ledger: that is the caller's, with `trashed`.
[[nodiscard]] Removal remove(const RemovalServices &services, const Item &item, const Manner &manner);
/// The same for each, in order; one failure does not stop the others.
[[nodiscard]] std::vector<Removal> removeAll(
    const RemovalServices &services, const std::vector<Item> &items, const Manner &manner);

/// How many visible entries lie below the folder at `path` (raw bytes), deep, stopping at `cap` (a cap below
/// 1 counts as 1); 1 for anything that is not a folder, 0 when nothing is there. Blocks on the disk: not for
/// the main thread.
[[nodiscard]] ItemCount itemCount(const std::string &path, qsizetype cap);

} // namespace PathRemoval

} // namespace Quillbrook
