#include "Core/QuestionDriver.h"

#include "Catalogue/StorageCatalogue.h"
#include "Core/ScanDriver.h"
#include "Core/Translation.h"
#include "Offload/Suitability.h"

#include <algorithm>

namespace Quillbrook {

namespace {

constexpr qsizetype mostQuestions = 3;
/// What is never suggested is asked about when it is larger than this.
constexpr qint64 largeBytes = qint64{ 2 } * 1024 * 1024 * 1024;

QString lowerTitle(const Finding &finding)
{
    return translatedTableText(finding.rule.title).toLower();
}

} // namespace

QuestionDriver::QuestionDriver(const ScanDriver &scans, QObject *parent)
    : QObject(parent)
    , m_scans(scans)
    , m_suggestedQuestions{ tr("What is using the most space?") }
{
}

// Later, not within the end of the scan, of which others still hear.
void QuestionDriver::refreshSuggestedQuestions()
{
    if (m_scans.phase().kind == Phase::Kind::ready)
        QMetaObject::invokeMethod(this, &QuestionDriver::publish, Qt::QueuedConnection);
}

void QuestionDriver::publish()
{
    auto questions = computeSuggestedQuestions({ .report = m_scans.report(),
        .itemCount = [this](const Finding &finding) { return m_scans.itemCount(finding); },
        .host = &m_scans.hostCatalogue() });
    if (questions.isEmpty() || questions == m_suggestedQuestions)
        return;
    m_suggestedQuestions = std::move(questions);
    Q_EMIT suggestedQuestionsChanged();
}

QStringList QuestionDriver::computeSuggestedQuestions(const Facts &facts)
{
    if (!facts.report)
        return { tr("What is using the most space?") };
    const auto &findings = facts.report->findings;
    QStringList questions;
    const auto isCountable = [&facts](const Finding &finding) {
        return finding.rule.safety != Safety::reportOnly
            && StorageCatalogue::supportsItems(finding.rule.id, facts.host) && facts.itemCount(finding) > 1;
    };
    if (const auto found = std::ranges::find_if(findings, isCountable); found != findings.end())
        questions.append(tr("How many %1 are there?").arg(lowerTitle(*found)));
    questions.append(tr("What's safe to delete?"));
    const auto isLargeAndKept = [](const Finding &finding) {
        return finding.rule.safety == Safety::reportOnly && finding.bytes > largeBytes;
    };
    if (!Offload::candidates(*facts.report, facts.host).isEmpty())
        questions.append(tr("What can I move to another drive?"));
    else if (const auto found = std::ranges::find_if(findings, isLargeAndKept); found != findings.end())
        questions.append(tr("Why won't you remove %1?").arg(lowerTitle(*found)));
    return questions.first(std::min(questions.size(), mostQuestions));
}

} // namespace Quillbrook
