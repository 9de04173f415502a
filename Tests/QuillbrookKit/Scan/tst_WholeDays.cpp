#include "Scan/WholeDays.h"
#include "Support/Suite.h"

#include <QTest>

#include <ctime>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

// Moments are told in UTC, so that the rows say for themselves how many hours lie between.
QDateTime utc(const QString &text)
{
    auto moment = QDateTime::fromString(text, u"yyyy-MM-dd hh:mm:ss"_s);
    moment.setTimeSpec(Qt::UTC);
    return moment;
}

void live(const QByteArray &zone)
{
    qputenv("TZ", zone);
    ::tzset();
}

} // namespace

class TestWholeDays : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { live("UTC"); }

    void countsCompleteDaysOfTheLocalCalendar_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<int>("days");
        const QByteArray utcZone("UTC");
        QTest::newRow("23 hours over midnight")
            << utcZone << u"2024-06-14 13:00:00"_s << u"2024-06-15 12:00:00"_s << 0;
        QTest::newRow("24 hours") << utcZone << u"2024-06-14 12:00:00"_s << u"2024-06-15 12:00:00"_s << 1;
        QTest::newRow("a second short of 60 days")
            << utcZone << u"2024-04-16 12:00:01"_s << u"2024-06-15 12:00:00"_s << 59;
        QTest::newRow("60 days") << utcZone << u"2024-04-16 12:00:00"_s << u"2024-06-15 12:00:00"_s << 60;
        QTest::newRow("the same moment")
            << utcZone << u"2024-06-15 12:00:00"_s << u"2024-06-15 12:00:00"_s << 0;
        QTest::newRow("23 hours ahead")
            << utcZone << u"2024-06-16 11:00:00"_s << u"2024-06-15 12:00:00"_s << 0;
        QTest::newRow("a day and a half ahead")
            << utcZone << u"2024-06-17 00:00:00"_s << u"2024-06-15 12:00:00"_s << -1;
        QTest::newRow("the leap day") << utcZone << u"2024-02-28 12:00:00"_s << u"2024-03-01 12:00:00"_s << 2;

        // In Berlin the clocks went from 2 to 3 on 31 March 2024 and from 3 to 2 on 27 October.
        const QByteArray berlin("Europe/Berlin");
        QTest::newRow("spring: the day of 23 hours is a whole one")
            << berlin << u"2024-03-30 11:00:00"_s << u"2024-03-31 10:00:00"_s << 1;
        QTest::newRow("spring: 22 hours are none")
            << berlin << u"2024-03-30 11:00:00"_s << u"2024-03-31 09:59:59"_s << 0;
        QTest::newRow("autumn: 24 hours are not the day of 25")
            << berlin << u"2024-10-26 10:00:00"_s << u"2024-10-27 10:00:00"_s << 0;
        QTest::newRow("autumn: 25 hours are")
            << berlin << u"2024-10-26 10:00:00"_s << u"2024-10-27 11:00:00"_s << 1;
        QTest::newRow("60 days over the spring change")
            << berlin << u"2024-03-01 11:00:00"_s << u"2024-04-30 10:00:00"_s << 60;
        QTest::newRow("a second short of them")
            << berlin << u"2024-03-01 11:00:00"_s << u"2024-04-30 09:59:59"_s << 59;
        QTest::newRow("60 days over the autumn change")
            << berlin << u"2024-09-01 10:00:00"_s << u"2024-10-31 11:00:00"_s << 60;
        QTest::newRow("an hour short of them")
            << berlin << u"2024-09-01 10:00:00"_s << u"2024-10-31 10:00:00"_s << 59;

        // West of Greenwich midnight falls elsewhere in UTC.
        const QByteArray newYork("America/New_York");
        QTest::newRow("a day that UTC splits")
            << newYork << u"2024-06-14 03:00:00"_s << u"2024-06-15 02:59:59"_s << 0;
        QTest::newRow("completed") << newYork << u"2024-06-14 03:00:00"_s << u"2024-06-15 03:00:00"_s << 1;
    }
    void countsCompleteDaysOfTheLocalCalendar()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QString, from);
        QFETCH(QString, to);
        live(zone);
        QTEST(static_cast<int>(wholeDays(utc(from), utc(to))), "days");
    }

    void invalidMomentsAreNoDaysApart()
    {
        QCOMPARE(wholeDays(QDateTime(), utc(u"2024-06-15 12:00:00"_s)), 0);
        QCOMPARE(wholeDays(utc(u"2024-06-15 12:00:00"_s), QDateTime()), 0);
    }
};

QUILLBROOK_SUITE(TestWholeDays, NoApplication)
#include "tst_WholeDays.moc"
