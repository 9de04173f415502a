// What is left in a desktop's folders of applications that nobody has any more.

#include "Support/DesktopMachine.h"
#include "Support/Suite.h"

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 day = 86'400;

struct Machine : DesktopMachine
{
    void add(const std::string &name, qint64 age = 200 * day) const
    {
        tree.file(name + "/inner/x", 2'000'000);
        for (const auto *below : { "/inner/x", "/inner", "" })
            BundleTree::age(name + below, age);
    }
    [[nodiscard]] std::vector<FoundOrphan> orphans() const
    {
        return applications().orphans(applications().listing(), measure(), 180);
    }
};

} // namespace

class TestLinuxOrphans : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placesAreSearched()
    {
        const Machine machine;
        for (const auto *place : { "home/.var/app", "home/.config", "home/.local/share", "home/.cache",
                 "home/.local/state", "home/snap", "home/.local/share/applications" })
            machine.add(std::string(place) + "/org.gone.Tool");
        QStringList kinds;
        for (const auto &found : machine.orphans()) {
            kinds.append(rawValue(found.orphan.kind));
            QVERIFY(found.isInHostPlace);
            QCOMPARE(found.newestInside, found.orphan.lastModified);
        }
        kinds.sort();
        QCOMPARE(kinds,
            (QStringList{ u"Application support"_s, u"Cache"_s, u"Container"_s, u"Preferences"_s,
                u"Saved windows"_s }));
    }

    void ownersOfAnyKindKeepTheirs_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isOrphan");
        const auto row = [](const char *name, bool isOrphan) {
            QTest::newRow(name) << QString::fromUtf8(name) << isOrphan;
        };
        row("org.gone.Tool", true);
        row("org.hidden.App", false);
        row("org.Hidden.app.helper", false);
        row("org.base", false);
        row("org.base.Locale", false);
        row("org.bus.Service", false);
        row("org.bus.Named", false);
        row("org.broken.App", false);
        row("org.snapped.app", false);
        row("org.gnome.Shell", false);
        row("org.freedesktop.portal", false);
        row("com.tarnwick.Quillbrook", false);
        row("tool.of.one.word", false);
        row("toolbox.of.one.word", true);
        row("org.damaged.App", false);
        row("two.pieces", false);
        row(".hidden.folder.here", false);
    }
    void ownersOfAnyKindKeepTheirs()
    {
        QFETCH(QString, name);
        const Machine machine;
        machine.entry("usr/share", "org.hidden.App", "Name=H\nNoDisplay=true\nExec=tool");
        machine.entry("usr/share", "tool", "Name=T\nExec=tool");
        machine.entry("usr/share", "org.damaged.App", "nonsense");
        machine.tree.folder("var/lib/flatpak/runtime/org.base/x86_64/23");
        machine.tree.file("usr/share/dbus-1/services/org.bus.Service.service");
        machine.tree.fileWith(
            "usr/share/dbus-1/services/odd.service", "[D-BUS Service]\nName=org.bus.Named\nExec=x\n");
        machine.tree.folder("var/lib/flatpak/app/org.broken.App/x86_64/stable");
        machine.tree.folder("snap/org.snapped.app");
        machine.add("home/.config/" + name.toStdString());
        QTEST(!machine.orphans().empty(), "isOrphan");
    }

    void somethingNewInsideKeepsIt()
    {
        const Machine machine;
        machine.add("home/.config/org.gone.Tool");
        QCOMPARE(machine.orphans().size(), size_t(1));
        machine.age("home/.config/org.gone.Tool/inner/x", 10 * day);
        QVERIFY(machine.orphans().empty());
        // Exactly at the cutoff is not older.
        machine.age("home/.config/org.gone.Tool/inner/x", 180 * day);
        QVERIFY(machine.orphans().empty());
        machine.age("home/.config/org.gone.Tool/inner/x", 180 * day + 1);
        QCOMPARE(machine.orphans().size(), size_t(1));
    }

    void aNewerFolderIsNotMeasured()
    {
        const Machine machine;
        machine.add("home/.config/org.gone.Tool", day);
        QVERIFY(machine.orphans().empty());
        QVERIFY(machine.measured.empty());
    }

    void linksAreNotFollowed()
    {
        const Machine machine;
        machine.add("home/Documents/large");
        machine.tree.link("home/.config/org.gone.Link", machine.path("home/Documents/large"));
        machine.add("home/.config/org.gone.Tool");
        machine.tree.file("home/new");
        machine.tree.link("home/.config/org.gone.Tool/inner/link", machine.path("home/new"));
        machine.age("home/.config/org.gone.Tool/inner", 200 * day);
        QCOMPARE(machine.orphans().size(), size_t(1));
    }
};

QUILLBROOK_SUITE(TestLinuxOrphans, QCoreApplication)
#include "tst_LinuxOrphans.moc"
