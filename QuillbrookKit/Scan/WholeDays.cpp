#include "Scan/WholeDays.h"

#include <atomic>
#include <chrono>
#include <ctime>

namespace Quillbrook {

namespace {

using namespace std::chrono_literals;
using Watch = std::chrono::steady_clock;

constexpr qint64 millisecondsOfSecond = 1000;
constexpr qint64 millisecondsOfDay = qint64{ 24 } * 60 * 60 * millisecondsOfSecond;
constexpr auto zoneGoodFor = 1s;

// The library looks at the file of the system's time zone for each moment that it takes to local time,
// several times, and a list of a thousand rows would feel that. The person may travel, but not that fast.
void lookAtTheZone()
{
    static std::atomic<Watch::duration> looked{ Watch::duration::min() };
    const auto now = Watch::now().time_since_epoch();
    const auto last = looked.load();
    if (last != Watch::duration::min() && now - last < zoneGoodFor)
        return;
    ::tzset();
    looked = now;
}

qint64 quotient(qint64 number, qint64 divisor)
{
    return number / divisor - (number % divisor < 0 ? 1 : 0);
}

// As milliseconds since a midnight: what the clocks on the wall show, and no moment any more.
qint64 onTheWall(const QDateTime &moment)
{
    const auto milliseconds = moment.toMSecsSinceEpoch();
    const auto seconds = static_cast<std::time_t>(quotient(milliseconds, millisecondsOfSecond));
    std::tm local{};
    qint64 shown = 0;
    if (::localtime_r(&seconds, &local) == nullptr
        || __builtin_add_overflow(milliseconds, local.tm_gmtoff * millisecondsOfSecond, &shown))
        return milliseconds;
    return shown;
}

} // namespace

qint64 wholeDays(const QDateTime &from, const QDateTime &to)
{
    if (!from.isValid() || !to.isValid())
        return 0;
    lookAtTheZone();
    const auto start = onTheWall(from);
    const auto end = onTheWall(to);
    // Counts the midnights between, of which the last may not have completed a day.
    const auto startDay = quotient(start, millisecondsOfDay);
    const auto endDay = quotient(end, millisecondsOfDay);
    const auto days = endDay - startDay;
    const auto later = (end - endDay * millisecondsOfDay) - (start - startDay * millisecondsOfDay);
    if (days > 0 && later < 0)
        return days - 1;
    if (days < 0 && later > 0)
        return days + 1;
    return days;
}

} // namespace Quillbrook
