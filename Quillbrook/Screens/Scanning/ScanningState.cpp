#include "Screens/Scanning/ScanningState.h"

#include "Core/ScanProgress.h"

namespace Quillbrook {

ScanningState::ScanningState(ScanProgress &progress, QObject *parent)
    : QObject(parent)
    , m_progress(progress)
{
    connect(&m_progress, &ScanProgress::detailChanged, this, &ScanningState::titleChanged);
    connect(&m_progress, &ScanProgress::fractionChanged, this, &ScanningState::fractionChanged);
    connect(&m_progress, &ScanProgress::countsChanged, this, &ScanningState::countsChanged);
    connect(&m_progress, &ScanProgress::findingsChanged, this, &ScanningState::takeFindings);
    takeFindings();
}

void ScanningState::takeFindings()
{
    m_findings.setFindings(m_progress.findings());
}

QString ScanningState::title() const
{
    return m_progress.detail().isEmpty() ? tr("Measuring this Mac") : m_progress.detail();
}

double ScanningState::fraction() const
{
    return m_progress.fraction();
}

QString ScanningState::counts() const
{
    return m_progress.counts();
}

} // namespace Quillbrook
