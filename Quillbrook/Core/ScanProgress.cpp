#include "Core/ScanProgress.h"

namespace Quillbrook {

void ScanProgress::setFraction(double fraction)
{
    if (m_fraction == fraction)
        return;
    m_fraction = fraction;
    Q_EMIT fractionChanged();
}

void ScanProgress::setDetail(const QString &detail)
{
    if (m_detail == detail)
        return;
    m_detail = detail;
    Q_EMIT detailChanged();
}

void ScanProgress::setCounts(const QString &counts)
{
    if (m_counts == counts)
        return;
    m_counts = counts;
    Q_EMIT countsChanged();
}

void ScanProgress::setFindings(const QList<Finding> &findings)
{
    if (m_findings == findings)
        return;
    m_findings = findings;
    Q_EMIT findingsChanged();
}

void ScanProgress::reset()
{
    setFraction(0);
    setDetail({});
    setCounts({});
    setFindings({});
}

} // namespace Quillbrook
