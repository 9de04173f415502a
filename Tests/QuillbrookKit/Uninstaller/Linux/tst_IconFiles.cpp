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
        places.iconThemes = { "Adwaita" };
        const auto found
            = IconFiles(places).file(icon.replace(u"HOME"_s, QString::fromStdString(machine.home())));
        QCOMPARE(
            QString::fromStdString(found), file.isEmpty() ? file : machine.tree.text(file.toStdString()));
    }
};

QUILLBROOK_SUITE(TestIconFiles, QCoreApplication)
#include "tst_IconFiles.moc"
