#include "Automation/AutomationRule.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace Quillbrook {

using namespace Qt::StringLiterals;

QString rawValue(Cadence cadence)
{
    return cadence == Cadence::once ? u"once"_s : u"everyTime"_s;
}

std::optional<Cadence> cadenceOf(const QString &rawValue)
{
    for (const auto cadence : { Cadence::everyTime, Cadence::once })
        if (Quillbrook::rawValue(cadence) == rawValue)
            return cadence;
    return std::nullopt;
}

QString label(Cadence cadence)
{
    return cadence == Cadence::once ? QCoreApplication::translate("AutomationRule", "Just once")
                                    : QCoreApplication::translate("AutomationRule", "Every time");
}

QString wholePercent(double percent)
{
    // A rule comes from a file, which can say anything.
    constexpr double most = 1e15;
    return QString::number(std::isnan(percent) ? 0 : static_cast<qint64>(std::clamp(percent, -most, most)));
}

QString AutomationRule::summary() const
{
    return QCoreApplication::translate("AutomationRule", "When the disk is %1% full, clear it · %2")
        .arg(wholePercent(triggerUsedPercent), label(cadence).toLower());
}

} // namespace Quillbrook
