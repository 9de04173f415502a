#include "Screens/DateText.h"

#include <QList>
#include <QLocale>
#include <QRegularExpression>
#include <QStringList>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr int firstOfTwoDigitYears = 1970;
constexpr int noon = 12;
constexpr int daysOfWeek = 7;
constexpr qint64 secondsOfMinute = 60;
constexpr qint64 secondsOfHour = 60 * secondsOfMinute;

/// A part of the text: the letters of the format that it comes from, and where it stands.
struct Part
{
    QString letters{};
    qsizetype start = 0;
    qsizetype length = 0;
};

QString dateFormat()
{
    auto format = QLocale().dateFormat(QLocale::ShortFormat);
    if (!format.contains("yyyy"_L1))
        format.replace("yy"_L1, "yyyy"_L1);
    return format;
}

// Languages differ in which blanks they put before the half of the day; what is typed has the usual one.
QString withUsualBlanks(QString text)
{
    for (auto &character : text)
        if (character.isSpace())
            character = u' ';
    return text.trimmed();
}

// Without seconds, which some languages have in their short form too.
QString timeFormat()
{
    auto format = QLocale().timeFormat(QLocale::ShortFormat);
    for (const auto seconds : { ":ss"_L1, ".ss"_L1 })
        format.remove(seconds);
    return format;
}

QString wholeFormat()
{
    return withUsualBlanks(dateFormat() + u", "_s + timeFormat());
}

bool isName(const QString &letters)
{
    return letters.size() > 2 && !letters.startsWith(u'y');
}

/// The fields of a format, in its order; of the half of the day only the first letter.
QStringList fieldsOf(const QString &format)
{
    QStringList fields;
    bool isQuoted = false;
    QChar before;
    for (const auto character : format) {
        isQuoted = isQuoted != (character == u'\'');
        const bool isField = !isQuoted && QStringView(u"dMyhHmaA").contains(character);
        if (isField && character == before)
            fields.last() += character;
        else if (isField)
            fields.append(QString(character));
        before = isField ? character : QChar();
    }
    return fields;
}

QList<Part> partsOf(const QDateTime &moment)
{
    const auto whole = DateText::text(moment);
    const auto half = moment.time().hour() < noon ? QLocale().amText() : QLocale().pmText();
    QList<Part> parts;
    qsizetype end = 0;
    for (const auto &letters : fieldsOf(wholeFormat())) {
        // A month that is written by its name is typed only.
        if (isName(letters))
            continue;
        Part part{ .letters = letters, .start = end };
        if (letters.front().toLower() == u'a') {
            part.start = whole.indexOf(half, end, Qt::CaseInsensitive);
            part.length = half.size();
        } else {
            while (part.start < whole.size() && !whole.at(part.start).isDigit())
                ++part.start;
            while (part.start + part.length < whole.size() && whole.at(part.start + part.length).isDigit())
                ++part.length;
        }
        if (part.start < 0 || part.length == 0)
            continue;
        end = part.start + part.length;
        parts.append(part);
    }
    return parts;
}

QDateTime shifted(const QDateTime &moment, const QString &letters, int steps)
{
    switch (letters.front().unicode()) {
    case u'd':
        return moment.addDays(steps);
    case u'M':
        return moment.addMonths(steps);
    case u'y':
        return moment.addYears(steps);
    case u'h':
    case u'H':
        return moment.addSecs(steps * secondsOfHour);
    case u'm':
        return moment.addSecs(steps * secondsOfMinute);
    default:
        return moment.addSecs((moment.time().hour() < noon ? noon : -noon) * secondsOfHour);
    }
}

// People leave out leading zeros, so no field but the minute asks for them.
QString asTyped(QString format)
{
    for (const auto field : { "dd"_L1, "MM"_L1, "HH"_L1, "hh"_L1 })
        if (!format.contains(QString(field) + field.front()))
            format.replace(field, QString(field.front()));
    return withUsualBlanks(format);
}

QDate typedDay(QString text)
{
    // Nothing but a year is 00. Two digits are read as of 1900 at first, which had no 29 February.
    static const QRegularExpression doubleZero(u"\\b00\\b"_s);
    text.replace(doubleZero, u"2000"_s);
    const QLocale locale;
    auto format = asTyped(dateFormat());
    if (const auto day = locale.toDate(text, format); day.isValid())
        return day;
    format.replace("yyyy"_L1, "yy"_L1);
    if (auto day = locale.toDate(text, format); day.isValid()) {
        while (day.year() < firstOfTwoDigitYears)
            day = day.addYears(100);
        return day;
    }
    return QDate::fromString(text, Qt::ISODate);
}

} // namespace

QString DateText::text(const QDateTime &moment)
{
    return withUsualBlanks(QLocale().toString(moment, wholeFormat()));
}

QDateTime DateText::moment(const QString &text, const QDateTime &present)
{
    const auto typed = withUsualBlanks(text);
    if (const auto whole = QLocale().toDateTime(typed, asTyped(wholeFormat())); whole.isValid())
        return whole;
    const auto comma = typed.indexOf(u',');
    const auto day = typedDay(typed.first(comma < 0 ? typed.size() : comma).trimmed());
    const auto time = comma < 0 ? present.time()
                                : QLocale().toTime(typed.sliced(comma + 1).trimmed(), asTyped(timeFormat()));
    return day.isValid() && time.isValid() ? QDateTime(day, time) : QDateTime();
}

bool DateText::isMoment(const QString &text, const QDateTime &present)
{
    return moment(text, present).isValid();
}

QDateTime DateText::onDay(const QDateTime &moment, const QDateTime &day)
{
    // Not made from the two: no clock may show that time on that day.
    return moment.addDays(moment.date().daysTo(day.date()));
}

int DateText::partAt(const QDateTime &moment, int cursor)
{
    int found = -1;
    const auto parts = partsOf(moment);
    for (qsizetype i = 0; i < parts.size(); ++i)
        if (found < 0 || parts.at(i).start <= cursor)
            found = static_cast<int>(i);
    return found;
}

int DateText::startOf(const QDateTime &moment, int part)
{
    const auto parts = partsOf(moment);
    return part >= 0 && part < parts.size() ? static_cast<int>(parts.at(part).start) : 0;
}

QDateTime DateText::stepped(const QDateTime &moment, int part, int steps)
{
    const auto parts = partsOf(moment);
    return part >= 0 && part < parts.size() ? shifted(moment, parts.at(part).letters, steps) : moment;
}

QDateTime DateText::sheetDay(const QDateTime &moment, int place)
{
    const auto first = moment.addDays(1 - moment.date().day());
    const auto lead = (first.date().dayOfWeek() - QLocale().firstDayOfWeek() + daysOfWeek) % daysOfWeek;
    return first.addDays(place - lead);
}

QString DateText::sheetColumn(int column)
{
    const auto day = (QLocale().firstDayOfWeek() - 1 + column) % daysOfWeek + 1;
    return QLocale().standaloneDayName(day, QLocale::NarrowFormat);
}

bool DateText::isSameDay(const QDateTime &moment, const QDateTime &other)
{
    return moment.date() == other.date();
}

QDateTime DateText::daysLater(const QDateTime &moment, int days)
{
    return moment.addDays(days);
}

QDateTime DateText::monthsLater(const QDateTime &moment, int months)
{
    return moment.addMonths(months);
}

QString DateText::month(const QDateTime &moment)
{
    return QLocale().toString(moment.date(), u"MMMM yyyy"_s);
}

QString DateText::day(const QDateTime &moment)
{
    return QLocale().toString(moment.date(), QLocale::LongFormat);
}

} // namespace Quillbrook
