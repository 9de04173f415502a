#include "Platform/Linux/Notifications/NotificationSwitches.h"
#include "Platform/Linux/Processes/LinuxProcessRunner.h"
#include "Support/FakeProcessRunner.h"
#include "Support/MemoryFiles.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QElapsedTimer>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

using Result = std::optional<ProcessRunner::Result>;

class TestNotificationSwitches : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gnomeIsAskedForTheSwitch_data()
    {
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<bool>("exited");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<bool>("isOff");
        QTest::newRow("on") << QByteArray("true\n") << true << 0 << false;
        QTest::newRow("off") << QByteArray("false\n") << true << 0 << true;
        QTest::newRow("no such setting") << QByteArray() << true << 1 << false;
        QTest::newRow("failed, whatever it says") << QByteArray("false\n") << true << 1 << false;
        QTest::newRow("killed") << QByteArray("false\n") << false << -1 << false;
        QTest::newRow("something else") << QByteArray("falsehood\n") << true << 0 << false;
    }
    void gnomeIsAskedForTheSwitch()
    {
        QFETCH(QByteArray, output);
        QFETCH(bool, exited);
        QFETCH(int, exitCode);
        FakeProcessRunner processes;
        processes.answer = [&](const ProcessRunner::Command &) {
            return Result({ .output = output, .exited = exited, .exitCode = exitCode });
        };
        QTEST(NotificationSwitches::areOff(session(u"GNOME"_s), processes, MemoryFiles()), "isOff");
        QCOMPARE(processes.commands.size(), 1);
        const auto &command = processes.commands.constFirst();
        QCOMPARE(command.program, m_tree.text("bin/gsettings"));
        QCOMPARE(command.arguments,
            (QStringList{ u"get"_s,
                u"org.gnome.desktop.notifications.application:/org/gnome/desktop/notifications/application/"_s
                    + u"com-tarnwick-quillbrook/"_s,
                u"enable"_s }));
        QVERIFY(command.timeLimit <= std::chrono::seconds(3));
    }

    void gnomeThatCanNotBeAskedKeepsNothingBack()
    {
        const FakeProcessRunner processes;
        QVERIFY(!NotificationSwitches::areOff(session(u"GNOME"_s), processes, MemoryFiles()));
        QCOMPARE(processes.commands.size(), 1);
        const DesktopSession withoutProgram{ .desktops = { u"GNOME"_s },
            .programFolders = { m_tree.text() } };
        QVERIFY(!NotificationSwitches::areOff(withoutProgram, processes, MemoryFiles()));
        QCOMPARE(processes.commands.size(), 1);
    }

    void realProgramIsUnderstood()
    {
        const TempTree tree;
        tree.fileWith("bin/gsettings", "#!/bin/sh\ntest \"$1 $3\" = 'get enable' && echo false\n");
        tree.permissions("bin/gsettings", 0755);
        const DesktopSession session{ .desktops = { u"GNOME"_s }, .programFolders = { tree.text("bin") } };
        QVERIFY(NotificationSwitches::areOff(session, LinuxProcessRunner(), MemoryFiles()));
    }

    void programThatHangsIsNotWaitedForLong()
    {
        const TempTree tree;
        tree.fileWith("bin/gsettings", "#!/bin/sh\nexec sleep 60\n");
        tree.permissions("bin/gsettings", 0755);
        const DesktopSession session{ .desktops = { u"GNOME"_s }, .programFolders = { tree.text("bin") } };
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!NotificationSwitches::areOff(session, LinuxProcessRunner(), MemoryFiles()));
        QVERIFY(timer.elapsed() < 30'000);
    }

    void plasmasFileIsRead()
    {
        const FakeProcessRunner processes;
        MemoryFiles files;
        QVERIFY(!NotificationSwitches::areOff(session(u"KDE"_s), processes, files));
        files.files["/settings/plasmanotifyrc"]
            = "[Applications][com.tarnwick.Quillbrook]\nShowPopups=false\n";
        QVERIFY(NotificationSwitches::areOff(session(u"KDE"_s), processes, files));
        QVERIFY(!NotificationSwitches::areOff(session(u"XFCE"_s), processes, files));
        QVERIFY(processes.commands.isEmpty());
    }

    void plasmasFileIsUnderstood_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("isOff");
        const QByteArray group = "[Applications][com.tarnwick.Quillbrook]\n";
        QTest::newRow("empty") << QByteArray() << false;
        QTest::newRow("off") << group + "ShowPopups=false\n" << true;
        QTest::newRow("on") << group + "ShowPopups=true\n" << false;
        QTest::newRow("off by a number") << group + "ShowPopups=0\n" << true;
        QTest::newRow("off, written large, with blanks") << group + "  ShowPopups = False \r\n" << true;
        QTest::newRow("locked") << group + "ShowPopups[$i]=false\n" << true;
        QTest::newRow("locked as a whole")
            << QByteArray("[Applications][com.tarnwick.Quillbrook][$i]\nShowPopups=false\n") << true;
        QTest::newRow("last counts") << group + "ShowPopups=false\nShowPopups=true\n" << false;
        QTest::newRow("seen only") << group + "Seen=true\n" << false;
        QTest::newRow("another key") << group + "ShowPopupsInDndMode=false\n" << false;
        QTest::newRow("another application") << "[Applications][com.tarnwick.Quillbrook2]\nShowPopups=false\n"
                + group + "Seen=true\n" << false;
        QTest::newRow("another group after it")
            << group + "Seen=true\n[Applications][org.kde.discover]\nShowPopups=false\n"
            << false;
        QTest::newRow("do not disturb")
            << QByteArray("[DoNotDisturb]\nUntil=2099,1,1,0,0,0\nShowPopups=false\n") << false;
    }
    void plasmasFileIsUnderstood()
    {
        QFETCH(QByteArray, text);
        QTEST(NotificationSwitches::plasmaFileSaysOff(text), "isOff");
    }

    void initTestCase()
    {
        m_tree.fileWith("bin/gsettings", "#!/bin/sh\nexit 1\n");
        m_tree.permissions("bin/gsettings", 0755);
    }

private:
    [[nodiscard]] DesktopSession session(const QString &desktop) const
    {
        return { .desktops = { u"distribution"_s, desktop },
            .configFolder = "/settings",
            .programFolders = { m_tree.text("bin") } };
    }

    TempTree m_tree;
};

QUILLBROOK_SUITE(TestNotificationSwitches, QCoreApplication)
#include "tst_NotificationSwitches.moc"
