// The Trash on real files, as an ordinary user, with the trash of a home folder in a temporary folder.

#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QCoreApplication>
#include <QTest>

#include <sys/stat.h>
#include <thread>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const std::string oddName = "odd\xff\n%41 \xc3\xa4;\"'";

unsigned modeOf(const std::string &path)
{
    struct stat status = {};
    return ::lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

} // namespace

class TestLinuxTrash : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void movesAFileAndTellsWhereItLies()
    {
        TrashFixture f;
        f.home.fileWith("folder/a.txt", "content");
        const auto moved = f.trash.move(f.home.path("folder/a.txt"));
        QVERIFY2(moved, qPrintable(moved ? QString() : moved.error()));
        QCOMPARE(*moved, f.files("a.txt"));
        QCOMPARE(f.content(*moved), std::string("content"));
        QVERIFY(!f.isThere(f.home.path("folder/a.txt")));
        QVERIFY(f.isThere(f.home.path("folder")));
    }

    void noteTellsOriginAndLocalTime()
    {
        TrashFixture f;
        f.home.file("folder/per%cent ä.txt");
        QVERIFY(f.trash.move(f.home.path("folder//./per%cent ä.txt/")));
        QCOMPARE(f.content(f.note("per%cent ä.txt")),
            "[Trash Info]\nPath=" + f.home.path("folder/per%25cent%20%C3%A4.txt")
                + "\nDeletionDate=2024-06-15T12:00:00\n");
        QCOMPARE(modeOf(f.note("per%cent ä.txt")), 0600U);
    }

    void trashIsMadeForItsOwnerAlone()
    {
        TrashFixture f;
        f.home.file("a");
        QVERIFY(f.trash.move(f.home.path("a")));
        for (const auto *folder : { "", "/files", "/info" })
            QCOMPARE(modeOf(f.places.homeTrash + folder), 0700U);
        QCOMPARE(f.names(f.places.homeTrash), (std::vector<std::string>{ "files", "info" }));
    }

    void movesAFolderWhole()
    {
        TrashFixture f;
        f.home.fileWith("folder/a/b", "b");
        f.home.link("folder/link", "a");
        const auto before = f.everything(f.home.path("folder"));
        const auto moved = f.trash.move(f.home.path("folder"));
        QVERIFY(moved);
        QVERIFY(f.everything(*moved) == before);
        QVERIFY(!f.isThere(f.home.path("folder")));
    }

    void linksAreMovedAsLinks_data()
    {
        QTest::addColumn<QByteArray>("target");
        QTest::newRow("to a file") << QByteArray("elsewhere/file");
        QTest::newRow("to a folder") << QByteArray("elsewhere");
        QTest::newRow("to nothing") << QByteArray("nowhere");
        QTest::newRow("to itself") << QByteArray("link");
        QTest::newRow("to another volume") << QByteArray("/proc/self");
    }

    void linksAreMovedAsLinks()
    {
        QFETCH(QByteArray, target);
        TrashFixture f;
        f.home.fileWith("elsewhere/file", "kept");
        f.home.link("link", target.toStdString());
        const auto moved = f.trash.move(f.home.path("link"));
        QVERIFY(moved);
        QCOMPARE(std::filesystem::read_symlink(*moved).string(), target.toStdString());
        QCOMPARE(f.content(f.home.path("elsewhere/file")), std::string("kept"));
        QVERIFY(!f.isThere(f.home.path("link")));
    }

    void slashAtTheEndOfALinkDoesNotFollowIt()
    {
        TrashFixture f;
        f.home.file("elsewhere/file");
        f.home.link("link", "elsewhere");
        QVERIFY(f.trash.move(f.home.path("link///")));
        QVERIFY(f.isThere(f.home.path("elsewhere/file")));
        QVERIFY(!f.isThere(f.home.path("link")));
    }

    void anyBytesMakeAName()
    {
        TrashFixture f;
        f.home.fileWith(oddName, "odd");
        const auto moved = f.trash.move(f.home.path(oddName));
        QVERIFY(moved);
        QCOMPARE(*moved, f.files(oddName));
        QCOMPARE(f.content(*moved), std::string("odd"));
        const auto note = f.content(f.note(oddName));
        QVERIFY(note.find("/odd%FF%0A%2541%20%C3%A4%3B%22%27\n") != std::string::npos);
        QCOMPARE(std::ranges::count(note, '\n'), std::ptrdiff_t(3));
        QVERIFY(f.trash.restore(*moved, f.home.path(oddName)));
        QCOMPARE(f.content(f.home.path(oddName)), std::string("odd"));
    }

    void sameNamesLieBesideEachOther()
    {
        TrashFixture f;
        for (const auto *text : { "first", "second", "third" }) {
            f.home.fileWith("a.tar.gz", text);
            QVERIFY(f.trash.move(f.home.path("a.tar.gz")));
        }
        QCOMPARE(f.content(f.files("a.tar.gz")), std::string("first"));
        QCOMPARE(f.content(f.files("a.tar.2.gz")), std::string("second"));
        QCOMPARE(f.content(f.files("a.tar.3.gz")), std::string("third"));
        QCOMPARE(f.names(f.places.homeTrash + "/info").size(), size_t(3));
    }

    void thingWithoutANoteIsNotReplaced()
    {
        TrashFixture f;
        f.home.fileWith(".local/share/Trash/files/a", "kept");
        f.home.fileWith("a", "new");
        const auto moved = f.trash.move(f.home.path("a"));
        QVERIFY(moved);
        QCOMPARE(*moved, f.files("a.2"));
        QCOMPARE(f.content(f.files("a")), std::string("kept"));
        QVERIFY(!f.isThere(f.note("a")));
    }

    void longNamesAreShortenedForTheNote_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("first");
        QTest::addColumn<QByteArray>("second");
        const QByteArray x(300, 'x');
        QTest::newRow("just short enough") << x.left(245) << x.left(245) << x.left(243) + ".2";
        QTest::newRow("one longer") << x.left(246) << x.left(245) << x.left(243) + ".2";
        QTest::newRow("as long as can be") << x.left(255) << x.left(245) << x.left(243) + ".2";
        QTest::newRow("with an extension") << x.left(251) + ".txt" << x.left(245) << x.left(239) + ".2.txt";
        QTest::newRow("not within a character")
            << x.left(243) + QByteArray("\u20ac\u20ac\u20ac\u20ac") << x.left(243) << x.left(243) + ".2";
    }

    void longNamesAreShortenedForTheNote()
    {
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, first);
        QFETCH(QByteArray, second);
        TrashFixture f;
        for (const auto &expected : { first, second }) {
            f.home.fileWith(name.toStdString(), expected.toStdString());
            const auto moved = f.trash.move(f.home.path(name.toStdString()));
            QVERIFY(moved);
            QCOMPARE(QByteArray::fromStdString(*moved),
                QByteArray::fromStdString(f.files(expected.toStdString())));
            QVERIFY(f.isThere(f.note(expected.toStdString())));
            QVERIFY(
                f.content(f.note(expected.toStdString())).find(std::string(240, 'x')) != std::string::npos);
        }
    }

    void readOnlyFolderIsMovedAndStaysReadOnly()
    {
        TrashFixture f;
        f.home.file("module/inside/file");
        f.home.permissions("module/inside", 0555);
        f.home.permissions("module", 0555);
        const auto moved = f.trash.move(f.home.path("module"));
        QVERIFY2(moved, qPrintable(moved ? QString() : moved.error()));
        QCOMPARE(modeOf(*moved), 0555U);
        QVERIFY(f.trash.restore(*moved, f.home.path("module")));
        QCOMPARE(modeOf(f.home.path("module")), 0555U);
        QVERIFY(f.isThere(f.home.path("module/inside/file")));
    }

    void rightThatAKillLeftLentIsTakenBack_data()
    {
        QTest::addColumn<bool>("isMoved");
        QTest::addColumn<bool>("hasNote");
        QTest::addColumn<unsigned>("mode");
        QTest::addColumn<unsigned>("after");
        QTest::newRow("before the move") << false << true << 0755U << 0555U;
        QTest::newRow("after the move") << true << true << 0755U << 0555U;
        QTest::newRow("changed by somebody since") << true << true << 0775U << 0775U;
        QTest::newRow("given by who has put it back") << false << false << 0755U << 0755U;
    }

    void rightThatAKillLeftLentIsTakenBack()
    {
        QFETCH(bool, isMoved);
        QFETCH(bool, hasNote);
        QFETCH(unsigned, mode);
        TrashFixture f;
        f.home.folder("module");
        f.home.permissions("module", 0555);
        const auto moved = f.trash.move(f.home.path("module"), {});
        QVERIFY(moved);
        const Provenance from{
            .originalPath = f.home.path("module"), .movedAt = f.clock.moment, .identity = moved->identity
        };
        if (!isMoved)
            QVERIFY(f.trash.restore(moved->path, f.home.path("module")));
        if (!isMoved && hasNote)
            f.home.fileWith(".local/share/Trash/info/module.trashinfo", moved->identity->note);
        const auto path = isMoved ? moved->path : f.home.path("module");
        std::filesystem::permissions(path, static_cast<std::filesystem::perms>(mode));
        f.trash.takeBackRight(moved->path, from);
        QTEST(modeOf(path), "after");
    }

    void readOnlyFolderAroundItIsRespected()
    {
        TrashFixture f;
        f.home.file("around/file");
        f.home.folder("around/folder");
        f.home.permissions("around", 0555);
        for (const auto *name : { "around/file", "around/folder" }) {
            const auto moved = f.trash.move(f.home.path(name));
            QVERIFY(!moved);
            QCOMPARE(moved.error(), u"You do not have permission."_s);
            QVERIFY(f.isThere(f.home.path(name)));
        }
        QCOMPARE(modeOf(f.home.path("around")), 0555U);
        QVERIFY(f.names(f.places.homeTrash + "/info").empty());
    }

    void refuses_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QString>("error");
        const auto odd = u"That is not a path Quillbrook can act on."_s;
        QTest::newRow("empty") << QByteArray() << odd;
        QTest::newRow("relative") << QByteArray("a") << odd;
        QTest::newRow("the root") << QByteArray("///") << odd;
        QTest::newRow("dot") << QByteArray("HOME/folder/.") << odd;
        QTest::newRow("dot dot") << QByteArray("HOME/folder/..") << odd;
        QTest::newRow("NUL") << QByteArray("HOME/a\0b", 8) << odd;
        QTest::newRow("gone") << QByteArray("HOME/gone") << u"It is not there any more."_s;
        QTest::newRow("below a file") << QByteArray("HOME/a/b") << u"It is not there any more."_s;
        QTest::newRow("below what may not be entered")
            << QByteArray("HOME/closed/b") << u"You do not have permission."_s;
        QTest::newRow("a mount") << QByteArray("/proc")
                                 << u"It is a drive, or something else that is mounted."_s;
    }

    void refuses()
    {
        QFETCH(QByteArray, path);
        QFETCH(QString, error);
        TrashFixture f;
        f.home.fileWith("a", "kept");
        f.home.folder("folder");
        f.home.folder("closed");
        f.home.permissions("closed", 0);
        const auto before = f.names(f.home.path());
        const auto moved = f.trash.move(path.replace("HOME", f.home.path().c_str()).toStdString());
        QVERIFY(!moved);
        QCOMPARE(moved.error(), error);
        QVERIFY(f.names(f.home.path()) == before);
    }

    void refusesWhatLiesInTheTrash()
    {
        TrashFixture f;
        f.home.file("folder/a");
        const auto moved = f.trash.move(f.home.path("folder"));
        QVERIFY(moved);
        f.home.link("way", ".local/share/Trash/files");
        const auto before = f.everything(f.places.homeTrash);
        for (const auto &path : { *moved, *moved + "/a", f.places.homeTrash, f.places.homeTrash + "/files",
                 f.note("folder"), f.home.path("way/folder") }) {
            const auto again = f.trash.move(path);
            QVERIFY2(!again, path.c_str());
            QCOMPARE(again.error(), u"It is in the Trash already."_s);
        }
        QVERIFY(f.everything(f.places.homeTrash) == before);
    }

    void refusesWhatHoldsTheTrash()
    {
        TrashFixture f;
        f.home.file("a");
        QVERIFY(f.trash.move(f.home.path("a")));
        for (const auto &path : { f.home.path(), f.home.path(".local"), f.home.path(".local/share/") }) {
            const auto moved = f.trash.move(path);
            QVERIFY(!moved);
            QCOMPARE(moved.error(), u"The Trash itself lies in it."_s);
        }
    }

    void trashThatIsALinkIsNotUsed_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("itself") << QByteArray(".local/share/Trash");
        QTest::newRow("its files") << QByteArray(".local/share/Trash/files");
        QTest::newRow("its notes") << QByteArray(".local/share/Trash/info");
        QTest::newRow("a file in its place") << QByteArray();
    }

    void trashThatIsALinkIsNotUsed()
    {
        QFETCH(QByteArray, name);
        TrashFixture f;
        f.home.fileWith("a", "kept");
        f.home.folder("elsewhere");
        if (name.isEmpty())
            f.home.file(".local/share/Trash");
        else
            f.home.link(name.toStdString(), f.home.path("elsewhere"));
        const auto moved = f.trash.move(f.home.path("a"));
        QVERIFY(!moved);
        QCOMPARE(moved.error(), u"There is no Trash for it."_s);
        QCOMPARE(f.content(f.home.path("a")), std::string("kept"));
        QVERIFY(f.names(f.home.path("elsewhere")).empty());
    }

    void parentsThatClimbAreToldWithoutLinks()
    {
        TrashFixture f;
        f.home.file("deep/er/there/a");
        f.home.file("deep/a");
        f.home.link("way", "deep/er/there");
        QVERIFY(!f.trash.move(f.home.path("way/../a")));
        f.home.file("deep/er/b");
        QVERIFY(f.trash.move(f.home.path("way/../b")));
        QVERIFY(f.content(f.note("b")).find("/deep/er/b\n") != std::string::npos);
        QVERIFY(f.trash.move(f.home.path("way/a")));
        QVERIFY(f.content(f.note("a")).find("Path=" + f.home.path("way/a\n")) != std::string::npos);
        QVERIFY(f.isThere(f.home.path("deep/a")));
    }

    void hundredsOfOneNameFindRoom()
    {
        TrashFixture f;
        constexpr int count = 300;
        for (int i = 0; i < count; ++i) {
            f.home.fileWith("Cache", std::to_string(i));
            QVERIFY(f.trash.move(f.home.path("Cache")));
        }
        QCOMPARE(f.names(f.places.homeTrash + "/files").size(), size_t(count));
        QCOMPARE(f.names(f.places.homeTrash + "/info").size(), size_t(count));
    }

    void heldTrashThatIsTakenAwayIsMadeAnew()
    {
        TrashFixture f;
        const auto held = f.trash.hold();
        for (const auto *name : { "a", "b", "c" }) {
            f.home.file(name);
            QVERIFY(f.trash.move(f.home.path(name)));
            if (std::string_view(name) == "b")
                std::filesystem::rename(f.places.homeTrash, f.home.path("old"));
        }
        QCOMPARE(f.names(f.home.path("old/files")), (std::vector<std::string>{ "a", "b" }));
        QCOMPARE(f.names(f.places.homeTrash + "/files"), std::vector<std::string>{ "c" });
        QCOMPARE(f.names(f.places.homeTrash + "/info"), std::vector<std::string>{ "c.trashinfo" });
    }

    void twoThreadsNeverTakeOneName()
    {
        TrashFixture f;
        constexpr int count = 100;
        for (int i = 0; i < 2 * count; ++i)
            f.home.fileWith(std::to_string(i) + "/same", std::to_string(i));
        const auto moveAll = [&](int from) {
            LinuxTrash trash(f.places, f.reserve, f.clock);
            for (int i = from; i < from + count; ++i)
                std::ignore = trash.move(f.home.path(std::to_string(i) + "/same"));
        };
        std::thread other(moveAll, count);
        moveAll(0);
        other.join();
        std::vector<int> contents;
        for (const auto &name : f.names(f.places.homeTrash + "/files")) {
            contents.push_back(std::stoi(f.content(f.files(name))));
            QVERIFY(f.content(f.note(name)).find('/' + f.content(f.files(name)) + "/same\n")
                != std::string::npos);
        }
        std::ranges::sort(contents);
        QCOMPARE(contents.size(), size_t(2 * count));
        QVERIFY(std::ranges::adjacent_find(contents) == contents.end());
    }
};

QUILLBROOK_SUITE(TestLinuxTrash, QCoreApplication, giveUpRoot)
#include "tst_LinuxTrash.moc"
