#pragma once

// One move to the Trash with the journal before it, where there is one. Keeps no state.

#include "Removal/RemovalServices.h"
#include "Removal/TrashedItem.h"

#include <expected>

namespace Quillbrook {

class RemovalJournal;

namespace BookedMove {

/// Moves what lies at `originalPath` of `facts`, as an entry of the unit that the journal has begun. The row,
/// whose bytes are those of `facts`, or why the thing stays.
[[nodiscard]] std::expected<TrashedItem, QString> entry(
    const RemovalServices &services, RemovalJournal *journal, TrashedItem facts, const TakingJudge &judge);

/// The same as a unit of its own; where the journal can't take it, nothing is moved.
[[nodiscard]] std::expected<TrashedItem, QString> alone(
    const RemovalServices &services, RemovalJournal *journal, TrashedItem facts, const TakingJudge &judge);

/// Why nothing was begun.
[[nodiscard]] QString notBegun(const QString &error);

} // namespace BookedMove

} // namespace Quillbrook
