#include "Screens/Warden/WardenRows.h"

#include "Core/Translation.h"
#include "RawText.h"
#include "Removal/CappedSum.h"
#include "Scan/Format.h"
#include "Screens/SingleLine.h"
#include "Screens/Theme.h"

#include <QCoreApplication>

#include <array>

namespace Quillbrook::WardenRows {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array sections{ Safety::safe, Safety::careful, Safety::reportOnly };

QString tr(const char *text)
{
    return QCoreApplication::translate("Quillbrook::WardenRows", text);
}

QColor tone(Safety safety)
{
    switch (safety) {
    case Safety::safe:
        return Theme::safe();
    case Safety::careful:
        return Theme::careful();
    case Safety::reportOnly:
        break;
    }
    return Theme::label();
}

WardenRow netBanner()
{
    return { .kind = WardenLines::Kind::Banner,
        .id = safetyNetBanner,
        .title = tr("This Mac has no backup"),
        .tone = Theme::careful(),
        .symbol = u"exclamationmark.shield.fill"_s,
        .tinted = true,
        .what
        = tr("No Time Machine destination and no local snapshots. Everything Quillbrook removes goes to the "
             "Trash and can be put back from there — but once the Trash is emptied it is gone for good. On a "
             "modern Mac, no recovery tool can bring it back.") };
}

WardenRow banner(const Verification &verification, const QStringList &reasons)
{
    const auto went = tr("Free space went %1 → %2.")
                          .arg(Format::bytes(verification.freeBefore), Format::bytes(verification.freeAfter));
    WardenRow row{ .kind = WardenLines::Kind::Banner, .id = verificationBanner, .action = tr("Dismiss") };
    if (verification.isGood()) {
        row.title
            = tr("%1 actually freed").arg(Format::bytes(verification.freeAfter - verification.freeBefore));
        row.what = went + tr(" Measured, not estimated.");
        row.symbol = u"checkmark.seal.fill"_s;
        row.tone = Theme::safe();
    } else {
        row.title
            = tr("Removed %1, but free space barely moved").arg(Format::bytes(verification.claimedBytes));
        row.what = went
            + tr(" Either it is still in the Trash, or something else wrote to the disk at the same time — a "
                 "build "
                 "running in the background will do it. Rescan to see the current picture.");
        row.symbol = u"questionmark.circle"_s;
        row.tone = Theme::careful();
        row.note = reasons.join(u' ');
    }
    return row;
}

// What the ledger holds can be deleted; what only the journal holds can be put back and nothing else. Things
// that take no space are no matter for a banner by themselves.
QList<WardenRow> trashBanner(const Input &input)
{
    TrashLedger::Pending pending;
    qint64 failedBytes = 0;
    bool isAnyFailed = false;
    bool isAnyTicked = false;
    bool isAnyDeletable = false;
    for (const auto &held : input.held) {
        const bool isTicked = !input.heldBack.contains(held.item.id);
        isAnyTicked |= isTicked;
        if (held.isOnlyInJournal) {
            isAnyFailed = true;
            failedBytes = cappedSum(failedBytes, held.item.bytes);
            continue;
        }
        isAnyDeletable |= isTicked;
        ++pending.count;
        pending.bytes = cappedSum(pending.bytes, held.item.bytes);
    }
    if (pending.bytes <= 0 && !isAnyFailed)
        return {};
    WardenRow banner{ .kind = WardenLines::Kind::Banner,
        .id = pendingTrashBanner,
        .tone = Theme::accent(),
        .symbol = u"trash"_s,
        .action = tr("Put back"),
        .actionWaits = input.isBusy || !isAnyTicked,
        .opens = true,
        .opened = input.heldShown };
    if (pending.bytes > 0) {
        banner.title = tr("%1 is in the Trash, still taking up space").arg(Format::bytes(pending.bytes));
        banner.what
            = tr("The Trash sits on the same volume, so the space only comes back once it is emptied. "
                 "Quillbrook will remove only the %1 items it moved — never anything else you have thrown "
                 "away.")
                  .arg(QString::number(pending.count));
        banner.otherAction = tr("Finish removing");
        banner.otherActionWaits = input.isBusy || !isAnyDeletable;
    } else {
        banner.title = tr("%1 went to the Trash by removals that failed").arg(Format::bytes(failedBytes));
        banner.what = tr("Only a part of what was to go has gone there. It can be put back.");
    }
    QList<WardenRow> rows{ banner };
    if (!input.heldShown)
        return rows;
    // What went last is what a person is most likely to want back.
    for (auto held = input.held.rbegin(); held != input.held.rend(); ++held) {
        rows.append(input.heldRows.of(*held, input.home, input.now));
        rows.last().ticked = !input.heldBack.contains(held->item.id);
        rows.last().waits = input.isBusy;
    }
    rows.last().last = true;
    return rows;
}

WardenRow scanOffer()
{
    return { .kind = WardenLines::Kind::Banner,
        .id = completeScanOffer,
        .title = tr("Photos, Music, Documents and other apps' data weren't measured"),
        .tone = Theme::label(),
        .symbol = u"lock.circle"_s,
        .action = tr("Include them"),
        .what
        = tr("Photos, Music, Documents and other apps' files are protected by macOS, so Quillbrook has not "
             "looked at them. Including them shows you the whole disk — your Mac will ask your permission "
             "once "
             "for each one.") };
}

QString translatedTitle(Finding finding)
{
    finding.rule.title = translatedTableText(finding.rule.title);
    if (finding.locationLabel)
        finding.locationLabel = translatedTableText(*finding.locationLabel);
    return finding.displayTitle();
}

WardenRow offerBanner(const Finding &finding)
{
    return { .kind = WardenLines::Kind::Banner,
        .id = automationOfferBanner,
        .title = tr("Do this again on its own?"),
        .note = tr("To the Trash, never permanently · only this one item · off again in one click"),
        .tone = Theme::accent(),
        .symbol = u"wand.and.stars"_s,
        .action = tr("Turn it on"),
        .otherAction = tr("No thanks"),
        .what
        = tr("%1 was %2, and it comes back. Quillbrook can clear it whenever the disk reaches 90% full.")
              .arg(singleLine(translatedTitle(finding)), Format::bytes(finding.bytes)) };
}

QList<WardenRow> banners(const Input &input)
{
    QList<WardenRow> rows;
    if (input.safetyNet && input.safetyNet->isUnprotected())
        rows.append(netBanner());
    if (input.verification)
        rows.append(banner(*input.verification, input.stayedReasons));
    if (input.automationOffer)
        rows.append(offerBanner(*input.automationOffer));
    rows.append(trashBanner(input));
    if (input.offersCompleteScan)
        rows.append(scanOffer());
    return rows;
}

WardenRow heading(const ReclaimReport &report, Safety safety)
{
    return { .kind = WardenLines::Kind::Heading,
        .title = translatedTableText(label(safety)),
        .size = Format::bytes(report.bytes(safety)),
        .note = safety == Safety::reportOnly ? tr("· Quillbrook never picks these") : QString(),
        .tone = tone(safety) };
}

WardenRow row(const Finding &finding, const Input &input)
{
    const bool selectable = isSelectable(finding);
    return { .kind = WardenLines::Kind::Finding,
        .id = finding.id,
        .title = singleLine(translatedTitle(finding)),
        .size = Format::bytes(finding.bytes),
        .note = finding.redirectedOffVolume
            ? tr("This folder actually lives on another drive, so clearing it frees nothing here.")
            : QString(),
        .waits = input.isBusy,
        .ages
        = tr("Created %1 · last used %2")
              .arg(Format::age(finding.created, input.now), Format::age(finding.lastModified, input.now)),
        .what = translatedTableText(finding.rule.what),
        .regenerates = translatedTableText(finding.rule.regenerates),
        .path = singleLine(finding.friendlyPath(input.home)),
        .selectable = selectable,
        .ticked = selectable && input.chosen.contains(finding.id),
        .pathShown = input.pathShown.contains(finding.id) };
}

void addSection(QList<WardenRow> &rows, const QList<Finding> &findings, Safety safety, const Input &input)
{
    const auto before = rows.size();
    for (const auto &finding : findings)
        if (finding.rule.safety == safety)
            rows.append(row(finding, input));
    if (rows.size() == before)
        return;
    rows[before].first = true;
    rows.last().last = true;
    rows.insert(before, heading(*input.report, safety));
}

} // namespace

