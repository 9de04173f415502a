// Which picture belongs to an icon's name.

#include "Support/DesktopMachine.h"
#include "Support/Suite.h"
#include "Uninstaller/Linux/IconFiles.h"

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestIconFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theOneThatSuitsBestIsTaken_data()
    {
        QTest::addColumn<QString>("icon");
        QTest::addColumn<QString>("file");
        QTest::newRow("outlines before pixels")
            << u"one"_s << u"usr/share/icons/hicolor/scalable/apps/one.svg"_s;
        QTest::newRow("large enough before small")
            << u"two"_s << u"usr/share/icons/hicolor/64x64/apps/two.png"_s;
        QTest::newRow("the largest of the small")
            << u"three"_s << u"usr/share/icons/hicolor/48x48/apps/three.png"_s;
        QTest::newRow("the user's") << u"four"_s << u"home/.local/share/icons/hicolor/64x64/apps/four.png"_s;
        QTest::newRow("Flatpak's")
            << u"org.five.App"_s
            << u"home/.local/share/flatpak/exports/share/icons/hicolor/64x64/apps/org.five.App.png"_s;
        QTest::newRow("a plain picture") << u"six"_s << u"usr/share/pixmaps/six.xpm"_s;
        QTest::newRow("named as a file") << u"six.xpm"_s << u"usr/share/pixmaps/six.xpm"_s;
        QTest::newRow("not of an id that begins so") << u"six.App"_s << QString();
        QTest::newRow("another theme's")
            << u"seven"_s << u"usr/share/icons/Adwaita/scalable/apps/seven.svg"_s;
        QTest::newRow("an absolute path") << u"HOME/pictures/eight.png"_s << u"home/pictures/eight.png"_s;
        QTest::newRow("a pipe") << u"HOME/pictures/pipe.png"_s << QString();
        QTest::newRow("no picture") << u"HOME/pictures/notes.txt"_s << QString();
        QTest::newRow("too large") << u"HOME/pictures/large.png"_s << QString();
        QTest::newRow("a path that is not absolute") << u"../pictures/eight"_s << QString();
        QTest::newRow("nothing") << QString() << QString();
    }
    void theOneThatSuitsBestIsTaken()
    {
        QFETCH(QString, icon);
        QFETCH(QString, file);
        const DesktopMachine machine;
        for (const auto *name : { "usr/share/icons/hicolor/scalable/apps/one.svg",
                 "usr/share/icons/hicolor/512x512/apps/one.png", "usr/share/icons/hicolor/32x32/apps/two.png",
                 "usr/share/icons/hicolor/64x64/apps/two.png", "usr/share/icons/hicolor/512x512/apps/two.png",
                 "usr/share/icons/hicolor/48x48/apps/three.png",
                 "usr/share/icons/hicolor/16x16/apps/three.png",
                 "usr/share/icons/hicolor/symbolic/apps/three.svg",
                 "home/.local/share/icons/hicolor/64x64/apps/four.png",
                 "usr/share/icons/hicolor/64x64/apps/four.png",
                 "home/.local/share/flatpak/exports/share/icons/hicolor/64x64/apps/org.five.App.png",
                 "usr/share/pixmaps/six.xpm", "usr/share/icons/Adwaita/scalable/apps/seven.svg",
                 "home/pictures/eight.png", "home/pictures/notes.txt" })
            machine.tree.file(name, 10);
        machine.tree.pipe("home/pictures/pipe.png");
        machine.tree.file("home/pictures/large.png", 9'000'000);
        auto places = machine.places();
        places.lastIconThemes = { "Adwaita" };
        theme(machine, "usr/share/icons/Adwaita", "scalable/apps", {});
        const IconFiles files(machine.reading, places);
        const auto found = files.file(icon.replace(u"HOME"_s, QString::fromStdString(machine.home())));
        QCOMPARE(
            QString::fromStdString(found), file.isEmpty() ? file : machine.tree.text(file.toStdString()));
    }

    void theDesktopsOwnThemeComesFirst_data()
    {
        QTest::addColumn<QString>("icon");
        QTest::addColumn<QString>("file");
        QTest::newRow("its own") << u"one"_s << u"usr/share/icons/Own/64/apps/one.svg"_s;
        QTest::newRow("that of the theme behind it")
            << u"two"_s << u"home/.icons/Behind/scalable/apps/two.svg"_s;
        QTest::newRow("that of the one behind that")
            << u"three"_s << u"usr/share/icons/Last/48x48/apps/three.png"_s;
        QTest::newRow("what all themes have")
            << u"four"_s << u"usr/share/icons/hicolor/64x64/apps/four.png"_s;
        QTest::newRow("not one of a folder for other things") << u"five"_s << QString();
        QTest::newRow("not one outside of the theme") << u"six"_s << QString();
        QTest::newRow("not one of a folder that the index doesn't name") << u"seven"_s << QString();
        QTest::newRow("named as a file") << u"one.png"_s << u"usr/share/icons/Own/64/apps/one.svg"_s;
    }
    void theDesktopsOwnThemeComesFirst()
    {
        QFETCH(QString, icon);
        QFETCH(QString, file);
        const DesktopMachine machine;
        theme(
            machine, "usr/share/icons/Own", "64/apps;64/places;../../outside/apps", "../Bad;Behind;hicolor");
        // It leads back to the first.
        theme(machine, "home/.icons/Behind", "16/apps;scalable/apps", "Own;Last;Missing");
        theme(machine, "usr/share/icons/Last", "48x48/apps", {});
        for (const auto *name :
            { "usr/share/icons/Own/64/apps/one.svg", "usr/share/icons/hicolor/scalable/apps/one.svg",
                "home/.icons/Behind/16/apps/two.png", "home/.icons/Behind/scalable/apps/two.svg",
                "usr/share/icons/hicolor/scalable/apps/two.svg", "usr/share/icons/Last/48x48/apps/three.png",
                "usr/share/icons/hicolor/64x64/apps/four.png", "usr/share/icons/Own/64/places/five.png",
                "usr/share/outside/apps/six.png", "usr/share/icons/Own/128/apps/seven.png" })
            machine.tree.file(name, 10);
        auto places = machine.places();
        places.iconTheme = "Own";
        const auto found = IconFiles(machine.reading, places).file(icon);
        QCOMPARE(
            QString::fromStdString(found), file.isEmpty() ? file : machine.tree.text(file.toStdString()));
    }

    void whatIsNoThemeIsPassedOver_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("not there") << QByteArray("Missing");
        QTest::newRow("without an index") << QByteArray("Bare");
        QTest::newRow("outside") << QByteArray("../Bare");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("the one that all have") << QByteArray("hicolor");
    }
    void whatIsNoThemeIsPassedOver()
    {
        QFETCH(QByteArray, name);
        const DesktopMachine machine;
        machine.tree.file("usr/share/icons/Bare/64x64/apps/one.png", 10);
        machine.tree.file("usr/share/icons/hicolor/64x64/apps/one.png", 10);
        auto places = machine.places();
        places.iconTheme = name.toStdString();
        QCOMPARE(IconFiles(machine.reading, places).file(u"one"_s),
            machine.path("usr/share/icons/hicolor/64x64/apps/one.png"));
    }

private:
    static void theme(const DesktopMachine &machine, const std::string &place, const std::string &folders,
        const std::string &parents)
    {
        auto index = "[Icon Theme]\nName=A theme\nInherits=" + parents + "\nDirectories=" + folders + '\n';
        for (const auto &folder : QString::fromStdString(folders).split(u';')) {
            const auto size = std::max(folder.section(u'x', 0, 0).section(u'/', 0, 0).toInt(), 1);
            index += "[" + folder.toStdString() + "]\nSize=" + std::to_string(size)
                + "\nContext=" + (folder.endsWith(u"apps") ? "Applications" : "Places")
                + "\nType=" + (folder.startsWith(u"scalable") ? "Scalable" : "Fixed") + '\n';
        }
        machine.tree.fileWith(place + "/index.theme", index);
    }
};

QUILLBROOK_SUITE(TestIconFiles, QCoreApplication)
#include "tst_IconFiles.moc"
