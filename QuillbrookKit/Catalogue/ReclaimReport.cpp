#include "Catalogue/ReclaimReport.h"

#include "Fatal.h"

namespace Quillbrook {

namespace {

qint64 added(qint64 a, qint64 b)
{
    qint64 sum = 0;
    if (__builtin_add_overflow(a, b, &sum))
        fatal("the sizes of a report add up to more than 2^63 bytes");
    return sum;
}

} // namespace

QList<Finding> ReclaimReport::deletable() const
{
    QList<Finding> result;
    for (const auto &finding : findings)
        if (finding.meetsStalenessForDeletion)
            result.append(finding);
    return result;
}

qint64 ReclaimReport::bytes(Safety safety) const
{
    qint64 sum = 0;
    for (const auto &finding : findings)
        if (finding.meetsStalenessForDeletion && finding.rule.safety == safety
            && !finding.redirectedOffVolume)
            sum = added(sum, finding.bytes);
    return sum;
}

qint64 ReclaimReport::actionableBytes() const
{
    return added(bytes(Safety::safe), bytes(Safety::careful));
}

} // namespace Quillbrook
