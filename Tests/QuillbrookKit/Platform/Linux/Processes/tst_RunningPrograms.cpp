// What runs, by a made-up folder of processes and by a real one.

#include "Platform/Linux/Processes/RunningPrograms.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QProcess>
#include <QStandardPaths>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestRunningPrograms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void groupsTellIdentifiers_data()
    {
        QTest::addColumn<QString>("id");
        const auto row = [](const char *group, const QString &id) { QTest::newRow(group) << id; };
        row("app-gnome-org.gnome.Maps-1234.scope", u"org.gnome.Maps"_s);
        row("app-flatpak-org.x.Y-1234.scope", u"org.x.Y"_s);
        row("app-org.x.Y-1234.scope", u"org.x.Y"_s);
        row("app-org.x.Y@abc.service", u"org.x.Y"_s);
        row("app-kde-my\\x2dtool@autostart.service", u"my-tool"_s);
        row("snap.hello.world-1b2c.scope", u"hello"_s);
        row("app-gnome-caf\\xc3\\xa9-1.scope", u"café"_s);
        row("session-2.scope", {});
        row("app.slice", {});
        row("app-.scope", {});
        row("", {});
    }
    void groupsTellIdentifiers() { QTEST(RunningPrograms::idOfGroup(QTest::currentDataTag()), "id"); }

    void processesTellFiles()
    {
        const TempTree tree;
        tree.link("10/exe", "/opt/tool (deleted)");
        tree.fileWith("10/cmdline", std::string("python3\0/home/a/script\0/home/a/data\0", 36));
        tree.fileWith("10/environ", std::string("A=1\0APPIMAGE=/home/a/One.AppImage\0", 34));
        tree.fileWith("10/cgroup", "0::/a/b/app-org.x.Y-12.scope\n");
        tree.link("13/cwd", "/home/a/project");
        tree.fileWith("13/cmdline", std::string("-bash\0../run/./it\0x\0", 21));
        tree.folder("11");
        tree.link("12x/exe", "/opt/other");
        const auto running = RunningPrograms::read(tree.path());
        QVERIFY(running);
        QCOMPARE(running->files,
            (std::set<std::string>{
                "/home/a/One.AppImage", "/home/a/run/it", "/home/a/script", "/opt/tool" }));
        QCOMPARE(running->ids, QSet<QString>{ u"org.x.Y"_s });
        QVERIFY(!RunningPrograms::read(tree.path("nothing")));
    }

    void aRealProcessIsSeenAndThisOneIsNot()
    {
        const auto sleep = QStandardPaths::findExecutable(u"sleep"_s);
        QProcess process;
        process.start(sleep, { u"60"_s });
        QVERIFY(process.waitForStarted());
        const auto target = QFile::symLinkTarget(u"/proc/%1/exe"_s.arg(process.processId())).toStdString();
        QTRY_VERIFY(RunningPrograms::read()->files.contains(target));
        QVERIFY(!RunningPrograms::read()->files.contains(
            QFile::symLinkTarget(u"/proc/self/exe"_s).toStdString()));
        process.kill();
        QVERIFY(process.waitForFinished());
    }

    // As password keepers do it; here a file that can be run and not read has that effect.
    void aProcessThatKeepsItsMemoryToItselfIsSeen()
    {
        const TempTree tree;
        const auto program = tree.path("sleep");
        QVERIFY(QFile::copy(QStandardPaths::findExecutable(u"sleep"_s), tree.text("sleep")));
        tree.permissions("sleep", 0111);
        QProcess process;
        process.start(tree.text("sleep"), { u"60"_s });
        QVERIFY(process.waitForStarted());
        QTRY_VERIFY(RunningPrograms::read()->files.contains(program));
        process.kill();
        QVERIFY(process.waitForFinished());
    }
};

QUILLBROOK_SUITE(TestRunningPrograms, QCoreApplication, &giveUpRoot)
#include "tst_RunningPrograms.moc"
