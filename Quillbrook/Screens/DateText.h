#pragma once

// A day with a time of day as a person's language writes it, for fields that are typed into. The parts of
// such a text (day, month, year, hour, minute, half of the day) are counted from its beginning. QML reads it
// as a singleton; main thread only.

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class DateText : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    /// The short form of the language, with all digits of the year.
    Q_INVOKABLE [[nodiscard]] static QString text(const QDateTime &moment);
    /// What a typed text means; the time of `present` where only a day was typed. A year of two digits lies
    /// between 1970 and 2069. Not valid where the text is no date.
    Q_INVOKABLE [[nodiscard]] static QDateTime moment(const QString &text, const QDateTime &present);
    Q_INVOKABLE [[nodiscard]] static bool isMoment(const QString &text, const QDateTime &present);
    /// The same time on another day; an hour later where the clock skips it there.
    Q_INVOKABLE [[nodiscard]] static QDateTime onDay(const QDateTime &moment, const QDateTime &day);

    /// The part of `text(moment)` that the cursor stands in or behind; -1 where there is none.
    Q_INVOKABLE [[nodiscard]] static int partAt(const QDateTime &moment, int cursor);
    /// Where a part of `text(moment)` begins; 0 for none.
    Q_INVOKABLE [[nodiscard]] static int startOf(const QDateTime &moment, int part);
    /// `moment` with one part more or less; as it is for no part.
    Q_INVOKABLE [[nodiscard]] static QDateTime stepped(const QDateTime &moment, int part, int steps);

    /// The day at a place of the sheet, six weeks long, that shows the month of `moment`: its first row holds
    /// the month's first day.
    Q_INVOKABLE [[nodiscard]] static QDateTime sheetDay(const QDateTime &moment, int place);
    /// The name of a column of that sheet, as short as the language has it.
    Q_INVOKABLE [[nodiscard]] static QString sheetColumn(int column);
    /// Whatever the time of each is.
    Q_INVOKABLE [[nodiscard]] static bool isSameDay(const QDateTime &moment, const QDateTime &other);
    Q_INVOKABLE [[nodiscard]] static QDateTime daysLater(const QDateTime &moment, int days);
    /// The last day of a month that has no such day.
    Q_INVOKABLE [[nodiscard]] static QDateTime monthsLater(const QDateTime &moment, int months);

    /// Headings: the month with its year, and a whole day.
    Q_INVOKABLE [[nodiscard]] static QString month(const QDateTime &moment);
    Q_INVOKABLE [[nodiscard]] static QString day(const QDateTime &moment);
};

} // namespace Quillbrook
