#pragma once

// Keeps ledger and journal together: what has gone is entered in the ledger once a clearance has ended, what
// a kill has left is taken up at the next start, and what both hold can be seen, put back and deleted for
// good. One thread at a time, while no clearance runs; blocks on the disk.

#include "Removal/Reclaimer.h"
#include "Removal/TrashLedger.h"

#include <expected>
#include <functional>
#include <optional>

namespace Quillbrook {

class RemovalJournal;

/// A thing that lies in the Trash and that the program moved there.
struct HeldItem
{
    TrashedItem item{};
    /// It stands in the journal alone, since its finding failed in part: it can be put back and nothing else.
    bool isOnlyInJournal = false;

    bool operator==(const HeldItem &) const = default;
};

struct Books
{
    TrashLedger &ledger;
    RemovalJournal &journal;
    Trash &trash;

    /// Told, once, how many bytes to add to what has been reclaimed so far. They have to be stored when it
    /// returns: only then the journal forgets.
    using Count = std::function<void(qint64 bytes)>;

    /// Enters the rows of what went whole in the ledger, in one writing, and answers with the bytes to count.
    /// Those of a rule's removals are marked, and there what went of a finding that failed is entered too, so
    /// that no rule leaves anything in the Trash that nobody knows. The journal is to be closed once they are
    /// counted.
    [[nodiscard]] qint64 record(const std::vector<Reclaimer::Outcome> &outcomes, bool byRule) const;
    /// The same, then counts, and closes the journal.
    void enter(const std::vector<Reclaimer::Outcome> &outcomes, bool byRule, const Count &count) const;

    /// At the start: what the journal names, and nothing else in the Trash, becomes rows. Notes that it names
    /// and that have no thing are dropped, and rights that a move had lent are taken back. Answers with the
    /// bytes to count, which a person's removals are missing in `reclaimedSoFar`, or with nothing where the
    /// journal names nothing. Else it is to be closed once they are counted; whatever is interrupted before
    /// is done by the next call.
    [[nodiscard]] std::optional<qint64> recover(qint64 reclaimedSoFar) const;
    /// The same, then counts, and closes the journal.
    void takeUp(qint64 reclaimedSoFar, const Count &count) const;

    /// Once all is counted: closes the journal. Where the ledger could not be saved the journal stays as it
    /// is, since it alone tells the next start of what went.
    void close() const;

    /// What lies in the Trash still, in the order in which it went.
    [[nodiscard]] std::vector<HeldItem> held() const;
    /// Puts things back where they were, in order; nothing is replaced. What came of each that was tried: why
    /// it can't go back is told as a person may read it, and then it stays. The ledger is written once, and
    /// the journal is to be closed.
    [[nodiscard]] std::vector<std::expected<void, QString>> putBack(
        const std::vector<HeldItem> &things, const TrashLedger::Watch &watch = {}) const;
    /// Deletes rows of the ledger for good, and with them what an earlier purge that was cut short has left.
    /// The journal is to be closed.
    TrashLedger::Purged purge(
        const std::vector<TrashedItem> &items, const TrashLedger::Watch &watch = {}) const;

private:
    class TakingUp;

    /// Undoes what a kill leaves of a move that was cut short. Whether the thing lies in the Trash.
    [[nodiscard]] bool tidy(const TrashedItem &item) const;
};

} // namespace Quillbrook
