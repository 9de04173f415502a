#pragma once

// Days as a calendar counts them.

#include <QDateTime>

namespace Quillbrook {

/// How many whole days of the local calendar lie between two moments: a day is complete when the same time of
/// day has come again, however many hours the clocks' change made it. Negative when `to` is the earlier; 0
/// when either is not valid.
[[nodiscard]] qint64 wholeDays(const QDateTime &from, const QDateTime &to);

} // namespace Quillbrook
