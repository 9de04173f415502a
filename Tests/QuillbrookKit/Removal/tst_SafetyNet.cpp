#include "Platform/BackupProbe.h"
#include "Removal/SafetyNet.h"
#include "Support/FakeProcessRunner.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

class FakeProbe final : public BackupProbe
{
public:
    [[nodiscard]] Backups find() const override
    {
        ++looks;
        return answer;
    }

    Backups answer{};
    mutable int looks = 0;
};

// A machine with the tool, that prints the one or the other.
FakeProcessRunner toolThatSays(
    const std::optional<QByteArray> &destinations, const std::optional<QByteArray> &snapshots)
{
    FakeProcessRunner processes;
    processes.answer = [=](const ProcessRunner::Command &command) -> std::optional<ProcessRunner::Result> {
        const auto &output = command.arguments[0] == u"destinationinfo"_s ? destinations : snapshots;
        if (!output)
            return std::nullopt;
        return ProcessRunner::Result{ .output = *output, .exited = true, .exitCode = 1 };
    };
    return processes;
}

const QByteArray destination = "====================================================\n"
                               "Name          : Backups\nKind          : Local\n";
const QByteArray twoSnapshots = "Snapshots for volume group containing disk /:\n"
                                "com.apple.TimeMachine.2024-05-01-083000.local\n"
                                "\ncom.apple.os.update-AB12\n"
                                "com.apple.TimeMachine.2024-05-02-083000.local";

} // namespace

class TestSafetyNet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatTheToolSays_data()
    {
        QTest::addColumn<std::optional<QByteArray>>("destinations");
        QTest::addColumn<std::optional<QByteArray>>("snapshots");
        QTest::addColumn<bool>("hasDestination");
        QTest::addColumn<int>("count");
        QTest::addColumn<bool>("isUnprotected");
        const auto said = [](const QByteArray &text) { return std::optional(text); };
        const std::optional<QByteArray> nothing;
        QTest::newRow("both") << said(destination) << said(twoSnapshots) << true << 2 << false;
        QTest::newRow("a destination alone") << said(destination) << said({}) << true << 0 << false;
        QTest::newRow("snapshots alone")
            << said("tmutil: No destinations configured.\n") << said(twoSnapshots) << false << 2 << false;
        QTest::newRow("neither") << said("tmutil: No destinations configured.\n")
                                 << said("Snapshots for disk /:\n") << false << 0 << true;
        QTest::newRow("a name in another letter case") << said("name: x") << said({}) << false << 0 << true;
        QTest::newRow("bytes that are no text")
            << said("\xFF Name\xFE") << said("\xFF com.apple.TimeMachine\xFE\n") << true << 1 << false;
        QTest::newRow("two on one line")
            << said({}) << said("com.apple.TimeMachine.a com.apple.TimeMachine.b\n") << false << 1 << false;
        QTest::newRow("the first run fails") << nothing << said(twoSnapshots) << false << 2 << false;
        QTest::newRow("the second run fails") << said(destination) << nothing << true << 0 << false;
    }
    void whatTheToolSays()
    {
        QFETCH(std::optional<QByteArray>, destinations);
        QFETCH(std::optional<QByteArray>, snapshots);
        FakeProbe probe;
        probe.answer = { .hasDestination = true, .localSnapshots = 9 };
        const auto net = SafetyNet::current(toolThatSays(destinations, snapshots), probe);
        QTEST(net.hasTimeMachineDestination, "hasDestination");
        QTEST(net.localSnapshotCount, "count");
        QTEST(net.isUnprotected(), "isUnprotected");
        QCOMPARE(probe.looks, 0);
    }

    void theToolIsAskedByItsPathInBounds()
    {
        const auto processes = toolThatSays(QByteArray(), QByteArray());
        std::ignore = SafetyNet::current(processes, FakeProbe());
        QCOMPARE(processes.commands.size(), 2);
        QCOMPARE(processes.commands[0].program, u"/usr/bin/tmutil"_s);
        QCOMPARE(processes.commands[0].arguments, QStringList{ u"destinationinfo"_s });
        QCOMPARE(processes.commands[1].program, u"/usr/bin/tmutil"_s);
        QCOMPARE(processes.commands[1].arguments, QStringList({ u"listlocalsnapshots"_s, u"/"_s }));
        for (const auto &command : processes.commands)
            QVERIFY(command.timeLimit <= std::chrono::seconds(10));
    }

    void withoutTheToolTheMachineAnswers_data()
    {
        QTest::addColumn<bool>("hasDestination");
        QTest::addColumn<int>("count");
        QTest::addColumn<bool>("isUnprotected");
        QTest::newRow("nothing") << false << 0 << true;
        QTest::newRow("a destination") << true << 0 << false;
        QTest::newRow("snapshots") << false << 3 << false;
    }
    void withoutTheToolTheMachineAnswers()
    {
        QFETCH(bool, hasDestination);
        QFETCH(int, count);
        FakeProbe probe;
        probe.answer = { .hasDestination = hasDestination, .localSnapshots = count };
        const auto net = SafetyNet::current(FakeProcessRunner(), probe);
        QCOMPARE(net.hasTimeMachineDestination, hasDestination);
        QCOMPARE(net.localSnapshotCount, count);
        QTEST(net.isUnprotected(), "isUnprotected");
    }
};

QUILLBROOK_SUITE(TestSafetyNet, QCoreApplication)
#include "tst_SafetyNet.moc"
