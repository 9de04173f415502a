#include "Screens/Rules/RulesState.h"

#include "Core/AppModel.h"
#include "Core/Translation.h"
#include "Platform/Clock.h"
#include "Screens/Rules/RulesRows.h"

#include <algorithm>

namespace Quillbrook {

RulesState::RulesState(AppModel &model, QObject *parent)
    : PaneState(parent)
    , m_model(model)
    , m_editor(model.automation())
{
    connect(&m_model.scans(), &ScanDriver::reportChanged, this, &RulesState::refresh);
    connect(&m_model.volume(), &VolumeFigures::volumeChanged, this, &RulesState::refresh);
    connect(&m_model.automation(), &AutomationDriver::rulesChanged, this, &RulesState::refresh);
    connect(&m_model.automation(), &AutomationDriver::logChanged, this, &RulesState::refresh);
    connect(&m_model.automation(), &AutomationDriver::looksChanged, this, &RulesState::refresh);
}

void RulesState::appear()
{
    m_editor.resetChoices();
    m_problem.clear();
    refresh();
}

void RulesState::disappear()
{
    m_editor.cancel();
}

void RulesState::recheck()
{
    refresh();
}

const RulesRow *RulesState::at(int row, RulesLines::Kind kind) const
{
    const auto *line = m_rows.at(row);
    return line && line->kind == kind ? line : nullptr;
}

void RulesState::setOn(int row, bool on)
{
    if (const auto *preset = at(row, RulesLines::Kind::Preset))
        setPreset(preset->id, on);
    else if (const auto *rule = at(row, RulesLines::Kind::Rule))
        m_model.automation().setEnabled(QString(rule->id), on);
}

void RulesState::setPreset(const QString &id, bool on)
{
    const auto presets = m_model.automation().presets();
    const auto preset = std::ranges::find(presets, id, &AutomationPreset::id);
    if (preset == presets.end())
        return;
    const auto done = m_model.automation().setPreset(*preset, on);
    m_problem = done ? QString() : RuleError{ translatedTableText(done.error().title) }.translated();
    refresh();
}

void RulesState::remove(int row)
{
    if (const auto *rule = at(row, RulesLines::Kind::Rule))
        m_model.automation().remove(QString(rule->id));
}

void RulesState::automate(int row)
{
    const auto *line = at(row, RulesLines::Kind::Suggestion);
    if (!line || !m_model.scans().report())
        return;
    const auto &findings = m_model.scans().report()->findings;
    if (const auto found = std::ranges::find(findings, line->id, &Finding::id); found != findings.end())
        m_editor.open(*found);
}

void RulesState::act(int row)
{
    const auto *line = m_rows.at(row);
    if (line && line->kind == RulesLines::Kind::Suggestion)
        automate(row);
    else if (line)
        setOn(row, !line->on);
}

void RulesState::refresh()
{
    if (!shown())
        return;
    m_rows.setRows(RulesRows::rows({ .report = m_model.scans().report(),
        .automation = m_model.automation(),
        .problem = m_problem,
        .now = m_model.services().kit.clock.now() }));
}

} // namespace Quillbrook
