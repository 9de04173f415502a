#include "Screens/Rules/RulesRows.h"

#include "Catalogue/StorageCatalogue.h"
#include "Core/Translation.h"
#include "Scan/Format.h"
#include "Screens/SingleLine.h"
#include "Screens/Theme.h"

#include <QCoreApplication>
#include <QSet>

namespace Quillbrook::RulesRows {

using namespace Qt::StringLiterals;

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("Quillbrook::RulesRows", text);
}

RulesRow section(const QString &title)
{
    return { .kind = RulesLines::Kind::Section, .id = title, .title = title };
}

RulesRow sentence(const QString &title, const QColor &tone = Theme::label())
{
    return { .kind = RulesLines::Kind::Sentence, .id = title, .title = title, .tone = tone };
}

// The rows of one card, or, where there are none, the sentence in their place.
void addCard(QList<RulesRow> &rows, QList<RulesRow> card, const QString &otherwise)
{
    if (card.isEmpty())
        card.append(sentence(otherwise));
    card.first().first = true;
    card.last().last = true;
    rows.append(card);
}

QString countOf(qsizetype items)
{
    return items == 1 ? tr("%1 item").arg(items) : tr("%1 items").arg(items);
}

RulesRow row(const AutomationPreset &preset, const Input &input)
{
    const auto &automation = input.automation;
    const auto &store = automation.store();
    const auto found = AutomationStore::findings(preset, *input.report);
    const auto when = tr("when the disk is %1% full").arg(wholePercent(preset.triggerUsedPercent));
    RulesRow row{ .kind = RulesLines::Kind::Preset,
        .id = preset.id,
        .title = translatedTableText(preset.title),
        .text = translatedTableText(preset.blurb),
        .tone = Theme::safe(),
        .on = store.isOn(preset) };
    if (found.isEmpty()) {
        row.caption = tr("On · nothing to clear right now · %1").arg(when);
        return row;
    }
    const auto bytes = AutomationStore::bytes(preset, *input.report);
    row.size = Format::bytes(bytes);
    row.caption = u"%1 · %2"_s.arg(countOf(found.size()), when);
    if (row.on)
        return row;
    const auto used = automation.usedPercent();
    if (used >= preset.triggerUsedPercent) {
        row.note
            = tr("Your disk is already %1% full, so this runs on the next scan and clears %2 straight away.")
                  .arg(wholePercent(used), Format::bytes(bytes));
        row.tone = Theme::careful();
    } else {
        row.note = dryRun(store.wouldClear(preset, *input.report, AutomationStore::worthClearing),
            preset.triggerUsedPercent, automation);
    }
    return row;
}

RulesRow row(const AutomationRule &rule, const Input &input)
{
    const auto *known = StorageCatalogue::rule(rule.ruleId, &input.automation.host());
    return { .kind = RulesLines::Kind::Rule,
        .id = rule.id,
        .title = singleLine(known ? translatedTableText(known->title) : rule.ruleId),
        .text = rule.summary(),
        .caption = rule.timesFired < 1
            ? tr("Has not fired yet")
            : tr("Fired %1× · last %2")
                  .arg(QString::number(rule.timesFired), Format::age(rule.lastFiredAt, input.now)),
        .on = rule.enabled };
}

RulesRow row(const Finding &finding)
{
    return { .kind = RulesLines::Kind::Suggestion,
        .id = finding.id,
        .title = singleLine(translatedTableText(finding.rule.title)),
        .size = Format::bytes(finding.bytes) };
}

void addPresets(QList<RulesRow> &rows, const Input &input)
{
    rows.append(section(tr("Ready to turn on")));
    if (!input.problem.isEmpty())
        addCard(rows, { sentence(input.problem, Theme::danger()) }, {});
    if (!input.report)
        return addCard(rows, {}, tr("Scan first and these will fill in."));
    QList<RulesRow> card;
    for (const auto &preset : input.automation.presets())
        if (input.automation.store().isOn(preset)
            || !AutomationStore::findings(preset, *input.report).isEmpty())
            card.append(row(preset, input));
    addCard(rows, card, tr("None of these apply to this Mac — nothing they cover is here."));
}

void addLog(QList<RulesRow> &rows, const QStringList &log)
{
    if (log.isEmpty())
        return;
    rows.append(section(tr("What rules have done")));
    QList<RulesRow> card;
    for (const auto &line : log)
        card.append({ .kind = RulesLines::Kind::LogLine, .title = singleLine(line) });
    addCard(rows, card, {});
}

} // namespace

QList<RulesRow> rows(const Input &input)
{
    QList<RulesRow> rows{
        { .kind = RulesLines::Kind::Heading,
            .title = tr("Clear things automatically when the disk fills up"),
            .text
            = tr("A rule names one thing, one threshold, and whether it repeats. Only items that rebuild "
                 "themselves with no action from you can be automated — nothing that could be your only "
                 "copy.") },
        { .kind = RulesLines::Kind::Guarantee,
            .text
            = tr("Rules only touch things that rebuild themselves. What a rule clears stays in the Trash for "
                 "a "
                 "day, so you can put anything back, then it's removed for good. If your disk is nearly full "
                 "(under 5 GB free) it's removed right away. Everything a rule does is listed here.") },
    };
    addPresets(rows, input);
    addLog(rows, input.automation.log());

    rows.append(section(tr("Your rules")));
    QList<RulesRow> card;
    for (const auto &rule : input.automation.store().rules())
        card.append(row(rule, input));
    addCard(rows, card, tr("None yet. Turn on one above, or pick something from the list below."));

    rows.append(section(tr("Worth automating")));
    card.clear();
    if (input.report)
        for (const auto &finding : suggestions(*input.report, input.automation))
            card.append(row(finding));
    addCard(rows, card, tr("Nothing here is both large and safe enough to automate right now."));
    return rows;
}

QList<Finding> suggestions(const ReclaimReport &report, const AutomationDriver &automation)
{
    QSet<QString> covered;
    for (const auto &preset : automation.presets())
        covered.unite(QSet<QString>(preset.ruleIds.begin(), preset.ruleIds.end()));
    auto findings = automation.store().suggestions(report, AutomationStore::worthAutomating);
    findings.removeIf([&covered](const Finding &finding) { return covered.contains(finding.rule.id); });
    return findings;
}

QString dryRun(qint64 bytes, double triggerUsedPercent, const AutomationDriver &automation)
{
    const auto would = tr("Would clear %1 now.").arg(Format::bytes(bytes));
    const auto looks = automation.looksAt(triggerUsedPercent);
    if (looks.all < 1)
        return would;
    return would + u' '
        + tr("The disk stood at %1% or more in %2 of %3 looks.")
              .arg(wholePercent(triggerUsedPercent), QString::number(looks.full), QString::number(looks.all));
}

} // namespace Quillbrook::RulesRows
