#include "Scan/Format.h"

#include "Scan/WholeDays.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <array>
#include <charconv>

namespace Quillbrook::Format {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 bytesPerUnit = 1024;
constexpr double reciprocalOfUnit = 0.0009765625;
constexpr std::array units{ "KB", "MB", "GB", "TB" };

constexpr qint64 daysPerMonth = 30;
constexpr qint64 daysPerYear = 365;

struct AgeWords
{
    const char *text;
    /// Stands in the place of "%1".
    std::optional<qint64> number{};
};

AgeWords ageWords(const std::optional<QDateTime> &date, const QDateTime &now)
{
    if (!date)
        return { QT_TRANSLATE_NOOP("Format", "unknown") };
    const auto days = wholeDays(*date, now);
    if (days < 1)
        return { QT_TRANSLATE_NOOP("Format", "today") };
    if (days == 1)
        return { QT_TRANSLATE_NOOP("Format", "yesterday") };
    if (days < daysPerMonth)
        return { QT_TRANSLATE_NOOP("Format", "%1 days ago"), days };
    if (days < daysPerYear)
        return { QT_TRANSLATE_NOOP("Format", "%1 months ago"), days / daysPerMonth };
    return { QT_TRANSLATE_NOOP("Format", "over a year ago") };
}

// How much of `path` spells `home`, when that is all of it or a "/" follows. Texts that differ only in how
// their characters are composed spell the same folder.
std::optional<qsizetype> homeLength(const QString &path, const QString &home)
{
    const auto endsComponent = [&](qsizetype end) { return end == path.size() || path[end] == u'/'; };
    if (path.startsWith(home))
        return endsComponent(home.size()) ? std::optional(home.size()) : std::nullopt;
    const auto composed = home.normalized(QString::NormalizationForm_C);
    // A path can be as long as its disk is deep, and its beginnings are composed one by one. What is far
    // longer than the home folder in any spelling isn't it.
    constexpr qsizetype mostGrowth = 8;
    const auto longest = std::min(path.size(), composed.size() * mostGrowth);
    for (qsizetype end = 1; end <= longest; ++end) {
        if (endsComponent(end) && path.first(end).normalized(QString::NormalizationForm_C) == composed)
            return end;
    }
    return std::nullopt;
}

} // namespace

QString bytes(qint64 count)
{
    if (count < bytesPerUnit)
        return QString::number(count) + u" B"_s;
    auto value = static_cast<double>(count) * reciprocalOfUnit;
    size_t unit = 0;
    for (; value >= bytesPerUnit && unit + 1 < units.size(); ++unit)
        value *= reciprocalOfUnit;
    return decimal(value, value >= 100 ? 0 : 1) + u' ' + QLatin1StringView(units[unit]);
}

QString decimal(double value, int decimals)
{
    // The largest there is has 309 digits before the point.
    std::array<char, 512> text{};
    auto *begin = text.data();
    const auto written = std::to_chars(begin, begin + text.size(), value, std::chars_format::fixed, decimals);
    return QLatin1StringView(begin, written.ptr);
}

QString count(qint64 value)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(value);
}

QString age(const std::optional<QDateTime> &date, const QDateTime &now)
{
    const auto words = ageWords(date, now);
    const auto text = QCoreApplication::translate("Format", words.text);
    return words.number ? text.arg(*words.number) : text;
}

QString ageInEnglish(const std::optional<QDateTime> &date, const QDateTime &now)
{
    const auto words = ageWords(date, now);
    const auto text = QString::fromLatin1(words.text);
    return words.number ? text.arg(*words.number) : text;
}

QString friendlyPath(const QString &path, const QString &home)
{
    if (const auto length = homeLength(path, home))
        return u'~' + path.sliced(*length);
    return path;
}

} // namespace Quillbrook::Format
