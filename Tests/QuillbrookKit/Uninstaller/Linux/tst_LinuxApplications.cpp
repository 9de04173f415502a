// Which applications a desktop has, which of them may go, and how.

#include "Support/DesktopMachine.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using enum AppOrigin;

QString sorted(QStringList names)
{
    names.sort();
    return names.join(u", "_s);
}

struct Machine : DesktopMachine
{
    [[nodiscard]] HostListing listing() const { return applications().listing(); }
    [[nodiscard]] QString ids() const
    {
        QStringList ids;
        for (const auto &app : listing().apps)
            ids.append(app.app.bundleID);
        return sorted(ids);
    }
    // Below the root.
    [[nodiscard]] QStringList goes(const QString &id) const
    {
        const auto all = listing();
        QStringList paths;
        for (const auto &path : app(all, id).goes)
            paths.append(QString::fromStdString(path.substr(tree.path().size() + 1)));
        return paths;
    }
    [[nodiscard]] Plan plan(const QString &id) const
    {
        const auto all = listing();
        return applications().plan({ .app = app(all, id), .all = all.apps, .measure = measure() });
    }
    [[nodiscard]] std::string inHome(const std::string &name) const { return path("home/" + name); }
};

} // namespace

class TestLinuxApplications : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entriesDecideWhatIsListed_data()
    {
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<bool>("isListed");
        QTest::newRow("shown") << QByteArray("Name=A\nExec=tool") << true;
        QTest::newRow("hidden") << QByteArray("Name=A\nExec=tool\nHidden=true") << false;
        QTest::newRow("not displayed") << QByteArray("Name=A\nExec=tool\nNoDisplay=true") << false;
        QTest::newRow("a link") << QByteArray("Name=A\nExec=tool\nType=Link") << false;
        QTest::newRow("its trial is there") << QByteArray("Name=A\nTryExec=tool") << true;
        QTest::newRow("its trial is gone") << QByteArray("Name=A\nTryExec=nothing") << false;
        QTest::newRow("its trial is a path") << QByteArray("Name=A\nTryExec=../tools/tool") << false;
        QTest::newRow("it starts nothing that is there") << QByteArray("Name=A\nExec=/nowhere/x") << true;
        QTest::newRow("of this desktop") << QByteArray("Name=A\nOnlyShowIn=GNOME;") << true;
        QTest::newRow("of another desktop") << QByteArray("Name=A\nOnlyShowIn=KDE;") << false;
        QTest::newRow("damaged") << QByteArray("Name=A\nnonsense") << false;
    }
    void entriesDecideWhatIsListed()
    {
        QFETCH(QByteArray, lines);
        const Machine machine;
        machine.entry("usr/share", "org.one.App", lines.toStdString());
        QTEST(!machine.listing().apps.empty(), "isListed");
        // Whether or not it is shown, it owns what is named after it.
        QVERIFY(machine.listing().owners.contains(u"org.one.App"_s));
    }

    void theFirstFolderOfAnIdCounts()
    {
        const Machine machine;
        machine.entry("usr/local/share", "org.one.App", "Name=First\nExec=tool");
        machine.entry("usr/share", "org.one.App", "Name=Second\nExec=tool");
        machine.entry("usr/local/share", "org.two.App", "Hidden=true");
        machine.entry("usr/share", "org.two.App", "Name=Hidden\nExec=tool");
        machine.entry("usr/share", "deeper/below/three", "Name=Three\nExec=tool");
        QCOMPARE(machine.ids(), u"deeper-below-three, org.one.App"_s);
        QCOMPARE(DesktopMachine::app(machine.listing(), u"org.one.App"_s).app.name, u"First"_s);
    }

    void foldersThatLeadInCirclesEnd()
    {
        const Machine machine;
        machine.entry("usr/share", "org.one.App", "Name=A\nExec=tool");
        for (const auto *name : { "a", "b", "c", "d" })
            machine.tree.link(std::string("usr/share/applications/") + name, ".");
        machine.tree.pipe("usr/share/applications/pipe.desktop");
        machine.tree.link("usr/share/applications/loop.desktop", "loop.desktop");
        machine.tree.link("usr/share/applications/sub/up", "..");
        machine.entry("usr/share", "sub/two", "Name=Two\nExec=tool");
        QCOMPARE(machine.ids(), u"org.one.App, sub-two"_s);
    }

    void packagesAreAskedForByTwoProcesses()
    {
        Machine machine;
        for (int index = 0; index < 300; ++index)
            machine.entry("usr/share", "org.app.N" + std::to_string(index), "Name=N\nExec=tool");
        machine.entry("usr/share", "org.odd.[a]", "Name=Odd\nExec=tool");
        machine.processes.answer = [&](const ProcessRunner::Command &command) {
            const auto path
                = QString::fromStdString(machine.path("usr/share/applications/org.app.N7.desktop"));
            if (command.arguments.constFirst() == u"-S")
                return ProcessRunner::Result{ .output = "diversion by dash from: /x\nlocal diversion from: "
                        + path.toUtf8() + "\none:amd64, two: " + path.toUtf8() + "\n",
                    .exited = true,
                    .exitCode = 1 };
            return ProcessRunner::Result{
                .output = "one:amd64\tone\t2:1.5-3\t2048\n", .exited = true, .exitCode = 0
            };
        };
        const auto listing = machine.listing();
        QCOMPARE(machine.processes.commands.size(), 2);
        QCOMPARE(machine.processes.commands[0].arguments.size(), 302);
        QCOMPARE(machine.processes.commands[1].arguments.last(), u"one:amd64"_s);
        QCOMPARE(listing.apps.size(), size_t(301));
        const auto &owned = DesktopMachine::app(listing, u"org.app.N7"_s);
        QCOMPARE(owned.origin, package);
        QCOMPARE(owned.originName, u"one"_s);
        QCOMPARE(owned.app.version, std::optional(u"2:1.5-3"_s));
        QCOMPARE(machine.applications().bytes(owned, machine.measure()), qint64(2048) * 1024);
        QVERIFY(machine.measured.empty());
        QVERIFY(!owned.sharesPackage);
        QCOMPARE(DesktopMachine::app(listing, u"org.odd.[a]"_s).origin, systemEntry);
    }

    void entriesOfOnePackageShareItsSize()
    {
        Machine machine;
        machine.entry("usr/share", "one", "Name=One\nExec=tool");
        machine.entry("usr/share", "two", "Name=Two\nExec=tool");
        machine.processes.answer = [&](const ProcessRunner::Command &command) {
            QByteArray lines;
            for (const auto *id : { "one", "two" })
                lines += "both: " + machine.path(std::string("usr/share/applications/") + id + ".desktop")
                    + '\n';
            return ProcessRunner::Result{ .output
                = command.arguments.constFirst() == u"-S" ? lines : "both\tboth\t1.0\t100\n",
                .exited = true,
                .exitCode = 0 };
        };
        for (const auto &app : machine.listing().apps)
            QVERIFY(app.sharesPackage && app.app.bytes == 102'400);
    }

    void theOtherPackageManagerIsAskedOnce()
    {
        Machine machine;
        machine.entry("usr/share", "org.one.App", "Name=A\nExec=tool");
        machine.program("tools/rpm");
        machine.processes.answer = [](const ProcessRunner::Command &) {
            return ProcessRunner::Result{ .output = "one\t1.5-3\t4096\n", .exited = true, .exitCode = 0 };
        };
        auto places = machine.places();
        places.dpkgQuery = machine.path("tools/none");
        places.rpm = machine.path("tools/rpm");
        const LinuxApplications applications(
            { .services = machine.services(), .processes = machine.processes, .places = places });
        const auto listing = applications.listing();
        QCOMPARE(machine.processes.commands.size(), 1);
        QCOMPARE(listing.apps.at(0).app.bytes, qint64(4096));
        QCOMPARE(listing.apps.at(0).origin, package);

        // Two packages own it: which line is whose can't be told.
        machine.processes.answer = [](const ProcessRunner::Command &) {
            return ProcessRunner::Result{
                .output = "one\t1.5-3\t4096\ntwo\t2\t8192\n", .exited = true, .exitCode = 0
            };
        };
        QCOMPARE(applications.listing().apps.at(0).origin, systemEntry);
    }

    void kindsAreTold()
    {
        Machine machine;
        machine.flatpak("home/.local/share/flatpak", "org.one.App", "One");
        machine.flatpak("var/lib/flatpak", "org.one.App", "One of all");
        machine.entry("usr/share", "org.one.App", "Name=One of the system\nExec=tool");
        machine.entry(
            "var/lib/snapd/desktop", "hello_world", "Name=Hello\nX-SnapInstanceName=hello\nExec=tool");
        machine.tree.file("var/lib/snapd/snaps/hello_5.snap", 900);
        machine.tree.fileWith("snap/hello/current/meta/snap.yaml", "name: hello\nversion: '2.10'\n");
        machine.program("home/Apps and more/Draw.AppImage");
        machine.program("home/Downloads/loose.appimage");
        machine.tree.link("home/Downloads/link.AppImage", "loose.appimage");
        machine.program("home/Downloads/.AppImage");
        machine.ownEntry("draw",
            "Name=Draw\nExec=\"" + machine.inHome("Apps and more/Draw.AppImage")
                + "\" %U\nX-AppImage-Version=3.1");
        machine.ownEntry("mine", "Name=Mine\nExec=env A=1 mine --x\nIcon=mine");
        machine.ownEntry("page", "Name=Page\nExec=tool --app=https://one.test");
        // The same applications in other words.
        machine.ownEntry("org.two.App", "Name=Two, renamed\nExec=tool");
        machine.entry("usr/share", "org.two.App", "Name=Two\nExec=tool");
        machine.ownEntry("org.over.Flatpak", "Name=Over\nExec=flatpak run x\nX-Flatpak=x");

        const auto all = machine.listing();
        QStringList told;
        for (const auto &app : all.apps)
            told.append(u"%1 %2 %3"_s.arg(app.key(), app.app.name, app.app.version.value_or(u"-"_s)));
        told.sort();
        const auto key = [](AppOrigin origin) { return QString::number(int(origin)) + u':'; };
        QStringList expected{ key(flatpakOfUser) + u"org.one.App One stable"_s,
            key(flatpakOfSystem) + u"org.one.App One of all stable"_s,
            key(systemEntry) + u"org.one.App One of the system -"_s, key(snap) + u"hello Hello 2.10"_s,
            key(appImage) + u"draw Draw 3.1"_s, key(appImage) + u"loose.appimage loose -"_s,
            key(ownEntry) + u"mine Mine -"_s, key(ownEntry) + u"page Page -"_s,
            key(systemEntry) + u"org.two.App Two -"_s };
        expected.sort();
        QCOMPARE(told, expected);
        const auto &one = DesktopMachine::app(all, u"org.one.App"_s);
        QVERIFY(one.app.fromAppStore && !one.app.isSystem);
        QCOMPARE(one.runtimes, QStringList{ u"runtime/org.base/x86_64/23"_s });
        QCOMPARE(machine.applications().runtimeBytes(one, machine.measure()), qint64(7000));
        QCOMPARE(machine.applications().bytes(DesktopMachine::app(all, u"hello"_s), machine.measure()),
            qint64(900));
        QVERIFY(DesktopMachine::app(all, u"page"_s).programStays);
        QVERIFY(!DesktopMachine::app(all, u"mine"_s).programStays);
        QVERIFY(all.owners.contains(u"org.base"_s) && all.owners.contains(u"hello"_s));
    }

    void onlyItsOwnFilesGoWithAnEntry_data()
    {
        QTest::addColumn<QByteArray>("command");
        QTest::addColumn<QString>("program");
        const auto row = [](const char *name, const char *command, const QString &program = {}) {
            QTest::newRow(name) << QByteArray(command) << program;
        };
        row("a program in a folder for such", "HOME/bin/mine", u"home/bin/mine"_s);
        row("found by its name", "mine", u"home/bin/mine"_s);
        row("behind settings", "env -i -u ONE -C / TWO=2 HOME/bin/mine", u"home/bin/mine"_s);
        row("deep below such a folder", "HOME/opt/suite/bin/run", u"home/opt/suite/bin/run"_s);
        row("in a project", "HOME/projects/run");
        row("a link to a project", "HOME/.local/bin/link");
        row("below a link to a project", "HOME/opt/linked/run");
        row("a script of an interpreter", "python3 HOME/bin/mine");
        row("what starts others, in the folder", "HOME/.local/bin/distrobox enter one");
        row("an interpreter in the folder", "HOME/.local/bin/python3 HOME/projects/run");
        row("of the system", "tool HOME/bin/mine");
        row("out of the folder", "HOME/bin/../projects/run");
        row("not to be run", "HOME/bin/notes");
        row("a folder", "HOME/opt/suite");
        row("nothing", "HOME/bin/none");
    }
    void onlyItsOwnFilesGoWithAnEntry()
    {
        QFETCH(QByteArray, command);
        QFETCH(QString, program);
        const Machine machine;
        machine.program("home/projects/run");
        machine.program("home/opt/suite/bin/run");
        machine.program("home/.local/bin/python3");
        machine.program("home/.local/bin/distrobox");
        machine.tree.link("home/.local/bin/link", "../../projects/run");
        machine.tree.link("home/opt/linked", "../projects");
        machine.tree.file("home/bin/notes");
        machine.tree.file("home/pictures/icon.png");
        machine.ownEntry("own",
            "Name=Own\nExec="
                + command.replace("HOME", QByteArray::fromStdString(machine.home())).toStdString()
                + "\nIcon=" + machine.inHome("pictures/icon.png"));
        QStringList expected{ u"home/.local/share/applications/own.desktop"_s };
        if (!program.isEmpty())
            expected.prepend(program);
        QCOMPARE(machine.goes(u"own"_s), expected);
    }

    void whatTwoEntriesStartStays()
    {
        const Machine machine;
        machine.ownEntry("one", "Name=One\nExec=mine");
        machine.ownEntry("two", "Name=Two\nExec=mine --two");
        QCOMPARE(machine.goes(u"one"_s), QStringList{ u"home/.local/share/applications/one.desktop"_s });
        QVERIFY(DesktopMachine::app(machine.listing(), u"one"_s).programStays);
    }

    void aScriptThatAnotherStartsStays()
    {
        const Machine machine;
        machine.program("tools/python3");
        machine.program("home/bin/script");
        machine.ownEntry("one", "Name=One\nExec=script");
        QCOMPARE(machine.goes(u"one"_s).size(), 2);
        machine.ownEntry("two", "Name=Two\nExec=python3 " + machine.inHome("bin/script"));
        QCOMPARE(machine.goes(u"one"_s), QStringList{ u"home/.local/share/applications/one.desktop"_s });
    }

    void entriesOfOneAppImageAreOneApplication()
    {
        const Machine machine;
        machine.program("home/Applications/Draw.AppImage");
        const auto image = machine.inHome("Applications/Draw.AppImage");
        machine.ownEntry("draw", "Name=Draw\nExec=" + image);
        machine.ownEntry("draw-private", "Name=Draw, private\nExec=" + image + " --private");
        QCOMPARE(machine.ids(), u"draw"_s);
        QCOMPARE(machine.goes(u"draw"_s),
            (QStringList{ u"home/.local/share/applications/draw-private.desktop"_s,
                u"home/.local/share/applications/draw.desktop"_s, u"home/Applications/Draw.AppImage"_s }));
    }

    void theIconUnderTheIdGoesAlong()
    {
        const Machine machine;
        machine.program("home/Applications/Draw.AppImage");
        machine.ownEntry("draw", "Name=Draw\nExec=" + machine.inHome("Applications/Draw.AppImage"));
        for (const auto *name : { "draw.png", "drawing.png", "other.svg" })
            machine.tree.file(std::string("home/.local/share/icons/hicolor/64x64/apps/") + name, 10);
        QCOMPARE(machine.goes(u"draw"_s),
            (QStringList{ u"home/.local/share/icons/hicolor/64x64/apps/draw.png"_s,
                u"home/.local/share/applications/draw.desktop"_s, u"home/Applications/Draw.AppImage"_s }));
    }

    void refusalsAreTestedInOrder_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("start");
        QTest::newRow("itself") << u"com.tarnwick.Quillbrook"_s << u"That is Quillbrook itself."_s;
        QTest::newRow("itself under another entry") << u"again"_s << u"That is Quillbrook itself."_s;
        QTest::newRow("itself through a link") << u"linked"_s << u"That is Quillbrook itself."_s;
        QTest::newRow("of the system's folders")
            << u"org.sys.App"_s << u"Sys was put into the system's own folders."_s;
        QTest::newRow("a Flatpak for everyone")
            << u"org.all.App"_s << u"All is installed for everyone on this computer."_s;
        QTest::newRow("a snap") << u"hello"_s << u"Hello is a snap."_s;
        QTest::newRow("runs by its program") << u"mine"_s << u"Mine is running."_s;
        QTest::newRow("runs by its group") << u"org.grouped.App"_s << u"Grouped is running."_s;
        QTest::newRow("runs as a script") << u"script"_s << u"Script is running."_s;
        QTest::newRow("runs through a link") << u"through"_s << u"Through is running."_s;
        QTest::newRow("a link to what starts others") << u"shared"_s << QString();
        QTest::newRow("may go") << u"free"_s << QString();
    }
    void refusalsAreTestedInOrder()
    {
        QFETCH(QString, id);
        QFETCH(QString, start);
        const Machine machine;
        machine.program("home/bin/quillbrook");
        machine.entry("usr/share", "com.tarnwick.Quillbrook", "Name=Quillbrook\nExec=tool");
        machine.ownEntry("again", "Name=Again\nExec=quillbrook");
        machine.entry("usr/share", "org.sys.App", "Name=Sys\nExec=tool");
        machine.flatpak("var/lib/flatpak", "org.all.App", "All");
        machine.entry("var/lib/snapd/desktop", "hello_world", "Name=Hello\nX-SnapInstanceName=hello");
        machine.ownEntry("mine", "Name=Mine\nExec=mine");
        machine.ownEntry("org.grouped.App", "Name=Grouped\nExec=tool");
        machine.program("home/projects/script.py");
        machine.ownEntry("script", "Name=Script\nExec=python3 " + machine.inHome("projects/script.py"));
        machine.program("tools/python3");
        machine.tree.link("home/.local/bin/self", "../../bin/quillbrook");
        machine.ownEntry("linked", "Name=Linked\nExec=" + machine.inHome(".local/bin/self"));
        machine.program("home/projects/through");
        machine.tree.link("home/.local/bin/through", "../../projects/through");
        machine.ownEntry("through", "Name=Through\nExec=" + machine.inHome(".local/bin/through"));
        machine.runs(machine.inHome("projects/through"));
        machine.tree.link("home/.local/bin/shared", machine.path("tools/python3"));
        machine.ownEntry("shared", "Name=Shared\nExec=" + machine.inHome(".local/bin/shared"));
        machine.runs(machine.path("tools/python3"));
        machine.ownEntry("free", "Name=Free\nExec=/nowhere/x");
        machine.runs(machine.inHome("bin/mine"));
        machine.runs("/other", "app-gnome-org.grouped.App-12.scope");
        machine.runs("/usr/bin/python3");
        machine.tree.fileWith("proc/2000/cmdline",
            "python3" + std::string(1, '\0') + machine.inHome("projects/script.py") + '\0');
        const auto plan = machine.plan(id);
        QCOMPARE(plan.blocked.has_value(), !start.isEmpty());
        QVERIFY2(
            plan.blocked.value_or(QString()).startsWith(start), qPrintable(plan.blocked.value_or(QString())));
    }

    void inASandboxNothingCanGo()
    {
        Machine machine;
        machine.isSandboxed = true;
        machine.ownEntry("mine", "Name=Mine\nExec=mine");
        QVERIFY(
            machine.plan(u"mine"_s).blocked->startsWith(u"Quillbrook can't tell whether Mine is running"_s));
    }

    void aFlatpakThatNobodyKnowsOfStays()
    {
        Machine machine;
        machine.flatpak("home/.local/share/flatpak", "org.one.App", "One");
        QVERIFY(!machine.plan(u"org.one.App"_s).blocked);
        machine.running.answer = std::nullopt;
        QVERIFY(machine.plan(u"org.one.App"_s).blocked);
    }

    void aFlatpakGoesByItsTool()
    {
        Machine machine;
        machine.flatpak("home/.local/share/flatpak", "org.one.App", "One");
        const auto listing = machine.listing();
        const auto &one = DesktopMachine::app(listing, u"org.one.App"_s);
        machine.processes.commands.clear();
        machine.processes.answer = [](const ProcessRunner::Command &) {
            return ProcessRunner::Result{ .exited = true, .exitCode = 0 };
        };
        const std::stop_source stop;
        QVERIFY(machine.applications().takeAway(one, stop.get_token()));
        QCOMPARE(machine.processes.commands.size(), 1);
        const auto &command = machine.processes.commands.constFirst();
        QCOMPARE(command.program.toStdString(), machine.path("tools/flatpak"));
        QCOMPARE(command.arguments,
            (QStringList{
                u"uninstall"_s, u"--user"_s, u"--noninteractive"_s, u"app/org.one.App/x86_64/stable"_s }));
        QCOMPARE(command.timeLimit, std::chrono::minutes(10));
        QCOMPARE(command.afterStop, std::chrono::seconds(20));
        QVERIFY(command.stop == stop.get_token());

        machine.processes.answer = [](const ProcessRunner::Command &) {
            return ProcessRunner::Result{
                .errors = "error: \x1b[31mno\nroom\n", .exited = true, .exitCode = 1
            };
        };
        QCOMPARE(machine.applications().takeAway(one, {}).error(),
            u"One could not be uninstalled: error: [31mno room"_s);
        machine.processes.answer = [](const ProcessRunner::Command &) { return ProcessRunner::Result{}; };
        QCOMPARE(machine.applications().takeAway(one, {}).error(),
            u"One could not be uninstalled: Flatpak did not come to an end."_s);
        machine.processes.answer = {};
        QVERIFY(!machine.applications().takeAway(one, {}));
    }

    void whatStandsAgainstAFlatpakIsToldBefore_data()
    {
        QTest::addColumn<QString>("change");
        QTest::addColumn<QString>("told");
        QTest::newRow("nothing") << u""_s << QString();
        QTest::newRow("no tool") << u"tool"_s
                                 << u"One can't be uninstalled: Flatpak's own program is not there."_s;
        QTest::newRow("gone") << u"gone"_s << u"One is not there any more."_s;
        QTest::newRow("no right") << u"right"_s
                                  << u"One can't be uninstalled: its folder can't be written to."_s;
        QTest::newRow("an odd ref") << u"ref"_s << u"One can't be uninstalled: Flatpak does not know it."_s;
    }
    void whatStandsAgainstAFlatpakIsToldBefore()
    {
        QFETCH(QString, change);
        const Machine machine;
        machine.flatpak("home/.local/share/flatpak", "org.one.App", "One");
        const auto listing = machine.listing();
        auto one = DesktopMachine::app(listing, u"org.one.App"_s);
        const auto folder = machine.inHome(".local/share/flatpak/app");
        if (change == u"tool")
            machine.tree.permissions("tools/flatpak", 0644);
        if (change == u"gone")
            std::filesystem::remove_all(folder);
        if (change == u"right")
            machine.tree.permissions("home/.local/share/flatpak/app", 0555);
        if (change == u"ref")
            one.refs = { u"--all"_s };
        QTEST(machine.applications().obstacle(one).value_or(QString()), "told");
        QCOMPARE(machine.applications().takeAway(one, {}).has_value(), false);
        QCOMPARE(machine.processes.commands.size(), change.isEmpty() ? 1 : 0);
    }
};

QUILLBROOK_SUITE(TestLinuxApplications, QCoreApplication, &giveUpRoot)
#include "tst_LinuxApplications.moc"
