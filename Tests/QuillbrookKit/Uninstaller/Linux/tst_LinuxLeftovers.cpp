// What an application of a desktop wrote elsewhere, and what only seems to be its own.

#include "Support/DesktopMachine.h"
#include "Support/Suite.h"
#include "Uninstaller/Linux/LinuxLeftovers.h"

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

struct Machine : DesktopMachine
{
    [[nodiscard]] Plan plan(const QString &id) const
    {
        const auto all = applications().listing();
        return applications().plan({ .app = app(all, id), .all = all.apps, .measure = measure() });
    }
    // Below the root, with the kind.
    [[nodiscard]] QStringList found(const QString &id) const
    {
        QStringList paths;
        for (const auto &leftover : plan(id).leftovers)
            paths.append(QString::fromStdString(leftover.path.substr(tree.path().size() + 1)) + u" | "_s
                + leftover.label() + (leftover.needsAdministrator ? u" | locked"_s : QString()));
        paths.sort();
        return paths;
    }
    void add(std::initializer_list<const char *> names) const
    {
        for (const auto *name : names)
            tree.file(name, 10);
    }
};

} // namespace

class TestLinuxLeftovers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFlatpaksPlacesAreItsOwn()
    {
        const Machine machine;
        machine.flatpak("home/.local/share/flatpak", "org.one.App", "Aurora Studio");
        machine.add({ "home/.var/app/org.one.App/data/x", "home/.config/org.one.App/x",
            "home/.local/share/org.one.App/x", "home/.cache/org.one.App/x", "home/.local/state/org.one.App/x",
            "home/.config/Aurora Studio/x", "home/.config/autostart/org.one.App.desktop",
            "home/.config/systemd/user/org.one.App-sync.service",
            "home/.config/systemd/user/org.one.Apple.timer",
            "home/.local/share/dbus-1/services/org.one.App.service",
            "home/.local/share/icons/hicolor/64x64/apps/org.one.App.png",
            "home/.local/share/icons/hicolor/64x64/apps/org.one.Apple.png",
            "home/.local/share/flatpak/overrides/org.one.App", "home/.config/org.one.Appendix/x",
            "home/.config/aurora/x", "home/snap/org.one.App/x", "etc/xdg/autostart/org.one.App.desktop",
            "var/lib/org.one.App/x", "etc/Aurora Studio/x" });
        machine.tree.folder("home/.cache/Aurora Studio");
        QCOMPARE(machine.found(u"org.one.App"_s),
            (QStringList{ u"etc/Aurora Studio | Installed for all users | locked"_s,
                u"etc/xdg/autostart/org.one.App.desktop | Opens at login | locked"_s,
                u"home/.cache/org.one.App | Cache"_s, u"home/.config/Aurora Studio | Preferences"_s,
                u"home/.config/autostart/org.one.App.desktop | Opens at login"_s,
                u"home/.config/org.one.App | Preferences"_s,
                u"home/.config/systemd/user/org.one.App-sync.service | Opens at login"_s,
                u"home/.local/share/dbus-1/services/org.one.App.service | Opens at login"_s,
                u"home/.local/share/icons/hicolor/64x64/apps/org.one.App.png | Application support"_s,
                u"home/.local/share/org.one.App | Application support"_s,
                u"home/.local/state/org.one.App | Saved windows"_s,
                u"home/.var/app/org.one.App | Container"_s,
                u"var/lib/org.one.App | Installed for all users | locked"_s }));
    }

    void namesCountOnlyWhereTheyCanBeNobodyElses_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("usable");
        const auto row
            = [](const char *what, const QString &id, const QString &name, const QString &program,
                  const QString &usable) { QTest::newRow(what) << id << name << program << usable; };
        row("a plain word", u"org.one.App"_s, u"Files"_s, {}, {});
        row("the word of the id", u"aurora"_s, u"Aurora"_s, {}, u"Aurora,aurora"_s);
        row("the word of the program", u"org.one.App"_s, u"Aurora"_s, u"aurora"_s, u"Aurora,aurora"_s);
        row("two words", u"org.one.App"_s, u"Aurora Studio"_s, u"aurora-studio"_s,
            u"Aurora Studio,aurora-studio"_s);
        row("an interpreter", u"org.one.App"_s, u"Files"_s, u"python3.11"_s, {});
        row("a word of many programs", u"org.one.App"_s, u"Files"_s, u"run"_s, {});
        row("a launcher", u"org.one.App"_s, u"Files"_s, u"flatpak"_s, {});
        row("a browser", u"org.one.App"_s, u"Google-Chrome"_s, u"google-chrome-stable"_s, {});
        row("shared by many", u"applications"_s, u"Applications"_s, u"systemd"_s, {});
        row("a path", u"org.one.App"_s, u"../Documents"_s, u".."_s, {});
        row("nothing", u"org.one.App"_s, {}, {}, {});
        row("a letter", u"x"_s, u"x"_s, u"x"_s, {});
        row("a hidden name", u"org.one.App"_s, u".mine it is"_s, u".local"_s, {});
    }
    void namesCountOnlyWhereTheyCanBeNobodyElses()
    {
        QFETCH(QString, id);
        QFETCH(QString, name);
        QFETCH(QString, program);
        QStringList usable;
        for (const auto &found :
            LinuxLeftovers::usableNames({ .app = { .name = name, .bundleID = id }, .programName = program }))
            usable.append(QString::fromStdString(found));
        QTEST(usable.join(u','), "usable");
    }

    void idsThatFormNoPathClaimNothing_data()
    {
        QTest::addColumn<QString>("id");
        for (const auto *id :
            { "", ".", "..", "a/b", "../x.y.z", "applications", "python3", "firefox", ".ssh" })
            QTest::newRow(id) << QString::fromUtf8(id);
    }
    void idsThatFormNoPathClaimNothing()
    {
        QFETCH(QString, id);
        const Machine machine;
        const auto table = LinuxLeftovers::locations(machine.places());
        QVERIFY(LinuxLeftovers::claims(table, { .app = { .bundleID = id } }).empty());
    }

    void startsNeedAnIdOfThreePieces()
    {
        const Machine machine;
        machine.ownEntry("tool", "Name=Tool\nExec=/nowhere/tool");
        machine.add(
            { "home/.config/systemd/user/tool.service", "home/.config/systemd/user/toolbox.service" });
        QCOMPARE(machine.found(u"tool"_s),
            QStringList{ u"home/.config/systemd/user/tool.service | Opens at login"_s });
    }

    void whatAnotherWouldClaimIsNobodys()
    {
        const Machine machine;
        machine.flatpak("home/.local/share/flatpak", "org.one.App", "Aurora Studio");
        machine.entry("usr/share", "org.one.App", "Name=Aurora Studio\nExec=tool");
        machine.entry("usr/share", "org.one.Apple", "Name=Apple\nExec=tool");
        machine.add({ "home/.var/app/org.one.App/x", "home/.config/org.one.App/x",
            "home/.config/Aurora Studio/x", "home/.config/systemd/user/org.one.Apple.service" });
        QCOMPARE(machine.found(u"org.one.App"_s), QStringList{ u"home/.var/app/org.one.App | Container"_s });
    }

    void aProgramOfTheSystemKeepsWhatItWrote_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<bool>("isFound");
        QTest::newRow("in the home folder") << u"HOME/bin/mirror"_s << true;
        QTest::newRow("gone") << u"/nowhere/mirror"_s << true;
        QTest::newRow("of the system") << u"mirror --all"_s << false;
        QTest::newRow("of another launcher") << u"env A=1 launcher game://mirror"_s << false;
    }
    void aProgramOfTheSystemKeepsWhatItWrote()
    {
        QFETCH(QString, command);
        QFETCH(bool, isFound);
        const Machine machine;
        for (const auto *program : { "tools/mirror", "tools/launcher", "home/bin/mirror" })
            machine.program(program);
        machine.ownEntry("mirror",
            "Name=Night Mirror\nExec="
                + command.replace(u"HOME"_s, QString::fromStdString(machine.home())).toStdString());
        machine.add({ "home/.config/mirror/accounts", "home/.local/share/Night Mirror/x" });
        QCOMPARE(machine.found(u"mirror"_s).size(), isFound ? 2 : 0);
    }

    // Such an identifier is the entry's own, whatever starts it.
    void anIdOfThreePiecesIsTheEntrysOwn()
    {
        const Machine machine;
        machine.program("tools/launcher");
        machine.ownEntry("org.one.Mirror", "Name=Night Mirror\nExec=launcher --mirror");
        machine.add({ "home/.config/org.one.Mirror/x", "home/.local/share/Night Mirror/x" });
        QCOMPARE(machine.found(u"org.one.Mirror"_s),
            QStringList{ u"home/.config/org.one.Mirror | Preferences"_s });
    }

    void whatAMenuDoesNotShowKeepsItsOwn()
    {
        const Machine machine;
        machine.program("home/bin/draw");
        machine.ownEntry("draw", "Name=Draw, newer\nExec=" + machine.path("home/bin/draw"));
        machine.add({ "home/.config/draw/x", "home/.cache/Draw, newer/x" });
        QCOMPARE(machine.found(u"draw"_s).size(), 2);
        machine.entry("usr/share", "draw", "Name=Draw\nExec=tool");
        QCOMPARE(machine.found(u"draw"_s), QStringList());
    }

    void aFolderThatHoldsAProgramStays()
    {
        const Machine machine;
        machine.program("home/.local/share/suite-one/run");
        machine.ownEntry(
            "suite-one", "Name=Suite One\nExec=" + machine.path("home/.local/share/suite-one/run"));
        machine.program("home/.local/share/suite-two/other");
        machine.ownEntry("suite-two", "Name=Suite Two\nExec=/nowhere/x");
        machine.ownEntry("third", "Name=Third\nExec=" + machine.path("home/.local/share/suite-two/other"));
        QCOMPARE(machine.found(u"suite-one"_s), QStringList());
        QCOMPARE(machine.found(u"suite-two"_s), QStringList());
    }
};

QUILLBROOK_SUITE(TestLinuxLeftovers, QCoreApplication)
#include "tst_LinuxLeftovers.moc"
