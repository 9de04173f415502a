#pragma once

// How rules have things removed: by the one hand that removes anything, which takes one order at a time and
// answers on the main thread, at once or later. It enters in the ledger whatever goes, marked as moved by a
// rule, also what went of a finding that failed in part.

#include "Removal/Reclaimer.h"
#include "Removal/TrashLedger.h"

#include <QList>

#include <functional>
#include <vector>

namespace Quillbrook {

struct RuleRemovals
{
    using Cleared = std::function<void(const std::vector<Reclaimer::Outcome> &outcomes)>;
    using Purged = std::function<void(const TrashLedger::Purged &purged)>;

    /// Moves findings to the Trash, in their order, and answers with an outcome for each that was begun.
    std::function<void(const QList<Finding> &findings, Cleared cleared)> clear{};
    /// Deletes rows of the ledger for good.
    std::function<void(const std::vector<TrashedItem> &items, Purged purged)> purge{};
    const TrashLedger &ledger;
};

} // namespace Quillbrook
