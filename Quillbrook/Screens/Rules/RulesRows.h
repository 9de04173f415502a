#pragma once

// What the screen "Automatic rules" lists, in order. Pure functions.

#include "Core/AutomationDriver.h"
#include "Screens/Rules/RulesRow.h"

#include <QDateTime>
#include <QList>

#include <optional>

namespace Quillbrook::RulesRows {

/// Everything that decides what the list says.
struct Input
{
    const std::optional<ReclaimReport> &report;
    const AutomationDriver &automation;
    /// Why a preset could not be switched on; empty where none failed.
    QString problem{};
    QDateTime now{};
};

[[nodiscard]] QList<RulesRow> rows(const Input &input);

/// What is worth a rule of its own: what no preset covers, on or off.
[[nodiscard]] QList<Finding> suggestions(const ReclaimReport &report, const AutomationDriver &automation);

/// What would go now, and how often the disk has been so full; `bytes` at that percentage.
[[nodiscard]] QString dryRun(qint64 bytes, double triggerUsedPercent, const AutomationDriver &automation);

} // namespace Quillbrook::RulesRows
