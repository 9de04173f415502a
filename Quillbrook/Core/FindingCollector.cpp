#include "Core/FindingCollector.h"

#include <algorithm>
#include <functional>

namespace Quillbrook {

void FindingCollector::add(const Finding &finding)
{
    const std::scoped_lock lock(m_lock);
    m_items.append(finding);
    m_latest = finding.rule.title;
}

void FindingCollector::finish()
{
    const std::scoped_lock lock(m_lock);
    m_finished = true;
}

FindingCollector::Look FindingCollector::look() const
{
    Look look;
    {
        const std::scoped_lock lock(m_lock);
        look = { .findings = m_items, .latest = m_latest, .finished = m_finished };
    }
    std::ranges::stable_sort(look.findings, std::greater(), &Finding::bytes);
    return look;
}

} // namespace Quillbrook
