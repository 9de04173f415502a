#include "Screens/Rules/RuleEditorState.h"

#include "Core/AutomationDriver.h"
#include "Core/Translation.h"
#include "Screens/Rules/RulesRows.h"
#include "Screens/SingleLine.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Quillbrook {

namespace {

constexpr std::array offered{ Cadence::everyTime, Cadence::once };

} // namespace

RuleEditorState::RuleEditorState(AutomationDriver &automation, QObject *parent)
    : QObject(parent)
    , m_automation(automation)
{
    connect(&automation, &AutomationDriver::looksChanged, this, &RuleEditorState::dryRunChanged);
    connect(this, &RuleEditorState::draftChanged, this, &RuleEditorState::dryRunChanged);
    connect(this, &RuleEditorState::thresholdChanged, this, &RuleEditorState::dryRunChanged);
}

QString RuleEditorState::heading() const
{
    return m_draft ? tr("Automate %1").arg(singleLine(translatedTableText(m_draft->rule.title))) : QString();
}

QString RuleEditorState::what() const
{
    return m_draft ? translatedTableText(m_draft->rule.what) : QString();
}

QString RuleEditorState::thresholdLabel() const
{
    return tr("Clear it when the disk reaches %1%").arg(wholePercent(m_threshold));
}

QString RuleEditorState::dryRun() const
{
    if (!m_draft)
        return {};
    return RulesRows::dryRun(
        AutomationStore::wouldClear(*m_draft, AutomationStore::worthClearing), m_threshold, m_automation);
}

QStringList RuleEditorState::cadences() const
{
    QStringList words;
    for (const auto cadence : offered)
        words.append(label(cadence));
    return words;
}

void RuleEditorState::open(const Finding &draft)
{
    m_draft = draft;
    setProblem({});
    Q_EMIT draftChanged();
}

void RuleEditorState::setThreshold(double threshold)
{
    const auto next = std::clamp(std::round(threshold), lowestThreshold, highestThreshold);
    if (std::isnan(threshold) || next == m_threshold)
        return;
    m_threshold = next;
    Q_EMIT thresholdChanged();
}

void RuleEditorState::setCadence(int cadence)
{
    if (cadence == m_cadence || cadence < 0 || cadence >= int(offered.size()))
        return;
    m_cadence = cadence;
    Q_EMIT cadenceChanged();
}

void RuleEditorState::resetChoices()
{
    setThreshold(firstThreshold);
    setCadence(0);
}

void RuleEditorState::create()
{
    if (!m_draft)
        return;
    auto finding = *m_draft;
    const auto added = m_automation.add(finding, m_threshold, offered.at(static_cast<size_t>(m_cadence)));
    if (added)
        return cancel();
    setProblem(RuleError{ translatedTableText(finding.rule.title) }.translated());
}

void RuleEditorState::cancel()
{
    if (!m_draft)
        return;
    m_draft.reset();
    setProblem({});
    Q_EMIT draftChanged();
}

void RuleEditorState::setProblem(const QString &problem)
{
    if (m_problem == problem)
        return;
    m_problem = problem;
    Q_EMIT problemChanged();
}

} // namespace Quillbrook
