#include "Scan/Format.h"
#include "Support/Suite.h"

#include <QLocale>
#include <QTest>
#include <QTimeZone>

#include <array>
#include <cstdio>
#include <limits>
#include <utility>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bytesUseBinaryUnits_data()
    {
        constexpr qint64 kilo = 1024;
        constexpr qint64 mega = kilo * kilo;
        constexpr qint64 giga = mega * kilo;
        constexpr qint64 tera = giga * kilo;
        QTest::addColumn<qint64>("count");
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing") << qint64(0) << "0 B";
        QTest::newRow("one below a kilobyte") << kilo - 1 << "1023 B";
        QTest::newRow("a kilobyte") << kilo << "1.0 KB";
        QTest::newRow("one and a half kilobytes") << qint64(1536) << "1.5 KB";
        QTest::newRow("hundred loses the decimal") << 100 * kilo << "100 KB";
        QTest::newRow("just below hundred rounds up with its decimal") << qint64(102'359) << "100.0 KB";
        QTest::newRow("99.96 megabytes") << qint64(99.96 * double(mega)) << "100.0 MB";
        QTest::newRow("rounding does not change the unit") << qint64(1023.6 * double(kilo)) << "1024 KB";
        QTest::newRow("1.25 rounds to the even figure") << qint64(1280) << "1.2 KB";
        QTest::newRow("1.75 rounds to the even figure") << qint64(1792) << "1.8 KB";
        QTest::newRow("100.5 rounds to the even figure") << qint64(102'912) << "100 KB";
        QTest::newRow("101.5 rounds to the even figure") << qint64(103'936) << "102 KB";
        QTest::newRow("102.5 rounds to the even figure") << qint64(104'960) << "102 KB";
        QTest::newRow("1.25 gigabytes round to the even figure") << giga + giga / 4 << "1.2 GB";
        QTest::newRow("a byte below a megabyte") << mega - 1 << "1024 KB";
        QTest::newRow("a megabyte") << mega << "1.0 MB";
        QTest::newRow("hundred gigabytes") << 100 * giga << "100 GB";
        QTest::newRow("a terabyte") << tera << "1.0 TB";
        QTest::newRow("nothing above terabytes") << 5000 * tera << "5000 TB";
        QTest::newRow("the largest") << std::numeric_limits<qint64>::max() << "8388608 TB";
        QTest::newRow("negative") << qint64(-7) << "-7 B";
        QTest::newRow("large negative stays bytes") << qint64(-5000) << "-5000 B";
    }

    void bytesUseBinaryUnits()
    {
        QFETCH(qint64, count);
        QTEST(Format::bytes(count), "text");
    }

    void decimalRoundsAsPrintfDoes_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("decimals");
        for (const auto &[value, decimals] : { std::pair(0.25, 1), std::pair(0.75, 1), std::pair(2.5, 0),
                 std::pair(3.5, 0), std::pair(-0.5, 0), std::pair(12.36, 1), std::pair(1e300, 1) })
            QTest::addRow("%g", value) << value << decimals;
    }

    void decimalRoundsAsPrintfDoes()
    {
        QFETCH(double, value);
        QFETCH(int, decimals);
        std::array<char, 512> expected{};
        std::snprintf(expected.data(), expected.size(), "%.*f", decimals, value);
        QCOMPARE(Format::decimal(value, decimals), QString::fromLatin1(expected.data()));
    }

    void countGroupsByCommaInAnyLocale_data()
    {
        QTest::addColumn<qint64>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing") << qint64(0) << "0";
        QTest::newRow("three digits") << qint64(999) << "999";
        QTest::newRow("four digits") << qint64(1000) << "1,000";
        QTest::newRow("seven digits") << qint64(1'234'567) << "1,234,567";
        QTest::newRow("negative") << qint64(-1'234'567) << "-1,234,567";
    }

    void countGroupsByCommaInAnyLocale()
    {
        QFETCH(qint64, value);
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        const auto text = Format::count(value);
        QLocale::setDefault(QLocale::c());
        QTEST(text, "text");
    }

    void ageCountsWholeDays_data()
    {
        QTest::addColumn<int>("days");
        QTest::addColumn<QString>("text");
        QTest::newRow("tomorrow") << -1 << "today";
        QTest::newRow("now") << 0 << "today";
        QTest::newRow("one day") << 1 << "yesterday";
        QTest::newRow("two days") << 2 << "2 days ago";
        QTest::newRow("29 days") << 29 << "29 days ago";
        QTest::newRow("30 days") << 30 << "1 months ago";
        QTest::newRow("59 days") << 59 << "1 months ago";
        QTest::newRow("60 days") << 60 << "2 months ago";
        QTest::newRow("364 days") << 364 << "12 months ago";
        QTest::newRow("365 days") << 365 << "over a year ago";
        QTest::newRow("ten years") << 3650 << "over a year ago";
    }

    void ageCountsWholeDays()
    {
        QFETCH(int, days);
        const QDateTime now(QDate(2024, 11, 20), QTime(15, 30));
        QTEST(Format::age(now.addDays(-days), now), "text");
        QTEST(Format::age(now.addDays(-days).toUTC(), now), "text");
    }

    void ageOfNothingIsUnknown() { QCOMPARE(Format::age(std::nullopt), u"unknown"_s); }

    void ageDoesNotCountMidnights()
    {
        const QDateTime now(QDate(2024, 11, 20), QTime(10, 0));
        QCOMPARE(Format::age(now.addSecs(-23 * 3600), now), u"today"_s);
        QCOMPARE(Format::age(now.addSecs(-24 * 3600), now), u"yesterday"_s);
        QCOMPARE(Format::age(now.addSecs(-47 * 3600), now), u"yesterday"_s);
        QCOMPARE(Format::age(now.addSecs(23 * 3600), now), u"today"_s);
    }

    void ageFollowsTheCalendarAcrossAChangeOfClocks()
    {
        if (!QTimeZone("Europe/Berlin").isValid())
            QSKIP("no time zone data on this machine");
        const auto previous = qgetenv("TZ");
        qputenv("TZ", "Europe/Berlin");
        tzset();
        const QDateTime noonBefore(QDate(2024, 3, 30), QTime(12, 0));
        const auto earlier = Format::age(noonBefore, QDateTime(QDate(2024, 3, 31), QTime(11, 59)));
        const auto after23Hours = Format::age(noonBefore, QDateTime(QDate(2024, 3, 31), QTime(12, 0)));
        qputenv("TZ", previous);
        tzset();
        QCOMPARE(earlier, u"today"_s);
        QCOMPARE(after23Hours, u"yesterday"_s);
    }

    void friendlyPathShortensHomeOnly_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("home");
        QTest::addColumn<QString>("text");
        const auto home = u"/home/someone"_s;
        QTest::newRow("home") << "/home/someone" << home << "~";
        QTest::newRow("home with a slash") << "/home/someone/" << home << "~/";
        QTest::newRow("below home") << "/home/someone/a/b" << home << "~/a/b";
        QTest::newRow("another with the same letters") << "/home/someone2" << home << "/home/someone2";
        QTest::newRow("below another") << "/home/someone2/a" << home << "/home/someone2/a";
        QTest::newRow("outside") << "/etc" << home << "/etc";
        QTest::newRow("above home") << "/home" << home << "/home";
        QTest::newRow("home deeper in the path") << "/mnt/home/someone/a" << home << "/mnt/home/someone/a";
        QTest::newRow("other letter case") << "/home/Someone/a" << home << "/home/Someone/a";
        QTest::newRow("empty") << "" << home << "";
        QTest::newRow("other composition of the same text")
            << u"/home/Zoe\u0308/a"_s << u"/home/Zo\u00eb"_s << "~/a";
        QTest::newRow("a mark after home's last letter is another name")
            << u"/home/Zoe\u0308"_s << "/home/Zoe" << u"/home/Zoe\u0308"_s;
    }

    void friendlyPathShortensHomeOnly()
    {
        QFETCH(QString, path);
        QFETCH(QString, home);
        QTEST(Format::friendlyPath(path, home), "text");
    }
};

QUILLBROOK_SUITE(TestFormat, QCoreApplication)
#include "tst_Format.moc"
