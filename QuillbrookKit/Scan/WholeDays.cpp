#include "Scan/WholeDays.h"

namespace Quillbrook {

qint64 wholeDays(const QDateTime &from, const QDateTime &to)
{
    if (!from.isValid() || !to.isValid())
        return 0;
    const auto start = from.toLocalTime();
    const auto end = to.toLocalTime();
    // Counts the midnights between, of which the last may not have completed a day.
    const auto days = start.daysTo(end);
    if (days > 0 && start.addDays(days) > end)
        return days - 1;
    if (days < 0 && start.addDays(days) < end)
        return days + 1;
    return days;
}

} // namespace Quillbrook
