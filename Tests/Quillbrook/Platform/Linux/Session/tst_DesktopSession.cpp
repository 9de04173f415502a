#include "Platform/Linux/Session/DesktopSession.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestDesktopSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void environmentTells()
    {
        const TempTree root;
        QProcessEnvironment environment;
        environment.insert(u"XDG_CURRENT_DESKTOP"_s, u"ubuntu:GNOME"_s);
        environment.insert(u"XDG_CONFIG_HOME"_s, u"/settings"_s);
        environment.insert(u"XDG_CONFIG_DIRS"_s, u"/etc/xdg/ubuntu::relative:/etc/xdg"_s);
        environment.insert(u"PATH"_s, u"/usr/bin:bin:/bin"_s);
        const DesktopSession expected{ .desktops = { u"ubuntu"_s, u"GNOME"_s },
            .configFolder = "/settings",
            .systemConfigFolders = { "/etc/xdg/ubuntu", "/etc/xdg" },
            .programFolders = { u"/usr/bin"_s, u"/bin"_s } };
        QVERIFY(DesktopSession::of(environment, "/home/someone", root.text()) == expected);
    }

    void whatIsNotToldHasItsPlace_data()
    {
        QTest::addColumn<QString>("configHome");
        QTest::newRow("absent") << QString();
        QTest::newRow("relative") << u"settings"_s;
    }
    void whatIsNotToldHasItsPlace()
    {
        QFETCH(QString, configHome);
        const TempTree root;
        root.fileWith(".flatpak-info", "[Application]\nname=org.example.App\n");
        QProcessEnvironment environment;
        environment.insert(u"XDG_CONFIG_HOME"_s, configHome);
        const DesktopSession expected{ .sandbox
            = { .kind = Sandbox::Kind::flatpak, .application = u"org.example.App"_s },
            .configFolder = "/home/jos\xE9/.config",
            .systemConfigFolders = { "/etc/xdg" } };
        QVERIFY(DesktopSession::of(environment, "/home/jos\xE9", root.text()) == expected);
    }

    void programsAreFound_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<std::string>("found");
        QTest::newRow("in the second folder") << u"tool"_s << std::string("second/tool");
        QTest::newRow("in both") << u"both"_s << std::string("first/both");
        QTest::newRow("not to be run") << u"text"_s << std::string();
        QTest::newRow("nowhere") << u"nothing"_s << std::string();
        QTest::newRow("a path below a folder") << u"inner/tool"_s << std::string();
        QTest::newRow("no name") << QString() << std::string();
    }
    void programsAreFound()
    {
        QFETCH(QString, name);
        QFETCH(std::string, found);
        const TempTree tree;
        for (const std::string program : { "first/both", "second/both", "second/tool", "first/inner/tool" }) {
            tree.fileWith(program, "#!/bin/sh\n");
            tree.permissions(program, 0755);
        }
        tree.fileWith("first/text", "text");
        const DesktopSession session{ .programFolders = { tree.text("first"), tree.text("second") } };
        QCOMPARE(session.findProgram(name), found.empty() ? QString() : tree.text(found));
        QVERIFY(DesktopSession().findProgram(name).isEmpty());
    }

    void pathsAreTakenAsTheyAre()
    {
        const TempTree tree;
        tree.fileWith("tool", "#!/bin/sh\n");
        QVERIFY(DesktopSession().findProgram(tree.text("tool")).isEmpty());
        tree.permissions("tool", 0755);
        QCOMPARE(DesktopSession().findProgram(tree.text("tool")), tree.text("tool"));
    }
};

QUILLBROOK_SUITE(TestDesktopSession, QCoreApplication)
#include "tst_DesktopSession.moc"
