// What Flatpak's own files tell, also when they are damaged. How real ones look is tested with the real tool,
// from end to end.

#include "Support/DesktopMachine.h"
#include "Support/Suite.h"
#include "Uninstaller/Linux/FlatpakInstallation.h"

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestFlatpakInstallation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refsHaveAForm_data()
    {
        QTest::addColumn<bool>("isRef");
        const auto row = [](const char *ref, bool isRef) { QTest::newRow(ref) << isRef; };
        row("app/org.one.App/x86_64/stable", true);
        row("runtime/org.base/x86_64/23.08", true);
        row("app/--system/x86_64/stable", false);
        row("app/org.one.App/x86_64", false);
        row("app/org.one.App/x86_64/stable/more", false);
        row("app/org.one App/x86_64/stable", false);
        row("app/org.one.App/x86_64/sta\nble", false);
        row("app/org.one.App/x86_64/stable\n", false);
        row("--all", false);
        row("app/../x86_64/stable", false);
    }
    void refsHaveAForm()
    {
        QTEST(FlatpakInstallation::isRef(QString::fromUtf8(QTest::currentDataTag())), "isRef");
    }

    void damagedNotesTellNothing()
    {
        QCOMPARE(FlatpakInstallation::originOf({}), QString());
        QCOMPARE(FlatpakInstallation::originOf(QByteArray(1000, '\xff')), QString());
        QCOMPARE(FlatpakInstallation::versionOf("<component><releases><release date='x'/>"), QString());
        QCOMPARE(
            FlatpakInstallation::versionOf("<component><releases><release version='1.5'/><rel"), u"1.5"_s);
        QCOMPARE(FlatpakInstallation::versionOf("<!DOCTYPE a [<!ENTITY b 'c'>]><a><release"), QString());
    }

    void eachBranchIsARef()
    {
        const DesktopMachine machine;
        machine.flatpak("f", "org.one.App", "One");
        machine.tree.folder("f/app/org.one.App/x86_64/beta/active");
        machine.tree.folder("f/app/org.one.App/x86_64/gone");
        machine.tree.folder("f/app/org.empty.App/x86_64");
        machine.tree.folder("f/app/--all/x86_64/stable/active");
        machine.tree.fileWith(
            "f/app/org.one.App/x86_64/stable/active/files/share/metainfo/org.one.App.metainfo.xml",
            "<component><releases><release version='2.1'/><release version='2.0'/></releases></component>");
        auto apps = FlatpakInstallation::apps(machine.reading, machine.path("f"));
        QCOMPARE(apps.size(), size_t(1));
        apps.front().refs.sort();
        QCOMPARE(apps.front(),
            (FlatpakInstallation::App{ .id = u"org.one.App"_s,
                .folder = machine.path("f/app/org.one.App"),
                .deployment = machine.path("f/app/org.one.App/current/active"),
                .version = u"2.1"_s,
                .refs = { u"app/org.one.App/x86_64/beta"_s, u"app/org.one.App/x86_64/stable"_s },
                .runtimes = { u"runtime/org.base/x86_64/23"_s } }));
        auto ids = FlatpakInstallation::allIds(machine.path("f"));
        ids.sort();
        // What is damaged is there all the same.
        QCOMPARE(ids, (QStringList{ u"--all"_s, u"org.base"_s, u"org.empty.App"_s, u"org.one.App"_s }));
    }

    void withoutAReleaseTheBranchIsTheVersion()
    {
        const DesktopMachine machine;
        machine.flatpak("f", "org.one.App", "One");
        QCOMPARE(FlatpakInstallation::apps(machine.reading, machine.path("f")).front().version, u"stable"_s);
    }
};

QUILLBROOK_SUITE(TestFlatpakInstallation, NoApplication)
#include "tst_FlatpakInstallation.moc"
