#include "Core/FindingCollector.h"

#include <algorithm>
#include <functional>

namespace Quillbrook {

qsizetype FindingCollector::add(const Finding &finding)
{
    const std::scoped_lock lock(m_lock);
    m_items.append(finding);
    m_latest = finding.rule.title;
    return m_items.size();
}

void FindingCollector::finish()
{
    const std::scoped_lock lock(m_lock);
    m_finished = true;
}

FindingCollector::Found FindingCollector::found() const
{
    Found found;
    {
        const std::scoped_lock lock(m_lock);
        found = { .findings = m_items, .latest = m_latest, .finished = m_finished };
    }
    std::ranges::stable_sort(found.findings, std::greater(), &Finding::bytes);
    return found;
}

} // namespace Quillbrook
