#include "Screens/Stats/StatsState.h"
#include "Screens/Stats/TrendLine.h"
#include "Support/FakeHostCounters.h"
#include "Support/Suite.h"

#include <QGuiApplication>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestStatsState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void figuresAreWords()
    {
        FakeHostCounters counters;
        counters.installed = qint64{ 16 } * 1024 * 1024 * 1024;
        counters.pages = MemoryPages{ .active = counters.installed * 625 / 1000, .pageBytes = 1 };
        StatsState state(counters);
        QCOMPARE(state.cpuBusy(), u"0%"_s);
        QCOMPARE(state.memoryPressure(), u"—"_s);
        state.setShown(true);
        // As printf rounds it.
        QCOMPARE(state.memoryUsed(), u"62%"_s);
        QCOMPARE(state.memoryPressure(), u"Normal"_s);
        QCOMPARE(state.installed(), u"16.0 GB"_s);
    }

    void courseGrowsWhileShownAndGoesWithTheScreen()
    {
        FakeHostCounters counters;
        StatsState state(counters, nullptr, std::chrono::milliseconds(1));
        QTest::qWait(5);
        QCOMPARE(counters.ticksAsked, 0);
        state.setShown(true);
        QVERIFY(state.memoryCourse().isEmpty());
        QTRY_VERIFY(state.memoryCourse().size() >= 3);
        QCOMPARE(state.cpuCourse().size(), state.memoryCourse().size());
        QCOMPARE(state.memoryCourse().front(), 50.0);
        QTRY_COMPARE_WITH_TIMEOUT(state.cpuCourse().size(), TrendLine::mostValues, 20000);
        QTest::qWait(5);
        QCOMPARE(state.cpuCourse().size(), TrendLine::mostValues);
        state.setShown(false);
        QVERIFY(state.cpuCourse().isEmpty() && state.memoryCourse().isEmpty());
        const auto asked = counters.ticksAsked;
        QTest::qWait(10);
        QCOMPARE(counters.ticksAsked, asked);
        QCOMPARE(state.memoryUsed(), u"50%"_s);
    }

    void lineEndsAtTheRight()
    {
        const QSizeF size(119, 48);
        QVERIFY(TrendLine::line({}, size).isEmpty());
        const auto line = TrendLine::line({ 0, 50, 100, 250, -3 }, size);
        QCOMPARE(line.size(), 5);
        QCOMPARE(line.last().x(), 119.0);
        QCOMPARE(line.first().x(), 115.0);
        QVERIFY(line[0].y() > line[1].y() && line[1].y() > line[2].y());
        QCOMPARE(line[3].y(), line[2].y());
        QCOMPARE(line[4].y(), line[0].y());
        QVERIFY(line[2].y() >= 0.8 && line[0].y() <= 46.5);
        QCOMPARE(TrendLine::line(QList<double>(500, 1.0), size).size(), TrendLine::mostValues);
        QCOMPARE(TrendLine::line(QList<double>(500, 1.0), size).first().x(), 0.0);
    }
};

QUILLBROOK_SUITE(TestStatsState, QGuiApplication)
#include "tst_StatsState.moc"
