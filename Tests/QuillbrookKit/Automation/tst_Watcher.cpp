#include "Automation/Watcher.h"
#include "Support/FakeDirectories.h"
#include "Support/FakeKit.h"
#include "Support/Suite.h"

#include <QTest>

#include <limits>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr qint64 gibibyte = 1'073'741'824;
const QDateTime noon(QDate(2024, 6, 15), QTime(12, 0), Qt::UTC);

Finding finding(const QString &title, qint64 bytes, Safety safety = Safety::safe)
{
    return { .id = title,
        .rule = { .title = title, .safety = safety },
        .bytes = bytes,
        .meetsStalenessForDeletion = true };
}

// What is low on space, with so much that can go.
ReclaimReport report(qint64 free, qint64 reclaimable)
{
    return { .findings = { finding(u"Scratch"_s, reclaimable) }, .volumeFreeBytes = free };
}

struct Machine
{
    FakeKit kit;
};

} // namespace

class TestWatcher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaultsAreTheKnownOnes()
    {
        const Watcher::Settings settings;
        QCOMPARE(settings.lowSpaceBytes, 20 * gibibyte);
        QCOMPARE(settings.minimumWorthMentioning, 2 * gibibyte);
        QCOMPARE(settings.interval, 1800.0);
        QCOMPARE(settings.quietPeriod, 21600.0);
        QVERIFY(!settings.enabled);
    }

    void observes_data()
    {
        QTest::addColumn<qint64>("free");
        QTest::addColumn<qint64>("reclaimable");
        QTest::addColumn<bool>("force");
        QTest::addColumn<bool>("shouldNotify");
        QTest::addColumn<QString>("headline");
        const auto low = 20 * gibibyte;
        const auto worth = 2 * gibibyte;
        QTest::newRow("plenty free") << 100 * gibibyte << 5 * gibibyte << false << false << u"100 GB free"_s;
        QTest::newRow("exactly at the limit") << low << 5 * gibibyte << false << false << u"20.0 GB free"_s;
        QTest::newRow("a byte below")
            << low - 1 << 5 * gibibyte << false << true << u"20.0 GB free · 5.0 GB can be reclaimed"_s;
        QTest::newRow("exactly worth mentioning")
            << gibibyte << worth << false << true << u"1.0 GB free · 2.0 GB can be reclaimed"_s;
        QTest::newRow("a byte less than that")
            << gibibyte << worth - 1 << false << false << u"1.0 GB free · nothing safe left to reclaim"_s;
        QTest::newRow("nothing free, nothing to go")
            << qint64(0) << qint64(0) << false << false << u"0 B free · nothing safe left to reclaim"_s;
        QTest::newRow("forced with plenty free")
            << 100 * gibibyte << 5 * gibibyte << true << true << u"100 GB free"_s;
        QTest::newRow("forced with nothing to go")
            << gibibyte << qint64(0) << true << true << u"1.0 GB free · nothing safe left to reclaim"_s;
        QTest::newRow("forced and worth it")
            << gibibyte << worth << true << true << u"1.0 GB free · 2.0 GB can be reclaimed"_s;
    }

    void observes()
    {
        QFETCH(qint64, free);
        QFETCH(qint64, reclaimable);
        QFETCH(bool, force);
        QFETCH(bool, shouldNotify);
        QFETCH(QString, headline);
        const auto observation = Watcher::observe(report(free, reclaimable), {}, std::nullopt, noon, force);
        QCOMPARE(observation.headline, headline);
        QCOMPARE(observation.shouldNotify, shouldNotify);
        QCOMPARE(observation.freeBytes, free);
        QCOMPARE(observation.reclaimableBytes, reclaimable);
    }

    void quietPeriod_data()
    {
        QTest::addColumn<qint64>("millisecondsAgo");
        QTest::addColumn<bool>("shouldNotify");
        QTest::newRow("just now") << qint64(0) << false;
        QTest::newRow("a moment before its end") << qint64(21'599'999) << false;
        QTest::newRow("at its end") << qint64(21'600'000) << true;
        QTest::newRow("long ago") << qint64(100'000'000'000) << true;
        QTest::newRow("by a clock that was ahead") << qint64(-86'400'000) << false;
    }

    void quietPeriod()
    {
        QFETCH(qint64, millisecondsAgo);
        QFETCH(bool, shouldNotify);
        const auto spoken = noon.addMSecs(-millisecondsAgo);
        const auto low = report(gibibyte, 5 * gibibyte);
        QCOMPARE(Watcher::observe(low, {}, spoken, noon, false).shouldNotify, shouldNotify);
        QVERIFY(Watcher::observe(low, {}, spoken, noon, true).shouldNotify);
    }

    void biggestGroup_data()
    {
        QTest::addColumn<QList<Finding>>("findings");
        QTest::addColumn<std::optional<QString>>("group");
        auto link = finding(u"Link"_s, 900);
        link.redirectedOffVolume = true;
        auto young = finding(u"Young"_s, 900);
        young.meetsStalenessForDeletion = false;
        QTest::newRow("none") << QList<Finding>() << std::optional<QString>();
        QTest::newRow("none that is safe")
            << QList{ finding(u"Careful"_s, 5, Safety::careful), finding(u"Report"_s, 9, Safety::reportOnly) }
            << std::optional<QString>();
        QTest::newRow("the largest safe one") << QList{ finding(u"Careful"_s, 500, Safety::careful),
            finding(u"Small"_s, 5), finding(u"Large"_s, 9) }
                                              << std::optional(u"Large"_s);
        QTest::newRow("the first of two")
            << QList{ finding(u"One"_s, 9), finding(u"Two"_s, 9) } << std::optional(u"One"_s);
        QTest::newRow("no link") << QList{ link, finding(u"Folder"_s, 1) } << std::optional(u"Folder"_s);
        QTest::newRow("only a link") << QList{ link } << std::optional<QString>();
        QTest::newRow("none that is too young")
            << QList{ young, finding(u"Old"_s, 1) } << std::optional(u"Old"_s);
    }

    void biggestGroup()
    {
        QFETCH(QList<Finding>, findings);
        QFETCH(std::optional<QString>, group);
        const auto observation
            = Watcher::observe({ .findings = findings, .volumeFreeBytes = 1 }, {}, std::nullopt, noon, false);
        QVERIFY(observation.biggestGroup == group);
    }

    void observationTellsTheFigures()
    {
        const Watcher::Observation expected{ .freeBytes = 3 * gibibyte,
            .reclaimableBytes = 7 * gibibyte,
            .biggestGroup = u"Much"_s,
            .checkedAt = noon,
            .shouldNotify = true,
            .headline = u"3.0 GB free · 7.0 GB can be reclaimed"_s };
        const ReclaimReport report{ .findings
            = { finding(u"Much"_s, 4 * gibibyte), finding(u"Careful"_s, 100 * gibibyte, Safety::careful),
                finding(u"Little"_s, 3 * gibibyte) },
            .volumeFreeBytes = 3 * gibibyte,
            .volumeTotalBytes = 500 * gibibyte };
        QVERIFY(Watcher::observe(report, {}, std::nullopt, noon, false) == expected);
    }

    void newWatcherHasNoTimer()
    {
        Machine machine;
        const Watcher watcher(machine.kit.kitServices, { .enabled = true });
        QVERIFY(watcher.settings().enabled);
        QVERIFY(!machine.kit.queue.timer);
        QVERIFY(!watcher.lastObservation());
        QVERIFY(!watcher.lastNotifiedAt());
        QCOMPARE(machine.kit.directories.sessionsMade(), 0);
    }

    void startWithoutLeaveMakesNoTimer()
    {
        Machine machine;
        Watcher watcher(machine.kit.kitServices);
        watcher.start();
        QVERIFY(!machine.kit.queue.timer);
        QCOMPARE(machine.kit.queue.starts, 0);
    }

    void startSetsTheTimer()
    {
        Machine machine;
        Watcher watcher(machine.kit.kitServices, { .enabled = true });
        watcher.start();
        QVERIFY(machine.kit.queue.timer);
        QCOMPARE(machine.kit.queue.timer->first, 5'000ms);
        QCOMPARE(machine.kit.queue.timer->interval, 1'800'000ms);
        QCOMPARE(machine.kit.queue.timer->leeway, 60'000ms);
        QVERIFY(machine.kit.queue.waiting.empty());
    }

    void updateSwitchesTheTimer()
    {
        Machine machine;
        Watcher watcher(machine.kit.kitServices);
        watcher.update({ .interval = 60, .enabled = true });
        QVERIFY(machine.kit.queue.timer);
        QCOMPARE(machine.kit.queue.timer->interval, 60'000ms);
        QVERIFY(watcher.settings() == (Watcher::Settings{ .interval = 60, .enabled = true }));
        watcher.update({ .interval = 60, .enabled = false });
        QVERIFY(!machine.kit.queue.timer);
        QVERIFY(!watcher.settings().enabled);
        watcher.start();
        QVERIFY(!machine.kit.queue.timer);
    }

    void everyStartBeginsAnew()
    {
        Machine machine;
        Watcher watcher(machine.kit.kitServices, { .enabled = true });
        watcher.start();
        watcher.start();
        watcher.update({ .interval = 2, .enabled = true });
        QCOMPARE(machine.kit.queue.starts, 3);
        QCOMPARE(machine.kit.queue.timer->interval, 2'000ms);
    }

    void stopKeepsTheSettings()
    {
        Machine machine;
        const Watcher::Settings settings{ .interval = 3, .enabled = true };
        Watcher watcher(machine.kit.kitServices, settings);
        watcher.start();
        watcher.stop();
        QVERIFY(!machine.kit.queue.timer);
        QVERIFY(watcher.settings() == settings);
        watcher.start();
        QVERIFY(machine.kit.queue.timer);
    }

    void oddIntervals_data()
    {
        QTest::addColumn<double>("interval");
        QTest::addColumn<qint64>("milliseconds");
        QTest::newRow("part of a second") << 0.25 << qint64(250);
        QTest::newRow("none") << 0.0 << qint64(1);
        QTest::newRow("less than none") << -5.0 << qint64(1);
        QTest::newRow("much") << 1e300 << qint64(1'000'000'000'000);
        QTest::newRow("endless") << std::numeric_limits<double>::infinity() << qint64(1'000'000'000'000);
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << qint64(1'000'000'000'000);
    }

    void oddIntervals()
    {
        QFETCH(double, interval);
        QFETCH(qint64, milliseconds);
        Machine machine;
        Watcher watcher(machine.kit.kitServices);
        watcher.update({ .interval = interval, .enabled = true });
        QCOMPARE(machine.kit.queue.timer->interval, std::chrono::milliseconds(milliseconds));
    }

    void endOfTheWatcherEndsTheTimer()
    {
        Machine machine;
        {
            Watcher watcher(machine.kit.kitServices);
            watcher.update({ .enabled = true });
        }
        QVERIFY(!machine.kit.queue.timer);
    }
};

QUILLBROOK_SUITE(TestWatcher, QCoreApplication)
#include "tst_Watcher.moc"