QList<WardenRow> rows(const Input &input)
{
    auto rows = banners(input);
    if (input.report) {
        const auto findings = input.report->deletable();
        for (const auto safety : sections)
            addSection(rows, findings, safety, input);
    }
    if (!input.log.isEmpty())
        rows.append(WardenRow{ .kind = WardenLines::Kind::LogHeading, .title = tr("Activity") });
    for (const auto &line : input.log)
        rows.append(WardenRow{ .kind = WardenLines::Kind::LogLine, .title = singleLine(line) });
    return rows;
}

WardenRow heldRow(const HeldItem &held, const QString &home, const QDateTime &now)
{
    const auto place = singleLine(Format::friendlyPath(repairedText(held.item.originalPath), home));
    return { .kind = WardenLines::Kind::Held,
        .id = held.item.id,
        .title = singleLine(held.item.label),
        .size = Format::bytes(held.item.bytes),
        .ages = Format::age(held.item.movedAt, now),
        .path = held.isOnlyInJournal ? tr("%1 · can only be put back").arg(place) : place,
        .selectable = true,
        .ticked = true };
}

bool isSelectable(const Finding &finding)
{
    return finding.rule.safety != Safety::reportOnly && !finding.redirectedOffVolume;
}

QList<Finding> actionable(const std::optional<ReclaimReport> &report)
{
    if (!report)
        return {};
    auto findings = report->deletable();
    findings.removeIf([](const Finding &finding) { return !isSelectable(finding); });
    return findings;
}

QSet<QString> defaultSelection(const std::optional<ReclaimReport> &report)
{
    QSet<QString> ids;
    for (const auto &finding : actionable(report))
        if (finding.rule.safety == Safety::safe)
            ids.insert(finding.id);
    return ids;
}

} // namespace Quillbrook::WardenRows
