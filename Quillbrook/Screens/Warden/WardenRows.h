#pragma once

// What the screen "Free up space" lists, in order, and what of it may be picked. Pure functions.

#include "Catalogue/ReclaimReport.h"
#include "Core/Verification.h"
#include "Removal/Books.h"
#include "Removal/SafetyNet.h"
#include "Removal/TrashLedger.h"
#include "Screens/Warden/HeldRows.h"
#include "Screens/Warden/WardenRow.h"

#include <QDateTime>
#include <QList>
#include <QSet>
#include <QStringList>

#include <optional>

namespace Quillbrook::WardenRows {

/// Which banner a line is, as its id.
inline constexpr QLatin1String safetyNetBanner("safetyNet");
inline constexpr QLatin1String verificationBanner("verification");
inline constexpr QLatin1String automationOfferBanner("automationOffer");
inline constexpr QLatin1String pendingTrashBanner("pendingTrash");
inline constexpr QLatin1String completeScanOffer("completeScan");

/// Everything that decides what the list says.
struct Input
{
    const std::optional<ReclaimReport> &report;
    /// Ids of the ticked findings, and of those whose place is shown. Ids of nothing are ignored.
    const QSet<QString> &chosen;
    const QSet<QString> &pathShown;
    const std::optional<SafetyNet> &safetyNet;
    const std::optional<Verification> &verification;
    /// Why space did not come back, as far as it was found.
    const QStringList &stayedReasons;
    /// What a rule is offered for.
    const std::optional<Finding> &automationOffer;
    /// What Quillbrook moved to the Trash and what still lies there, the rows that its list has had, whether
    /// it is open, and the ids of what is not ticked there.
    const std::vector<HeldItem> &held;
    HeldRows &heldRows;
    bool heldShown = false;
    const QSet<QString> &heldBack;
    /// Something is being removed.
    bool isBusy = false;
    bool offersCompleteScan = false;
    const QStringList &log;
    /// What paths are shortened by.
    QString home{};
    QDateTime now{};
};

[[nodiscard]] QList<WardenRow> rows(const Input &input);
/// One thing in the Trash.
[[nodiscard]] WardenRow heldRow(const HeldItem &held, const QString &home, const QDateTime &now);

/// Whether a finding has a tick at all: neither one that is only shown nor one that lies elsewhere has.
[[nodiscard]] bool isSelectable(const Finding &finding);
/// What may be ticked, in the report's order; nothing without a report.
[[nodiscard]] QList<Finding> actionable(const std::optional<ReclaimReport> &report);
/// What is ticked without a word of the person's: only what comes back by itself.
[[nodiscard]] QSet<QString> defaultSelection(const std::optional<ReclaimReport> &report);

} // namespace Quillbrook::WardenRows
