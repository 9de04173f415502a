// The notes are real files in a made-up runtime folder, read as an ordinary user.

#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Processes/LinuxRunningApps.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QTest>

#include <csignal>
#include <functional>
#include <sys/wait.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using Told = std::optional<bool>;
using Making = std::function<void(const TempTree &)>;

namespace {

const std::string ours = "[Application]\nname=org.one.App\nruntime=runtime/x\n\n[Instance]\ninstance-id=7\n";
const std::string another = "[Application]\nname=org.one.App2\n";

const auto own = std::to_string(::getpid());

std::string ofEndedProcess()
{
    const auto child = ::fork();
    if (child == 0)
        ::_exit(0);
    if (child < 0 || ::waitpid(child, nullptr, 0) != child)
        qFatal("no process can be started");
    return std::to_string(child);
}

// Makes the notes of one instance.
Making instance(const std::string &info, const std::string &pid)
{
    return [info, pid](const TempTree &tree) {
        tree.fileWith(".flatpak/7/info", info);
        tree.fileWith(".flatpak/7/pid", pid);
    };
}

// The same with something else done to them.
Making instance(const std::string &info, const std::string &pid, const Making &more)
{
    return [=](const TempTree &tree) {
        instance(info, pid)(tree);
        more(tree);
    };
}

void makeDead(const TempTree &tree, int count)
{
    const auto ended = ofEndedProcess();
    for (int i = 0; i < count; ++i) {
        const auto folder = ".flatpak/" + std::to_string(i + 10);
        tree.fileWith(folder + "/info", ours);
        tree.fileWith(folder + "/pid", ended);
    }
}

} // namespace

class TestLinuxRunningApps : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void instancesTellWhatRuns_data()
    {
        QTest::addColumn<Making>("make");
        QTest::addColumn<Told>("expected");
        const auto row = [](const char *name, const Making &make, Told expected) {
            QTest::newRow(name) << make << expected;
        };
        const Told unknown;
        row(
            "nothing started yet", [](const TempTree &) {}, false);
        row(
            "none left", [](const TempTree &tree) { tree.folder(".flatpak"); }, false);
        row("running", instance(ours, own), true);
        row("with a line's end", instance(ours, own + "\n"), true);
        row("another app", instance(another, own), false);
        row("dead process", instance(ours, ofEndedProcess()), false);
        row("another user's process", instance(ours, "1"), false);
        for (const auto *number : { "", "?", "0", "-1", "99999999999", "1 2" })
            row(qPrintable(u"number '%1'"_s.arg(QLatin1String(number))), instance(ours, number), unknown);
        row("number of any length", instance(ours, own + std::string(1'000'000, ' ')), unknown);
        for (const auto *info :
            { "", "[Application", "[Instance]\nname=org.one.App\n", "[Application]\nname=\n" }) {
            const auto text = QByteArray(info).replace('\n', ' ');
            row(("damaged, alive: " + text).constData(), instance(info, own), unknown);
            row(("damaged, dead: " + text).constData(), instance(info, ofEndedProcess()), false);
        }
        row("description of any length", instance(ours + std::string(1'000'000, '#'), own), unknown);
        const auto locked
            = [](const char *name) { return [name](const TempTree &tree) { tree.permissions(name, 0); }; };
        row("unreadable description", instance(ours, own, locked(".flatpak/7/info")), unknown);
        row("unreadable number", instance(ours, own, locked(".flatpak/7/pid")), unknown);
        row("unreadable instance", instance(ours, own, locked(".flatpak/7")), unknown);
        row("unreadable folder", instance(ours, own, locked(".flatpak")), unknown);
        row("unreadable number of another app", instance(another, own, locked(".flatpak/7/pid")), false);
        row(
            "pipe", [](const TempTree &tree) { tree.pipe(".flatpak/7/info"); }, unknown);
        row(
            "link to itself", [](const TempTree &tree) { tree.link(".flatpak/7", "7"); }, unknown);
        row(
            "folder that is a link to itself",
            [](const TempTree &tree) { tree.link(".flatpak", ".flatpak"); }, unknown);
        row("running beside one that can't be read",
            instance(ours, own, [](const TempTree &tree) { tree.link(".flatpak/6", "6"); }), true);
        row(
            "folder of an app as a whole",
            [](const TempTree &tree) { tree.folder(".flatpak/org.one.App/tmp"); }, false);
        row(
            "a hundred dead", [](const TempTree &tree) { makeDead(tree, 100); }, false);
        row(
            "over a thousand entries",
            [](const TempTree &tree) {
                for (int i = 0; i < 1100; ++i)
                    tree.folder(".flatpak/a." + std::to_string(i));
            },
            unknown);
    }
    void instancesTellWhatRuns()
    {
        QFETCH(Making, make);
        QFETCH(Told, expected);
        const TempTree tree;
        make(tree);
        const LinuxFileReading reading;
        QCOMPARE(LinuxRunningApps(reading, tree.path()).isRunning(u"org.one.App"_s), expected);
    }

    void withoutARuntimeFolderNothingIsTold_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::newRow("none, or a sandbox") << QString();
        QTest::newRow("relative") << u"run"_s;
        QTest::newRow("not there") << u"/nonexistent/run"_s;
        QTest::newRow("a file") << u"/etc/passwd"_s;
    }
    void withoutARuntimeFolderNothingIsTold()
    {
        QFETCH(QString, folder);
        const LinuxFileReading reading;
        QCOMPARE(LinuxRunningApps(reading, folder.toStdString()).isRunning(u"org.one.App"_s), Told());
    }
};

QUILLBROOK_SUITE(TestLinuxRunningApps, QCoreApplication, giveUpRoot)
#include "tst_LinuxRunningApps.moc"
