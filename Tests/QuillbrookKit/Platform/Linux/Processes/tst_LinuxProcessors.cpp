#include "Platform/Linux/Processes/LinuxProcessors.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QTest>

#include <sched.h>
#include <thread>

using namespace Quillbrook;

namespace {

std::vector<int> allowedProcessors()
{
    cpu_set_t set;
    CPU_ZERO(&set);
    sched_getaffinity(0, sizeof(set), &set);
    std::vector<int> allowed;
    for (int processor = 0; processor < CPU_SETSIZE; ++processor) {
        if (CPU_ISSET(size_t(processor), &set))
            allowed.push_back(processor);
    }
    return allowed;
}

// A machine made up of files, with the processors that this process really has.
struct MadeMachine
{
    void capacity(int processor, const std::string &value) const
    {
        tree.fileWith(
            "sys/devices/system/cpu/cpu" + std::to_string(processor) + "/cpu_capacity", value + "\n");
    }
    void group(const std::string &path, const std::string &limit) const
    {
        tree.fileWith("sys/fs/cgroup" + path + "/cpu.max", limit + "\n");
    }
    [[nodiscard]] LinuxProcessors processors() const
    {
        return LinuxProcessors({ .sys = tree.path("sys"), .ownControlGroup = tree.path("cgroup") });
    }

    TempTree tree{};
    std::vector<int> allowed = allowedProcessors();
    int count = int(allowed.size());
};

} // namespace

