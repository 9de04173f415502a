#pragma once

// Why space did not come back after a removal. Only what was found is told. Synchronous, for a worker thread;
// keeps what it was told before the removal.

#include "Platform/SpaceHolders.h"

#include <cstdint>
#include <optional>

namespace Quillbrook {

class StayedSpace
{
public:
    /// What the removal was, as far as it went.
    struct Removed
    {
        /// It lies in the Trash.
        bool isInTrash = false;
        /// What it took on the disk, in bytes, where that was measured.
        std::optional<qint64> measured{};
        /// What was free before it, and after a `flush` of the volume, in bytes.
        qint64 freeBefore = 0;
        qint64 freeAfter = 0;
    };

    /// A reason, with how much it explains where that is known.
    struct Reason
    {
        enum class Kind : std::uint8_t { inTrash, snapshot, openFile, hardLink, otherPrograms };

        Kind kind = Kind::inTrash;
        /// Of the snapshots, or of the programs; empty for the others.
        std::vector<QString> names{};
        std::optional<qint64> bytes{};

        bool operator==(const Reason &) const = default;
    };

    /// Before the removal: `paths` are what is about to go (absolute, raw bytes, without links); of a thing
    /// in the Trash its place there, and where it was before. `deletedIn` are the folders in which such
    /// things lie while they are deleted: `expunged` beside the `files` of their trash. The holders outlive
    /// this object.
    StayedSpace(
        const SpaceHolders &holders, std::vector<std::string> paths, std::vector<std::string> deletedIn = {});

    /// Right after the removal, before the volume is flushed: lets go of the files that were looked at.
    void removalEnded();
    /// Every reason that was found, the surest first; empty where none was, and where the space did come
    /// back.
    [[nodiscard]] std::vector<Reason> reasons(const Removed &removed) const;
    /// A reason as a sentence for a person.
    [[nodiscard]] static QString sentence(const Reason &reason);

private:
    const SpaceHolders &m_holders;
    std::vector<std::string> m_paths;
    std::vector<std::string> m_deletedIn;
    std::unique_ptr<LinkedFiles> m_linked;
    qint64 m_linkedBytes = 0;
};

} // namespace Quillbrook
