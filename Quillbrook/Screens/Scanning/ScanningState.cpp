#include "Screens/Scanning/ScanningState.h"

namespace Quillbrook {

ScanningState::ScanningState(ScanProgress &progress, QObject *parent)
    : QObject(parent)
    , m_progress(progress)
{
    connect(&m_progress, &ScanProgress::detailChanged, this, &ScanningState::titleChanged);
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

} // namespace Quillbrook
