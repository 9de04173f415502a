#include "Media/SystemStats.h"
#include "Support/FakeHostCounters.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::milliseconds soon{ 1 };
constexpr std::chrono::hours never{ 1 };

struct Machine
{
    FakeHostCounters counters;
    SystemStats stats;
    QSignalSpy ticked{ &stats, &SystemStats::ticked };

    explicit Machine(std::chrono::milliseconds every = soon)
        : stats(counters, nullptr, every)
    {
    }
    void tick()
    {
        const auto before = ticked.count();
        QTRY_VERIFY(ticked.count() > before);
    }
};

} // namespace

class TestSystemStats : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsSampledBeforeItStarts()
    {
        Machine machine;
        QTest::qWait(5);
        QCOMPARE(machine.counters.ticksAsked, 0);
        QCOMPARE(machine.stats.memoryPressure(), u"—"_s);
        QCOMPARE(machine.stats.totalMemory(), std::uint64_t(0));
        machine.stats.stop();
        QCOMPARE(SystemStats::interval, std::chrono::seconds(1));
    }

    void firstSampleOnlySeeds()
    {
        Machine machine(never);
        machine.counters.ticks = ProcessorTicks{ .user = 900, .idle = 100 };
        machine.stats.start();
        QCOMPARE(machine.stats.cpuBusy(), 0.0);
        QCOMPARE(machine.stats.totalMemory(), std::uint64_t(8192));
        QCOMPARE(machine.stats.memoryUsed(), 50.0);
        machine.stats.start();
        QCOMPARE(machine.counters.ticksAsked, 1);
        QCOMPARE(machine.counters.pagesAsked, 1);
    }

    void busyIsTheShareOfTheLastInterval()
    {
        Machine machine;
        machine.counters.ticks = ProcessorTicks{ .user = 100, .system = 100, .idle = 100, .nice = 100 };
        machine.stats.start();
        machine.counters.ticks = ProcessorTicks{ .user = 110, .system = 120, .idle = 140, .nice = 130 };
        machine.tick();
        QCOMPARE(machine.stats.cpuBusy(), 60.0);
        // No ticks have passed, then fewer are told: the value stays, and the counters are kept.
        machine.tick();
        QCOMPARE(machine.stats.cpuBusy(), 60.0);
        machine.counters.ticks = ProcessorTicks{ .user = 10, .idle = 10 };
        machine.tick();
        QCOMPARE(machine.stats.cpuBusy(), 60.0);
        machine.counters.ticks = ProcessorTicks{ .user = 10, .idle = 20 };
        machine.tick();
        QCOMPARE(machine.stats.cpuBusy(), 0.0);
    }

    // As those of a processor do that is switched off or on.
    void countersThatStepBackByThemselvesGiveNoOddShare()
    {
        Machine machine;
        machine.counters.ticks = ProcessorTicks{ .user = 100, .idle = 100 };
        machine.stats.start();
        machine.counters.ticks = ProcessorTicks{ .user = 125, .idle = 175 };
        machine.tick();
        QCOMPARE(machine.stats.cpuBusy(), 25.0);
        machine.counters.ticks = ProcessorTicks{ .user = 124, .idle = 276 };
        machine.tick();
        QCOMPARE(machine.stats.cpuBusy(), 25.0);
        machine.counters.ticks = ProcessorTicks{ .user = 174, .idle = 266 };
        machine.tick();
        QCOMPARE(machine.stats.cpuBusy(), 100.0);
        machine.counters.ticks = ProcessorTicks{ .user = 176, .idle = 268 };
        machine.tick();
        QCOMPARE(machine.stats.cpuBusy(), 50.0);
    }

    void restartMeasuresFromTheLastSample()
    {
        Machine machine(never);
        machine.counters.ticks = ProcessorTicks{ .user = 100, .idle = 100 };
        machine.stats.start();
        machine.stats.stop();
        machine.counters.ticks = ProcessorTicks{ .user = 175, .idle = 125 };
        machine.stats.start();
        QCOMPARE(machine.stats.cpuBusy(), 75.0);
    }

    void nothingIsSampledOnceItStopped()
    {
        Machine machine;
        machine.stats.start();
        machine.tick();
        machine.stats.stop();
        const auto asked = machine.counters.ticksAsked;
        QTest::qWait(10);
        QCOMPARE(machine.counters.ticksAsked, asked);
    }

    void unreadableCountersKeepTheLastValues()
    {
        Machine machine;
        machine.stats.start();
        machine.counters.ticks = ProcessorTicks{ .user = 2, .idle = 2 };
        machine.tick();
        machine.counters.ticks.reset();
        machine.counters.pages.reset();
        machine.tick();
        QCOMPARE(machine.stats.cpuBusy(), 50.0);
        QCOMPARE(machine.stats.memoryUsed(), 50.0);
        QCOMPARE(machine.stats.memoryPressure(), u"Normal"_s);
    }

    void withoutMemoryNothingIsUsed()
    {
        Machine machine(never);
        machine.counters.installed = 0;
        machine.stats.start();
        QCOMPARE(machine.stats.memoryUsed(), 0.0);
        QCOMPARE(machine.stats.memoryPressure(), u"Normal"_s);
    }

    void pagesAddUp()
    {
        Machine machine(never);
        machine.counters.installed = 1000;
        machine.counters.pages = MemoryPages{ .active = 30, .wired = 20, .compressed = 15, .pageBytes = 10 };
        machine.stats.start();
        QCOMPARE(machine.stats.memoryUsed(), 65.0);
        QCOMPARE(machine.stats.memoryPressure(), u"Elevated"_s);
    }

    void pressureHasThreeWords_data()
    {
        QTest::addColumn<double>("used");
        QTest::addColumn<QString>("word");
        QTest::newRow("0") << 0.0 << u"Normal"_s;
        QTest::newRow("64.999") << 64.999 << u"Normal"_s;
        QTest::newRow("65") << 65.0 << u"Elevated"_s;
        QTest::newRow("84.999") << 84.999 << u"Elevated"_s;
        QTest::newRow("85") << 85.0 << u"High"_s;
    }

    void pressureHasThreeWords()
    {
        QFETCH(double, used);
        QTEST(SystemStats::pressureWord(used), "word");
    }
};

QUILLBROOK_SUITE(TestSystemStats, QCoreApplication)
#include "tst_SystemStats.moc"
