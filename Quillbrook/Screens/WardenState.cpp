#include "Screens/WardenState.h"

#include "Core/AppModel.h"
#include "Platform/Clock.h"
#include "Platform/FileRevealer.h"
#include "Platform/HomeFolder.h"
#include "Scan/Format.h"
#include "Screens/WardenRows.h"

#include <QFile>

#include <utility>

namespace Quillbrook {

namespace {

void flip(QSet<QString> &ids, const QString &id)
{
    if (!ids.remove(id))
        ids.insert(id);
}

} // namespace

WardenState::WardenState(AppModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
{
    connect(&m_model, &AppModel::phaseChanged, this, &WardenState::followPhase);
    connect(&m_model, &AppModel::reportChanged, this, &WardenState::refresh);
    connect(&m_model, &AppModel::scopeChanged, this, &WardenState::refresh);
    connect(&m_model, &AppModel::reclaimLogChanged, this, &WardenState::refresh);
    refresh();
}

void WardenState::appear()
{
    m_chosen = WardenRows::defaultSelection(m_model.report());
    refresh();
}

// New findings arrive ticked until the person has shown a will of their own.
void WardenState::followPhase()
{
    if (m_model.phase().kind != Phase::Kind::ready || m_touched)
        return;
    appear();
}

QList<Finding> WardenState::chosenFindings() const
{
    auto findings = WardenRows::actionable(m_model.report());
    findings.removeIf([this](const Finding &finding) { return !m_chosen.contains(finding.id); });
    return findings;
}

void WardenState::toggle(int row)
{
    const auto *line = m_rows.at(row);
    if (!line || !line->selectable)
        return;
    flip(m_chosen, line->id);
    m_touched = true;
    refresh();
}

void WardenState::togglePath(int row)
{
    const auto *line = m_rows.at(row);
    if (!line || line->kind != WardenLines::Kind::Finding)
        return;
    flip(m_pathShown, line->id);
    refresh();
}

void WardenState::reveal(int row)
{
    const auto *line = m_rows.at(row);
    if (!line || !m_model.report())
        return;
    for (const auto &finding : m_model.report()->findings)
        if (finding.id == line->id)
            return m_model.services().revealer.reveal(QFile::encodeName(finding.path).toStdString());
}

void WardenState::scanEverything()
{
    m_model.scan({ .scope = Scope::complete });
}

void WardenState::refresh()
{
    m_rows.setRows(WardenRows::rows({ .report = m_model.report(),
        .chosen = m_chosen,
        .pathShown = m_pathShown,
        .offersCompleteScan = m_model.scope() == Scope::quiet,
        .log = m_model.reclaimLog(),
        .home = m_model.services().kit.home.homeDirectory(),
        .now = m_model.services().kit.clock.now() }));
    setSums();
    setEmptyMessage();
}

void WardenState::setSums()
{
    const auto chosen = chosenFindings();
    qint64 bytes = 0;
    for (const auto &finding : chosen)
        bytes += finding.bytes;
    auto total = tr("%1 selected").arg(Format::bytes(bytes));
    auto counts = tr("%1 of %2 reclaimable items")
                      .arg(Format::count(chosen.size()),
                          Format::count(WardenRows::actionable(m_model.report()).size()));
    if (m_total == total && m_counts == counts)
        return;
    m_total = std::move(total);
    m_counts = std::move(counts);
    Q_EMIT selectionChanged();
}

void WardenState::setEmptyMessage()
{
    const bool isEmpty = !m_model.report() || m_model.report()->deletable().isEmpty();
    auto message = isEmpty ? tr("Nothing to clear was found.") : QString();
    if (m_emptyMessage == message)
        return;
    m_emptyMessage = std::move(message);
    Q_EMIT emptyMessageChanged();
}

} // namespace Quillbrook
