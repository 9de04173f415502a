#include "Screens/WardenRows.h"

#include "Scan/Format.h"
#include "Screens/Theme.h"

#include <QCoreApplication>

#include <array>

namespace Quillbrook::WardenRows {

namespace {

constexpr std::array sections{ Safety::safe, Safety::careful, Safety::reportOnly };

QString tr(const char *text)
{
    return QCoreApplication::translate("WardenRows", text);
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

WardenRow heading(const ReclaimReport &report, Safety safety)
{
    return { .kind = WardenLines::Kind::Heading,
        .title = label(safety),
        .size = Format::bytes(report.bytes(safety)),
        .note = safety == Safety::reportOnly ? tr("· Quillbrook never picks these") : QString(),
        .tone = tone(safety) };
}

WardenRow row(const Finding &finding, const Input &input)
{
    const bool selectable = isSelectable(finding);
    return { .kind = WardenLines::Kind::Finding,
        .id = finding.id,
        .title = finding.displayTitle(),
        .size = Format::bytes(finding.bytes),
        .note = finding.redirectedOffVolume
            ? tr("This folder actually lives on another drive, so clearing it frees nothing here.")
            : QString(),
        .ages
        = tr("Created %1 · last used %2")
              .arg(Format::age(finding.created, input.now), Format::age(finding.lastModified, input.now)),
        .what = finding.rule.what,
        .regenerates = finding.rule.regenerates,
        .path = finding.friendlyPath(input.home),
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
    QList<WardenRow> rows;
    if (input.offersCompleteScan)
        rows.append(WardenRow{ .kind = WardenLines::Kind::CompleteScanOffer });
    if (input.report) {
        const auto findings = input.report->deletable();
        for (const auto safety : sections)
            addSection(rows, findings, safety, input);
    }
    if (!input.log.isEmpty())
        rows.append(WardenRow{ .kind = WardenLines::Kind::LogHeading, .title = tr("Activity") });
    for (const auto &line : input.log)
        rows.append(WardenRow{ .kind = WardenLines::Kind::LogLine, .title = line });
    return rows;
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
