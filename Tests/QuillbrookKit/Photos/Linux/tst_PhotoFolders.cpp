// Which folders are the library, and what this user may do in them.

#include "Photos/Linux/PhotoFolders.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Support/FakeHomeFolder.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QTest>

using namespace Quillbrook;

namespace {

struct Home
{
    TempTree tree;
    FakeHomeFolder home;

    Home() { home.home = home.realHome = tree.text(); }

    [[nodiscard]] PhotoFolders folders() const
    {
        return PhotoFolders::ofUser(LinuxFileReading(), tree.path(".config"), home);
    }
    [[nodiscard]] PhotoAccess access(unsigned mode) const
    {
        tree.permissions("Pictures", mode);
        const auto access = folders().access();
        tree.permissions("Pictures", 0700);
        return access;
    }
};

} // namespace

class TestPhotoFolders : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void haveTheirUsualNamesWhereNothingIsSaid()
    {
        const Home home;
        QCOMPARE(home.folders(),
            (PhotoFolders{ .pictures = home.tree.path("Pictures"), .videos = home.tree.path("Videos") }));
    }

    void followTheDesktop()
    {
        const Home home;
        home.tree.fileWith(".config/user-dirs.dirs",
            "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n# XDG_VIDEOS_DIR=\"$HOME/No\"\nXDG_VIDEOS_DIR=\"$HOME/\"\n");
        QCOMPARE(home.folders(), (PhotoFolders{ .pictures = home.tree.path("Bilder") }));
    }

    void homeItselfIsNoLibrary_data()
    {
        QTest::addColumn<QByteArray>("setting");
        QTest::newRow("by its path") << QByteArray("$HOME/");
        QTest::newRow("by a link") << QByteArray("$HOME/way");
        QTest::newRow("by a folder that holds it") << QByteArray("$HOME/..");
        QTest::newRow("by the root of the disk") << QByteArray("/");
    }

    void homeItselfIsNoLibrary()
    {
        QFETCH(QByteArray, setting);
        const Home home;
        home.tree.link("way", ".");
        home.tree.fileWith(".config/user-dirs.dirs",
            "XDG_PICTURES_DIR=\"" + setting.toStdString() + "\"\nXDG_VIDEOS_DIR=\"" + setting.toStdString()
                + "\"\n");
        QCOMPARE(home.folders(), PhotoFolders{});
        QCOMPARE(home.folders().access(), PhotoAccess::denied);
    }

    void accessFollowsTheRights()
    {
        const Home home;
        QCOMPARE(home.folders().access(), PhotoAccess::denied);
        QVERIFY(home.folders().roots().empty());
        home.tree.folder("Pictures");
        QCOMPARE(home.access(0700), PhotoAccess::granted);
        QCOMPARE(home.access(0500), PhotoAccess::limited);
        QCOMPARE(home.access(0100), PhotoAccess::denied);
        QCOMPARE(home.access(0600), PhotoAccess::denied);
        home.tree.folder("Videos");
        home.tree.permissions("Videos", 0500);
        QCOMPARE(home.access(0700), PhotoAccess::limited);
        home.tree.permissions("Videos", 0);
        QCOMPARE(home.access(0700), PhotoAccess::granted);
        QCOMPARE(home.folders().roots().size(), size_t(1));
    }

    void nothingIsWalkedTwice_data()
    {
        QTest::addColumn<QByteArray>("pictures");
        QTest::addColumn<QByteArray>("videos");
        QTest::addColumn<int>("roots");
        QTest::addColumn<int>("leftOut");
        QTest::newRow("apart") << QByteArray("P") << QByteArray("V") << 2 << 0;
        QTest::newRow("the same") << QByteArray("P") << QByteArray("P") << 1 << 0;
        QTest::newRow("a link to the same") << QByteArray("P") << QByteArray("L") << 1 << 0;
        QTest::newRow("videos in pictures") << QByteArray("P") << QByteArray("P/V") << 1 << 0;
        QTest::newRow("pictures in videos") << QByteArray("V/P") << QByteArray("V") << 2 << 1;
        QTest::newRow("one name begins with the other") << QByteArray("P") << QByteArray("P2") << 2 << 0;
        QTest::newRow("no videos") << QByteArray("P") << QByteArray("gone") << 1 << 0;
    }

    void nothingIsWalkedTwice()
    {
        QFETCH(QByteArray, pictures);
        QFETCH(QByteArray, videos);
        QFETCH(int, roots);
        QFETCH(int, leftOut);
        const TempTree tree;
        for (const char *name : { "P/V", "P2", "V/P" })
            tree.folder(name);
        tree.link("L", "P");
        const PhotoFolders folders{ .pictures = tree.path(pictures.toStdString()),
            .videos = tree.path(videos.toStdString()) };
        const auto found = folders.roots();
        QCOMPARE(int(found.size()), roots);
        QCOMPARE(found.front().path, tree.path(pictures.toStdString()));
        QCOMPARE(int(found.back().without.size()), leftOut);
    }
};

QUILLBROOK_SUITE(TestPhotoFolders, NoApplication, giveUpRoot)
#include "tst_PhotoFolders.moc"
