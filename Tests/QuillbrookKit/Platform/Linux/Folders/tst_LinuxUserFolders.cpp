#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Folders/LinuxUserFolders.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QFile>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestLinuxUserFolders : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allEightAreRead()
    {
        const auto folders = LinuxUserFolders::parse("# This file is written by xdg-user-dirs-update\n"
                                                     "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n"
                                                     "XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n"
                                                     "XDG_TEMPLATES_DIR=\"$HOME/Vorlagen\"\n"
                                                     "XDG_PUBLICSHARE_DIR=\"$HOME/\u00d6ffentlich\"\n"
                                                     "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n"
                                                     "XDG_MUSIC_DIR=\"/data/Musik\"\n"
                                                     "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n"
                                                     "XDG_VIDEOS_DIR=\"$HOME/Videos\"\n",
            u"/home/ann"_s);
        const LinuxUserFolders::Folders expected{ .desktop = u"/home/ann/Schreibtisch"_s,
            .documents = u"/home/ann/Dokumente"_s,
            .downloads = u"/home/ann/Downloads"_s,
            .music = u"/data/Musik"_s,
            .pictures = u"/home/ann/Bilder"_s,
            .publicShare = u"/home/ann/\u00d6ffentlich"_s,
            .templates = u"/home/ann/Vorlagen"_s,
            .videos = u"/home/ann/Videos"_s };
        QCOMPARE(folders, expected);
        QCOMPARE(folders.all().size(), size_t(8));
    }

    void oneLine_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("path");
        QTest::newRow("plain") << QByteArray("XDG_DOWNLOAD_DIR=\"$HOME/Descargas\"")
                               << u"/home/ann/Descargas"_s;
        QTest::newRow("blanks around")
            << QByteArray("  XDG_DOWNLOAD_DIR = \"$HOME/D\"  ") << u"/home/ann/D"_s;
        QTest::newRow("slashes") << QByteArray("XDG_DOWNLOAD_DIR=\"$HOME//a///b/\"") << u"/home/ann/a/b"_s;
        QTest::newRow("dots") << QByteArray("XDG_DOWNLOAD_DIR=\"$HOME/a/../b/.\"") << u"/home/ann/b"_s;
        QTest::newRow("escaped") << QByteArray("XDG_DOWNLOAD_DIR=\"$HOME/a \\\"b\\\" \\$c\"")
                                 << u"/home/ann/a \"b\" $c"_s;
        QTest::newRow("absolute") << QByteArray("XDG_DOWNLOAD_DIR=\"/data/d\"") << u"/data/d"_s;
        QTest::newRow("switched off") << QByteArray("XDG_DOWNLOAD_DIR=\"$HOME/\"") << u""_s;
        QTest::newRow("switched off without a slash") << QByteArray("XDG_DOWNLOAD_DIR=\"$HOME\"") << u""_s;
        QTest::newRow("home spelt out") << QByteArray("XDG_DOWNLOAD_DIR=\"/home/ann/.\"") << u""_s;
        QTest::newRow("relative") << QByteArray("XDG_DOWNLOAD_DIR=\"Downloads\"") << u""_s;
        QTest::newRow("another variable") << QByteArray("XDG_DOWNLOAD_DIR=\"$HOMEWARD/x\"") << u""_s;
        QTest::newRow("without quotes") << QByteArray("XDG_DOWNLOAD_DIR=$HOME/Downloads") << u""_s;
        QTest::newRow("a comment") << QByteArray("#XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"") << u""_s;
        QTest::newRow("another key") << QByteArray("XDG_DOWNLOADS_DIR=\"$HOME/Downloads\"") << u""_s;
        QTest::newRow("a second line counts")
            << QByteArray("XDG_DOWNLOAD_DIR=\"$HOME/a\"\nXDG_DOWNLOAD_DIR=\"$HOME/b\"") << u"/home/ann/b"_s;
        QTest::newRow("noise") << QByteArray("\x00\xff=\"\n\\", 6) << u""_s;
    }
    void oneLine()
    {
        QFETCH(QByteArray, line);
        QTEST(LinuxUserFolders::parse(line, u"/home/ann"_s).downloads.value_or(QString()), "path");
    }

    void fileIsReadFromTheHomeFolder()
    {
        TempTree tree;
        tree.folder(".config");
        QFile file(tree.text(".config/user-dirs.dirs"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("XDG_PICTURES_DIR=\"$HOME/Bilder\"\n");
        file.close();
        const auto folders = LinuxUserFolders::read(LinuxFileReading(), tree.path(".config"), tree.text());
        QCOMPARE(folders.pictures, tree.text("Bilder"));
        QCOMPARE(folders.all().size(), size_t(1));
    }

    void withoutTheFileNothingIsKnown()
    {
        TempTree tree;
        QCOMPARE(LinuxUserFolders::read(LinuxFileReading(), tree.path(".config"), tree.text()),
            LinuxUserFolders::Folders());
    }
};

QUILLBROOK_SUITE(TestLinuxUserFolders, NoApplication)
#include "tst_LinuxUserFolders.moc"
