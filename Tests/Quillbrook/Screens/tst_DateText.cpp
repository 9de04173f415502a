#include "Screens/DateText.h"
#include "Support/Suite.h"

#include <QLocale>
#include <QScopeGuard>
#include <QTest>

#include <ctime>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const QDateTime moment(QDate(2020, 6, 14), QTime(9, 30));

} // namespace

class TestDateText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void languagesOrderTheirFields_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("text");
        QTest::newRow("United States") << "en_US" << u"6/14/2020, 9:30 AM"_s;
        QTest::newRow("United Kingdom") << "en_GB" << u"14/06/2020, 09:30"_s;
        QTest::newRow("Germany") << "de_DE" << u"14.06.2020, 09:30"_s;
        QTest::newRow("Sweden") << "sv_SE" << u"2020-06-14, 09:30"_s;
        QTest::newRow("no language") << "C" << u"14 Jun 2020, 09:30"_s;
        QTest::newRow("Bulgaria") << "bg_BG" << u"14.06.2020 г., 9:30 ч."_s;
    }

    void languagesOrderTheirFields()
    {
        QFETCH(QString, language);
        QLocale::setDefault(QLocale(language));
        QTEST(DateText::text(moment), "text");
        // What is shown is also understood, and back again.
        QCOMPARE(DateText::moment(DateText::text(moment), {}), moment);
    }

    void typedTextIsUnderstood_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QDateTime>("expected");
        const auto at = [](int year, int month, int day, int hour, int minute) {
            return QDateTime(QDate(year, month, day), QTime(hour, minute));
        };
        QTest::newRow("afternoon") << "en_US" << u" 12/1/1999, 3:05 PM "_s << at(1999, 12, 1, 15, 5);
        QTest::newRow("narrow blank") << "en_US" << u"12/1/1999, 3:05\u202fPM"_s << at(1999, 12, 1, 15, 5);
        QTest::newRow("a day alone keeps the time") << "en_US" << u"12/1/1999"_s << at(1999, 12, 1, 9, 30);
        QTest::newRow("two digits, this century") << "en_US" << u"12/1/69"_s << at(2069, 12, 1, 9, 30);
        QTest::newRow("two digits, the last") << "en_US" << u"12/1/70, 1:00 AM"_s << at(1970, 12, 1, 1, 0);
        QTest::newRow("a leap day, two digits") << "en_US" << u"2/29/04"_s << at(2004, 2, 29, 9, 30);
        QTest::newRow("the leap day of 2000") << "en_US" << u"2/29/00, 1:00 AM"_s << at(2000, 2, 29, 1, 0);
        QTest::newRow("no leap day") << "en_US" << u"2/29/01"_s << QDateTime();
        QTest::newRow("year first") << "en_US" << u"2021-02-03"_s << at(2021, 2, 3, 9, 30);
        QTest::newRow("day first") << "de_DE" << u"1.12.2021"_s << at(2021, 12, 1, 9, 30);
        QTest::newRow("no such day") << "en_US" << u"2/30/2021"_s << QDateTime();
        QTest::newRow("no such time") << "en_US" << u"2/3/2021, 25:00 AM"_s << QDateTime();
        QTest::newRow("words") << "en_US" << u"yesterday"_s << QDateTime();
        QTest::newRow("nothing") << "en_US" << u""_s << QDateTime();
    }

    void typedTextIsUnderstood()
    {
        QFETCH(QString, language);
        QFETCH(QString, typed);
        QFETCH(QDateTime, expected);
        QLocale::setDefault(QLocale(language));
        QCOMPARE(DateText::isMoment(typed, moment), expected.isValid());
        if (expected.isValid())
            QCOMPARE(DateText::moment(typed, moment), expected);
    }

    void everyPartCanBeStepped_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("stepped");
        QTest::newRow("at the beginning") << "en_US" << u""_s << u""_s << u"7/14/2020, 9:30 AM"_s;
        QTest::newRow("behind the month") << "en_US" << u"6"_s << u""_s << u"7/14/2020, 9:30 AM"_s;
        QTest::newRow("day") << "en_US" << u"6/1"_s << u"6/"_s << u"6/15/2020, 9:30 AM"_s;
        QTest::newRow("year") << "en_US" << u"6/14/"_s << u"6/14/"_s << u"6/14/2021, 9:30 AM"_s;
        QTest::newRow("hour") << "en_US" << u"6/14/2020, 9"_s << u"6/14/2020, "_s << u"6/14/2020, 10:30 AM"_s;
        QTest::newRow("minute") << "en_US" << u"6/14/2020, 9:3"_s << u"6/14/2020, 9:"_s
                                << u"6/14/2020, 9:31 AM"_s;
        QTest::newRow("half of the day")
            << "en_US" << u"6/14/2020, 9:30 AM"_s << u"6/14/2020, 9:30 "_s << u"6/14/2020, 9:30 PM"_s;
        QTest::newRow("day first") << "de_DE" << u"14"_s << u""_s << u"15.06.2020, 09:30"_s;
        QTest::newRow("letters between")
            << "bg_BG" << u"14.06.2020 г., 9"_s << u"14.06.2020 г., "_s << u"14.06.2020 г., 10:30 ч."_s;
    }

    // `before` is what stands before the cursor, `start` what stands before the part that it is in.
    void everyPartCanBeStepped()
    {
        QFETCH(QString, language);
        QFETCH(QString, before);
        QFETCH(QString, start);
        QFETCH(QString, stepped);
        QLocale::setDefault(QLocale(language));
        QVERIFY(DateText::text(moment).startsWith(before));
        const auto part = DateText::partAt(moment, int(before.size()));
        QCOMPARE(DateText::startOf(moment, part), int(start.size()));
        QCOMPARE(DateText::text(DateText::stepped(moment, part, 1)), stepped);
        QCOMPARE(DateText::stepped(DateText::stepped(moment, part, 1), part, -1), moment);
        QCOMPARE(DateText::stepped(moment, -1, 1), moment);
    }

    void chosenDayKeepsTheTime()
    {
        QCOMPARE(DateText::onDay(moment, QDateTime(QDate(2024, 2, 29), QTime(0, 0))),
            QDateTime(QDate(2024, 2, 29), QTime(9, 30)));
    }

    void chosenDayHasATimeThoughItsClockSkipsThatHour()
    {
        const auto zone = qgetenv("TZ");
        const auto reset = qScopeGuard([&zone] {
            qputenv("TZ", zone);
            ::tzset();
        });
        qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
        ::tzset();
        const QDateTime before(QDate(2021, 3, 27), QTime(2, 30));
        const auto chosen = DateText::onDay(before, QDateTime(QDate(2021, 3, 28), QTime(12, 0)));
        QVERIFY(chosen.isValid());
        QCOMPARE(chosen, QDateTime(QDate(2021, 3, 28), QTime(3, 30)));
    }

    void sheetBeginsWithTheWeekOfTheLanguage_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QDate>("first");
        // June of 2020 began with a Monday.
        QTest::newRow("Monday") << "de_DE" << QDate(2020, 6, 1);
        QTest::newRow("Sunday") << "en_US" << QDate(2020, 5, 31);
        QTest::newRow("Saturday") << "ar_EG" << QDate(2020, 5, 30);
    }

    void sheetBeginsWithTheWeekOfTheLanguage()
    {
        QFETCH(QString, language);
        QFETCH(QDate, first);
        QLocale::setDefault(QLocale(language));
        for (const int place : { 0, 6, 41 }) {
            const auto day = DateText::sheetDay(moment, place).date();
            QCOMPARE(day, first.addDays(place));
            QCOMPARE(DateText::sheetColumn(place % 7),
                QLocale().standaloneDayName(day.dayOfWeek(), QLocale::NarrowFormat));
        }
    }
};

QUILLBROOK_SUITE(TestDateText, QCoreApplication)
#include "tst_DateText.moc"
