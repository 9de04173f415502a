#pragma once

// How rules have things removed: by the one hand that removes anything, which takes one order at a time,
// keeps the books, and answers on the main thread, at once or later. It enters in the ledger whatever goes,
// marked as moved by a rule, also what went of a finding that failed in part.

#include "Removal/Reclaimer.h"
#include "Removal/TrashLedger.h"

#include <QDateTime>
#include <QList>

#include <functional>
#include <vector>

namespace Quillbrook {

struct RuleRemovals
{
    using Cleared = std::function<void(const std::vector<Reclaimer::Outcome> &outcomes)>;
    using Due = std::function<void(const std::vector<TrashedItem> &items)>;
    using Purged = std::function<void(const TrashLedger::Purged &purged)>;

    /// Moves findings to the Trash, in their order, and answers with an outcome for each that was begun.
    std::function<void(const QList<Finding> &findings, Cleared cleared)> clear{};
    /// Answers with what rules moved and what may go for good now, of a disk with so many bytes free. What a
    /// person keeps in the Trash is not among it.
    std::function<void(const QDateTime &now, qint64 freeBytes, Due due)> due{};
    /// Deletes rows of the ledger for good.
    std::function<void(const std::vector<TrashedItem> &items, Purged purged)> purge{};
};

} // namespace Quillbrook
