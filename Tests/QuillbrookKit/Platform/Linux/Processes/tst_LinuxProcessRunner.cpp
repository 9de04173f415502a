#include "Platform/Linux/Processes/LinuxProcessRunner.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>
#include <QtConcurrent>

#include <csignal>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

ProcessRunner::Command shell(const QString &script)
{
    return {
        .program = u"/bin/sh"_s, .arguments = { u"-c"_s, script }, .timeLimit = std::chrono::seconds(30)
    };
}

} // namespace

class TestLinuxProcessRunner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void outputAndExitCodeAreTold()
    {
        const auto result = LinuxProcessRunner().run(shell(u"printf 'a\\nb'; exit 7"_s));
        QVERIFY(result);
        QCOMPARE(result->output, QByteArray("a\nb"));
        QVERIFY(result->exited);
        QCOMPARE(result->exitCode, 7);
    }

    void programThatIsNotThereIsAbsent()
    {
        QVERIFY(!LinuxProcessRunner().run({ .program = u"/no/such/program"_s }));
    }

    void fileThatIsNoProgramIsAbsent()
    {
        TempTree tree;
        tree.file("notes", 10);
        QVERIFY(!LinuxProcessRunner().run({ .program = tree.text("notes") }));
    }

    void argumentsAreNotSplitOrExpanded()
    {
        const auto result = LinuxProcessRunner().run(
            { .program = u"/usr/bin/printf"_s, .arguments = { u"[%s]"_s, u"a b"_s, u"$HOME *"_s } });
        QVERIFY(result);
        QCOMPARE(result->output, QByteArray("[a b][$HOME *]"));
    }

    void localeIsThatOfTheMachine()
    {
        QCOMPARE(LinuxProcessRunner().run(shell(u"printf %s \"$LC_ALL\""_s))->output, QByteArray("C"));
    }

    void standardInputIsEmpty()
    {
        const auto result = LinuxProcessRunner().run(shell(u"cat; echo end"_s));
        QCOMPARE(result->output, QByteArray("end\n"));
    }

    void floodOnStandardErrorIsDropped()
    {
        const auto result = LinuxProcessRunner().run(shell(u"head -c 5000000 /dev/zero >&2; echo out"_s));
        QCOMPARE(result->output, QByteArray("out\n"));
        QVERIFY(result->exited);
    }

    void severalMegabytesAreReadWhole()
    {
        auto command = shell(u"head -c 6000000 /dev/zero"_s);
        command.outputLimit = 6'000'000;
        const auto result = LinuxProcessRunner().run(command);
        QCOMPARE(result->output.size(), 6'000'000);
        QVERIFY(result->exited);
    }

    void outputBeyondTheLimitEndsTheProgram()
    {
        auto command = shell(u"echo first; cat /dev/zero"_s);
        command.outputLimit = 100'000;
        const auto result = LinuxProcessRunner().run(command);
        QCOMPARE(result->output.size(), 100'000);
        QVERIFY(result->output.startsWith("first\n"));
        QVERIFY(!result->exited);
        QCOMPARE(result->exitCode, -1);
    }

    void oneByteMoreThanTheLimitIsNotAnOrderlyEnd()
    {
        auto command = shell(u"printf 12345"_s);
        command.outputLimit = 4;
        const auto result = LinuxProcessRunner().run(command);
        QCOMPARE(result->output, QByteArray("1234"));
        QVERIFY(!result->exited);
    }

    void programThatHangsIsEndedWithItsChildren()
    {
        TempTree tree;
        auto command = shell(u"echo before; sleep 600 & echo $! > '%1'; wait"_s.arg(tree.text("child")));
        command.timeLimit = std::chrono::milliseconds(500);
        QElapsedTimer timer;
        timer.start();
        const auto result = LinuxProcessRunner().run(command);
        QVERIFY(timer.elapsed() < 20'000);
        QCOMPARE(result->output, QByteArray("before\n"));
        QVERIFY(!result->exited);
        QFile child(tree.text("child"));
        QVERIFY(child.open(QIODevice::ReadOnly));
        const auto id = child.readAll().trimmed().toInt();
        QVERIFY(id > 1);
        // Gone, or dead and only waiting to be collected by the system's first process.
        QTRY_VERIFY_WITH_TIMEOUT(
            [id] {
                QFile state(u"/proc/%1/stat"_s.arg(id));
                return !state.open(QIODevice::ReadOnly) || state.readAll().contains(") Z ");
            }(),
            5000);
    }

    void aStopLeavesTheProgramAWhile_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<bool>("exited");
        QTest::newRow("it ends in time") << u"sleep 1; echo done"_s << true;
        QTest::newRow("it goes on") << u"sleep 600"_s << false;
    }
    void aStopLeavesTheProgramAWhile()
    {
        QFETCH(QString, script);
        QFETCH(bool, exited);
        std::stop_source stop;
        auto command = shell(script);
        command.timeLimit = std::chrono::minutes(10);
        command.stop = stop.get_token();
        command.afterStop = exited ? std::chrono::seconds(30) : std::chrono::seconds(1);
        QElapsedTimer timer;
        timer.start();
        stop.request_stop();
        const auto result = LinuxProcessRunner().run(command);
        QCOMPARE(result->exited, exited);
        QCOMPARE(result->output, exited ? QByteArray("done\n") : QByteArray());
        QVERIFY(timer.elapsed() >= 900 && timer.elapsed() < 25'000);
    }

    void aStopIsNoticedWhileTheProgramRuns()
    {
        std::stop_source stop;
        auto command = shell(u"sleep 600"_s);
        command.timeLimit = std::chrono::minutes(10);
        command.stop = stop.get_token();
        auto future = QtConcurrent::run([command] { return LinuxProcessRunner().run(command); });
        QTest::qWait(300);
        QVERIFY(!future.isFinished());
        stop.request_stop();
        QTRY_VERIFY_WITH_TIMEOUT(future.isFinished(), 20'000);
        QVERIFY(!future.result()->exited);
    }

    void programThatClosesItsOutputIsStillWaitedFor()
    {
        const auto result = LinuxProcessRunner().run(shell(u"echo out; exec >&-; sleep 1; exit 5"_s));
        QCOMPARE(result->output, QByteArray("out\n"));
        QCOMPARE(result->exitCode, 5);
    }

    void programThatDiesOfASignalDidNotExit()
    {
        const auto result = LinuxProcessRunner().run(shell(u"echo out; kill -SEGV $$"_s));
        QVERIFY(result);
        QVERIFY(!result->exited);
        QCOMPARE(result->output, QByteArray("out\n"));
    }

    void runsOnAnyThread()
    {
        auto future = QtConcurrent::run([] { return LinuxProcessRunner().run(shell(u"echo there"_s)); });
        QCOMPARE(future.result()->output, QByteArray("there\n"));
    }
};

QUILLBROOK_SUITE(TestLinuxProcessRunner, QCoreApplication)
#include "tst_LinuxProcessRunner.moc"
