#pragma once

// Sizes, counts, ages and paths in the words that people read. Pure functions; every text that names one of
// these goes through here, so that the same quantity reads the same everywhere.

#include <QDateTime>
#include <QString>

#include <optional>

namespace Quillbrook::Format {

/// Binary units with short labels: "512 B", "1.5 KB", "100 GB"; nothing above "TB".
[[nodiscard]] QString bytes(qint64 count);
/// With `decimals` digits after the point. What lies exactly between two figures goes to the even one, as
/// with printf and unlike Qt's own formatting.
[[nodiscard]] QString decimal(double value, int decimals);
/// Decimal digits grouped by comma whatever the user's locale.
[[nodiscard]] QString count(qint64 value);
/// Whole days between `date` and `now` as "today", "yesterday", "12 days ago", "3 months ago", "over a year
/// ago"; "unknown" without a date.
[[nodiscard]] QString age(
    const std::optional<QDateTime> &date, const QDateTime &now = QDateTime::currentDateTime());
/// The same in English, for who is no person.
[[nodiscard]] QString ageInEnglish(const std::optional<QDateTime> &date, const QDateTime &now);
/// `path` with a leading home folder shortened to "~".
[[nodiscard]] QString friendlyPath(const QString &path, const QString &home);

} // namespace Quillbrook::Format
