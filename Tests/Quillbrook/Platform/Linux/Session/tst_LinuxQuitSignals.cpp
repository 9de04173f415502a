#include "Platform/Linux/Session/LinuxQuitSignals.h"
#include "Support/Suite.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTest>

#include <csignal>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestLinuxQuitSignals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void signalAsks_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
    }

    void signalAsks()
    {
        QFETCH(int, signal);
        const LinuxQuitSignals signals_;
        const QSignalSpy asked(&signals_, &LinuxQuitSignals::asked);
        QCOMPARE(::raise(signal), 0);
        QCOMPARE(asked.count(), 0);
        QTRY_COMPARE(asked.count(), 1);
    }

    void burstAsksInTheLoop()
    {
        const LinuxQuitSignals signals_;
        const QSignalSpy asked(&signals_, &LinuxQuitSignals::asked);
        QCOMPARE(::raise(SIGTERM), 0);
        QCOMPARE(::raise(SIGINT), 0);
        QTRY_COMPARE(asked.count(), 1);
        QTest::qWait(20);
        QCOMPARE(asked.count(), 1);
    }

    void secondSignalIsAsBefore()
    {
        const LinuxQuitSignals signals_;
        QVERIFY(handlerOf(SIGTERM) != SIG_DFL);
        QCOMPARE(::raise(SIGTERM), 0);
        QVERIFY(handlerOf(SIGTERM) == SIG_DFL);
    }

    void handlersGoWithIt()
    {
        {
            const LinuxQuitSignals signals_;
            QVERIFY(handlerOf(SIGTERM) != SIG_DFL);
            QVERIFY(handlerOf(SIGINT) != SIG_DFL);
        }
        QVERIFY(handlerOf(SIGTERM) == SIG_DFL);
        QVERIFY(handlerOf(SIGINT) == SIG_DFL);
    }

    void ignoredSignalStaysIgnored()
    {
        QVERIFY(std::signal(SIGINT, SIG_IGN) != SIG_ERR);
        {
            const LinuxQuitSignals signals_;
            QVERIFY(handlerOf(SIGINT) == SIG_IGN);
            QVERIFY(handlerOf(SIGTERM) != SIG_DFL);
        }
        QVERIFY(handlerOf(SIGINT) == SIG_IGN);
        QVERIFY(std::signal(SIGINT, SIG_DFL) != SIG_ERR);
    }

    void childrenHaveTheUsualHandlers()
    {
        const LinuxQuitSignals signals_;
        QProcess child;
        child.start(u"sleep"_s, { u"60"_s });
        QVERIFY(child.waitForStarted(5000));
        child.terminate();
        QVERIFY(child.waitForFinished(5000));
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        QCOMPARE(child.exitCode(), SIGTERM);
    }

private:
    [[nodiscard]] static void (*handlerOf(int signal))(int)
    {
        struct sigaction present = {};
        return ::sigaction(signal, nullptr, &present) == 0 ? present.sa_handler : nullptr;
    }
};

QUILLBROOK_SUITE(TestLinuxQuitSignals, QCoreApplication)
#include "tst_LinuxQuitSignals.moc"
