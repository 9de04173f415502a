#include "Platform/Linux/Processes/LinuxHostCounters.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QTest>

using namespace Quillbrook;

namespace {

struct MadeMachine
{
    TempTree tree;
    LinuxHostCounters counters{ { .proc = tree.path("proc"), .sys = tree.path("sys"), .pageBytes = 4096 } };
};

} // namespace

class TestLinuxHostCounters : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ticksAreSplitIntoBusyAndIdle_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("isTold");
        QTest::newRow("all fields") << QByteArray("cpu  1 2 4 8 16 32 64 128 256 512\ncpu0 9 9 9 9\n")
                                    << true;
        QTest::newRow("not the first line") << QByteArray("intr 5\ncpu  1 2 4 8 16 32 64 128\n") << true;
        QTest::newRow("of one processor only") << QByteArray("cpu0 1 2 4 8 16 32 64 128\n") << false;
        QTest::newRow("too short") << QByteArray("cpu  1 2 4\n") << false;
        QTest::newRow("nothing") << QByteArray() << false;
    }

    void ticksAreSplitIntoBusyAndIdle()
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, isTold);
        const ProcessorTicks ticks{ .user = 1, .system = 4 + 32 + 64 + 128, .idle = 8 + 16, .nice = 2 };
        QCOMPARE(LinuxHostCounters::ticksIn(text), isTold ? std::optional(ticks) : std::nullopt);
    }

    void oldKernelsHaveFewerFields()
    {
        QCOMPARE(LinuxHostCounters::ticksIn("cpu  1 2 4 8\n"),
            (ProcessorTicks{ .user = 1, .system = 4, .idle = 8, .nice = 2 }));
    }

    void pagesAreThoseThatCanNotBeGivenAway()
    {
        const MadeMachine machine;
        machine.tree.fileWith("proc/meminfo",
            "MemTotal:  16000 kB\nActive: 99999 kB\nAnonPages: 4000 kB\nShmem: 400 kB\nUnevictable: 40 kB\n"
            "SUnreclaim: 80 kB\nKernelStack: 4 kB\nPageTables: 8 kB\nPercpu: 12 kB\nHugetlb: 16 kB\nZswap: "
            "20 kB\n");
        machine.tree.fileWith("sys/block/zram0/mm_stat", "100000 50000 40960 0 1 2 3\n");
        machine.tree.fileWith("sys/block/sda/mm_stat", "1 1 409600\n");
        QCOMPARE(machine.counters.memoryPages(),
            (MemoryPages{ .active = 1100, .wired = 40, .compressed = 15, .pageBytes = 4096 }));
        QCOMPARE(machine.counters.physicalMemory(), std::uint64_t(16'384'000));
    }

    void missingCountersAreNothing()
    {
        const MadeMachine machine;
        QVERIFY(!machine.counters.memoryPages());
        QVERIFY(!machine.counters.processorTicks());
        QCOMPARE(machine.counters.physicalMemory(), std::uint64_t(0));
        machine.tree.fileWith("proc/meminfo", "Shmem: 400 kB\n");
        QVERIFY(!machine.counters.memoryPages());
        machine.tree.fileWith("proc/meminfo", "AnonPages: 4 kB\nodd line\nShmem: none\n");
        QCOMPARE(machine.counters.memoryPages(), (MemoryPages{ .active = 1, .pageBytes = 4096 }));
    }

    void realMachineTellsAllOfIt()
    {
        const LinuxHostCounters counters;
        const auto ticks = counters.processorTicks();
        QVERIFY(ticks && ticks->user + ticks->system + ticks->nice > 0);
        const auto pages = counters.memoryPages();
        QVERIFY(pages && pages->active > 0);
        QVERIFY((pages->active + pages->wired + pages->compressed) * pages->pageBytes
            < counters.physicalMemory());
    }
};

QUILLBROOK_SUITE(TestLinuxHostCounters, NoApplication)
#include "tst_LinuxHostCounters.moc"