class TestLinuxProcessors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsAreParsed_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QList<int>>("processors");
        QTest::newRow("one") << QByteArray("3\n") << QList<int>{ 3 };
        QTest::newRow("range") << QByteArray("0-3\n") << QList<int>{ 0, 1, 2, 3 };
        QTest::newRow("both") << QByteArray("0-1,4,6-7") << QList<int>{ 0, 1, 4, 6, 7 };
        QTest::newRow("empty") << QByteArray("\n") << QList<int>{};
        QTest::newRow("letters") << QByteArray("a-b") << QList<int>{};
        QTest::newRow("half a range") << QByteArray("0-") << QList<int>{};
        QTest::newRow("absurdly long") << QByteArray("0-99999999999") << QList<int>{};
    }

    void listsAreParsed()
    {
        QFETCH(QByteArray, text);
        QFETCH(QList<int>, processors);
        const auto parsed = parseProcessorList(text.toStdString());
        QCOMPARE(QList<int>(parsed.begin(), parsed.end()), processors);
    }

    void allAreFastWhereNothingTellsThemApart()
    {
        const MadeMachine machine;
        QCOMPARE(machine.processors().performanceCores(), std::optional(machine.count));
        QCOMPARE(machine.processors().activeProcessors(), machine.count);
    }

    void equalCapacitiesAreAllFast()
    {
        const MadeMachine machine;
        for (const auto processor : machine.allowed)
            machine.capacity(processor, "1024");
        QCOMPARE(machine.processors().performanceCores(), std::optional(machine.count));
    }

    void slowerCoresAreLeftOut()
    {
        const MadeMachine machine;
        if (machine.count < 2)
            QSKIP("needs two processors");
        for (const auto processor : machine.allowed)
            machine.capacity(processor, "446");
        machine.capacity(machine.allowed.front(), "1024");
        QCOMPARE(machine.processors().performanceCores(), std::optional(1));
        QCOMPARE(machine.processors().activeProcessors(), machine.count);
    }

    void slightlyDifferentCapacitiesAreOneKind()
    {
        const MadeMachine machine;
        if (machine.count < 2)
            QSKIP("needs two processors");
        for (const auto processor : machine.allowed)
            machine.capacity(processor, "981");
        machine.capacity(machine.allowed.front(), "1024");
        QCOMPARE(machine.processors().performanceCores(), std::optional(machine.count));
    }

    void namedFastCoresAreCounted()
    {
        const MadeMachine machine;
        const auto beyond = machine.allowed.back() + 1;
        machine.tree.fileWith("sys/devices/cpu_core/cpus",
            std::to_string(machine.allowed.front()) + "," + std::to_string(beyond) + "-"
                + std::to_string(beyond + 3) + "\n");
        QCOMPARE(machine.processors().performanceCores(), std::optional(1));
    }

    void processOnSlowCoresAloneUsesThem()
    {
        const MadeMachine machine;
        machine.tree.fileWith("sys/devices/cpu_core/cpus", std::to_string(machine.allowed.back() + 1) + "\n");
        QCOMPARE(machine.processors().performanceCores(), std::optional(machine.count));
    }

    void affinityIsHonoured()
    {
        const MadeMachine machine;
        std::optional<int> performance;
        int active = 0;
        std::thread([&] {
            cpu_set_t set;
            CPU_ZERO(&set);
            CPU_SET(size_t(machine.allowed.front()), &set);
            sched_setaffinity(0, sizeof(set), &set);
            performance = machine.processors().performanceCores();
            active = machine.processors().activeProcessors();
        }).join();
        QCOMPARE(performance, std::optional(1));
        QCOMPARE(active, 1);
    }

    void quotaOfAnyEnclosingGroupCaps_data()
    {
        QTest::addColumn<QByteArray>("groups");
        QTest::addColumn<QByteArray>("own");
        QTest::addColumn<QByteArray>("parent");
        QTest::addColumn<QByteArray>("root");
        QTest::addColumn<int>("most");
        const QByteArray usual("12:cpu:/old\n0::/user.slice/app.scope\n");
        const QByteArray none("max 100000");
        const QByteArray one("100000 100000");
        QTest::newRow("none") << usual << none << none << none << 1000;
        QTest::newRow("own, one processor") << usual << one << none << none << 1;
        QTest::newRow("own, less than one") << usual << QByteArray("10000 100000") << none << none << 1;
        QTest::newRow("own, one and a half") << usual << QByteArray("150000 100000") << none << none << 2;
        QTest::newRow("of the parent") << usual << none << one << none << 1;
        QTest::newRow("of the root, as a container sees it") << usual << none << none << one << 1;
        QTest::newRow("a container's own") << QByteArray("0::/\n") << none << none << one << 1;
        QTest::newRow("of a group that is not the own") << QByteArray("0::/\n") << one << one << none << 1000;
        QTest::newRow("no unified hierarchy") << QByteArray("12:cpu:/old\n") << one << one << one << 1000;
        QTest::newRow("damaged") << usual << QByteArray("100000") << QByteArray("x y") << none << 1000;
        QTest::newRow("period of nothing")
            << usual << QByteArray("100000 0") << QByteArray("max 0") << none << 1000;
    }

    void quotaOfAnyEnclosingGroupCaps()
    {
        QFETCH(QByteArray, groups);
        QFETCH(QByteArray, own);
        QFETCH(QByteArray, parent);
        QFETCH(QByteArray, root);
        QFETCH(int, most);
        const MadeMachine machine;
        machine.tree.fileWith("cgroup", groups.toStdString());
        machine.group("/user.slice/app.scope", own.toStdString());
        machine.group("/user.slice", parent.toStdString());
        machine.group("", root.toStdString());
        QCOMPARE(machine.processors().performanceCores(), std::optional(std::min(machine.count, most)));
        QCOMPARE(machine.processors().activeProcessors(), std::min(machine.count, most));
    }

    void thisMachineAnswers()
    {
        const LinuxProcessors processors;
        const auto performance = processors.performanceCores();
        QVERIFY(performance.has_value());
        QVERIFY(*performance >= 1);
        QVERIFY(*performance <= processors.activeProcessors());
        QVERIFY(processors.activeProcessors() <= int(allowedProcessors().size()));
    }
};

QUILLBROOK_SUITE(TestLinuxProcessors, QCoreApplication)
#include "tst_LinuxProcessors.moc"
