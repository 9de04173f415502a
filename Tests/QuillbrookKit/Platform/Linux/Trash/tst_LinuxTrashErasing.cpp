// Looking at the Trash and taking out of it, on real files, as an ordinary user.

#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QCoreApplication>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const std::string oddName = "odd\xff\n%41 \xc3\xa4;\"'";

} // namespace

class TestLinuxTrashErasing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void restores()
    {
        TrashFixture f;
        f.home.fileWith("folder/a/b", "b");
        const auto moved = f.trash.move(f.home.path("folder"));
        QVERIFY(moved);
        QVERIFY(f.trash.restore(*moved, f.home.path("folder")));
        QCOMPARE(f.content(f.home.path("folder/a/b")), std::string("b"));
        QVERIFY(f.names(f.places.homeTrash + "/files").empty());
        QVERIFY(f.names(f.places.homeTrash + "/info").empty());
    }

    void restoreNeverReplaces()
    {
        TrashFixture f;
        f.home.fileWith("a", "old");
        const auto moved = f.trash.move(f.home.path("a"));
        QVERIFY(moved);
        f.home.link("a", "nowhere");
        const auto restored = f.trash.restore(*moved, f.home.path("a"));
        QVERIFY(!restored);
        QCOMPARE(restored.error(), u"Something else is there by now."_s);
        QCOMPARE(f.content(*moved), std::string("old"));
        QVERIFY(f.isThere(f.note("a")));
        QCOMPARE(std::filesystem::read_symlink(f.home.path("a")).string(), std::string("nowhere"));
    }

    void restoreMakesFoldersThatAreGone()
    {
        TrashFixture f;
        f.home.file("x/" + oddName + "/z/a");
        const auto moved = f.trash.move(f.home.path("x/" + oddName + "/z/a"));
        QVERIFY(moved);
        std::filesystem::remove_all(f.home.path("x"));
        QVERIFY(f.trash.restore(*moved, f.home.path("x/" + oddName + "/z/a")));
        QVERIFY(f.isThere(f.home.path("x/" + oddName + "/z/a")));
    }

    void failedRestoreLeavesNoFolders()
    {
        TrashFixture f;
        f.home.file("kept/a");
        const auto moved = f.trash.move(f.home.path("kept/a"));
        QVERIFY(moved);
        const auto gone = f.files("gone");
        QVERIFY(!f.trash.restore(gone, f.home.path("kept/x/y/z")));
        QVERIFY(f.names(f.home.path("kept")).empty());
    }

    void restoreWithoutANote()
    {
        TrashFixture f;
        f.home.file(".local/share/Trash/files/a");
        f.home.folder(".local/share/Trash/info");
        QVERIFY(f.trash.restore(f.files("a"), f.home.path("a")));
        QVERIFY(f.isThere(f.home.path("a")));
    }

    void restoreTakesOnlyWhatIsInTheTrash_data()
    {
        eraseTakesOnlyWhatIsInTheTrash_data();
        QTest::newRow("what is being deleted") << QByteArray("TRASH/expunged/1");
    }

    void restoreTakesOnlyWhatIsInTheTrash()
    {
        QFETCH(QByteArray, path);
        TrashFixture f;
        f.home.file("a");
        f.home.file("folder/files/b");
        f.home.file(".local/share/Trash/expunged/1");
        f.home.file(".local/share/Trash/files/folder/c");
        f.home.folder(".local/share/Trash/info");
        const auto before = f.everything(f.home.path());
        path.replace("TRASH", f.places.homeTrash.c_str()).replace("HOME", f.home.path().c_str());
        QVERIFY(!f.trash.restore(path.toStdString(), f.home.path("new")));
        QVERIFY(f.everything(f.home.path()) == before);
    }

    void erasesWithItsNote()
    {
        TrashFixture f;
        f.home.file("folder/a/b");
        f.home.file("other");
        const auto moved = f.trash.move(f.home.path("folder"));
        const auto other = f.trash.move(f.home.path("other"));
        QVERIFY(moved && other);
        QVERIFY(f.trash.erase(*moved));
        QCOMPARE(f.names(f.places.homeTrash + "/files"), std::vector<std::string>{ "other" });
        QCOMPARE(f.names(f.places.homeTrash + "/info"), std::vector<std::string>{ "other.trashinfo" });
        QVERIFY(f.names(f.places.homeTrash + "/expunged").empty());
    }

    void erasesWithoutANote()
    {
        TrashFixture f;
        f.home.file(".local/share/Trash/files/" + oddName);
        f.home.folder(".local/share/Trash/info");
        f.home.file(".local/share/Trash/expunged/123/left");
        QVERIFY(f.trash.erase(f.files(oddName)));
        QVERIFY(f.trash.erase(f.places.homeTrash + "/expunged/123"));
        QVERIFY(f.names(f.places.homeTrash + "/files").empty());
        QVERIFY(f.names(f.places.homeTrash + "/expunged").empty());
    }

    void erasesLinksAndNotWhereTheyLead()
    {
        TrashFixture f;
        f.home.file("elsewhere/kept");
        f.home.link("link", f.home.path("elsewhere"));
        f.home.link("folder/link", f.home.path("elsewhere"));
        const auto link = f.trash.move(f.home.path("link"));
        const auto folder = f.trash.move(f.home.path("folder"));
        QVERIFY(link && folder);
        QVERIFY(f.trash.erase(*link));
        QVERIFY(f.trash.erase(*folder));
        QVERIFY(f.isThere(f.home.path("elsewhere/kept")));
        QVERIFY(f.names(f.places.homeTrash + "/info").empty());
    }

    void erasesReadOnlyFolders()
    {
        TrashFixture f;
        f.home.file("module/inside/file");
        f.home.permissions("module/inside", 0);
        f.home.permissions("module", 0555);
        const auto moved = f.trash.move(f.home.path("module"));
        QVERIFY(moved);
        const auto erased = f.trash.erase(*moved);
        QVERIFY2(erased, qPrintable(erased ? QString() : erased.error()));
        QVERIFY(f.names(f.places.homeTrash + "/expunged").empty());
    }

    void whatCannotBeErasedAtAllStaysInTheTrash()
    {
        TrashFixture f;
        f.home.file("folder/a");
        f.home.file("folder/b");
        const auto moved = f.trash.move(f.home.path("folder"));
        QVERIFY(moved);
        const auto before = f.everything(f.places.homeTrash);
        f.calls.before = [](std::string_view call, const char *name) {
            const std::string_view text = name;
            return call == "unlinkat" && (text == "a" || text == "b") ? EPERM : 0;
        };
        const auto erased = f.trash.erase(*moved);
        QVERIFY(!erased);
        QVERIFY(
            erased.error().endsWith(u" and 1 more could not be deleted. The system does not permit it."_s));
        auto after = f.everything(f.places.homeTrash);
        QCOMPARE(after.erase("expunged"), size_t(1));
        QVERIFY(after == before);
    }

    void whatIsPartlyErasedIsOutOfTheTrash()
    {
        TrashFixture f;
        f.home.file("folder/a");
        f.home.file("folder/deep/b");
        const auto moved = f.trash.move(f.home.path("folder"));
        QVERIFY(moved);
        f.calls.before = [](std::string_view call, const char *name) {
            return call == "unlinkat" && std::string_view(name) == "b" ? EPERM : 0;
        };
        const auto erased = f.trash.erase(*moved);
        QVERIFY(!erased);
        QCOMPARE(erased.error(), u"\"deep/b\" could not be deleted. The system does not permit it."_s);
        QVERIFY(f.names(f.places.homeTrash + "/files").empty());
        QVERIFY(f.names(f.places.homeTrash + "/info").empty());
        const auto items = f.trash.items(f.places.homeTrash);
        QCOMPARE(items.size(), size_t(1));
        f.calls.before = {};
        QVERIFY(f.trash.erase(items.front().path));
        QVERIFY(f.trash.items(f.places.homeTrash).empty());
    }

    // As a kill leaves it in the middle of a deletion, beside what another deletion has left.
    void deletionThatWasCutShortIsFinished_data()
    {
        QTest::addColumn<bool>("hidesInodes");
        QTest::addColumn<bool>("hasThing");
        QTest::newRow("by its inode") << false << true;
        QTest::newRow("by its note") << true << true;
        QTest::newRow("its note alone") << false << false;
    }

    void deletionThatWasCutShortIsFinished()
    {
        QFETCH(bool, hidesInodes);
        QFETCH(bool, hasThing);
        TrashFixture f;
        f.calls.hidesInodes = hidesInodes;
        f.home.file("folder/a");
        f.home.file("folder/b");
        const auto moved = f.trash.move(f.home.path("folder"), TrashOrder());
        QVERIFY(moved && moved->identity);
        const auto expunged = f.places.homeTrash + "/expunged";
        f.home.file(".local/share/Trash/expunged/other/kept");
        f.home.file(".local/share/Trash/expunged/other.trashinfo");
        std::filesystem::rename(moved->path, expunged + "/17");
        std::filesystem::rename(f.note("folder"), expunged + "/17.trashinfo");
        std::filesystem::remove(expunged + "/17/a");
        if (!hasThing)
            std::filesystem::remove_all(expunged + "/17");
        const Provenance from{
            .originalPath = f.home.path("folder"), .movedAt = f.clock.moment, .identity = moved->identity
        };
        auto others = from;
        others.identity->inode += 1;
        others.identity->note += "X=1\n";
        f.trash.finishErasing({ { .trashPath = moved->path, .from = others } });
        QCOMPARE(TrashFixture::isThere(expunged + "/17/b"), hasThing);
        QVERIFY(TrashFixture::isThere(expunged + "/17.trashinfo"));
        f.trash.finishErasing(
            { { .trashPath = moved->path, .from = others }, { .trashPath = moved->path, .from = from } });
        QCOMPARE(TrashFixture::names(expunged), (std::vector<std::string>{ "other", "other.trashinfo" }));
        QVERIFY(TrashFixture::isThere(expunged + "/other/kept"));
    }

    void leftoversAreLookedThroughOnce_data()
    {
        QTest::addColumn<bool>("hidesInodes");
        QTest::newRow("by inodes") << false;
        QTest::newRow("by notes") << true;
    }

    void leftoversAreLookedThroughOnce()
    {
        QFETCH(bool, hidesInodes);
        TrashFixture f;
        f.calls.hidesInodes = hidesInodes;
        f.home.folder(".local/share/Trash/files");
        f.home.folder(".local/share/Trash/info");
        for (int number = 0; number < 5; ++number)
            f.home.file(".local/share/Trash/expunged/" + std::to_string(number));
        std::vector<GoneThing> gone;
        const auto callsFor = [&](int count) {
            gone.clear();
            for (int number = 1; number <= count; ++number)
                gone.push_back({ .trashPath = f.files(std::to_string(number)),
                    .from = { .identity
                        = ThingIdentity{ .inode = 1, .born = number, .note = std::to_string(number) } } });
            const int before = f.calls.calls;
            f.trash.finishErasing(gone);
            return f.calls.calls - before;
        };
        const int forOne = callsFor(1);
        QVERIFY(forOne > 5);
        QCOMPARE(callsFor(20), forOne);
        QCOMPARE(TrashFixture::names(f.places.homeTrash + "/expunged").size(), size_t{ 5 });
    }

    void eraseTakesOnlyWhatIsInTheTrash_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("elsewhere") << QByteArray("HOME/a");
        QTest::newRow("a folder called like it") << QByteArray("HOME/folder/files/b");
        QTest::newRow("the trash") << QByteArray("TRASH");
        QTest::newRow("its files") << QByteArray("TRASH/files");
        QTest::newRow("its files, with a slash") << QByteArray("TRASH/files/");
        QTest::newRow("its files, with a dot") << QByteArray("TRASH/files/.");
        QTest::newRow("out of it") << QByteArray("TRASH/files/../../../../a");
        QTest::newRow("out of its files") << QByteArray("TRASH/files/folder/../../info");
        QTest::newRow("deep in it") << QByteArray("TRASH/files/folder/c");
        QTest::newRow("a note") << QByteArray("TRASH/info/c.trashinfo");
        QTest::newRow("longer name") << QByteArray("TRASHCAN/files/a");
        QTest::newRow("a trash that is no top of a volume") << QByteArray("HOME/.Trash-65534/files/a");
    }

    void eraseTakesOnlyWhatIsInTheTrash()
    {
        QFETCH(QByteArray, path);
        TrashFixture f;
        f.home.file("a");
        f.home.file("folder/files/b");
        f.home.file(".Trash-" + std::to_string(f.places.user) + "/files/a");
        f.home.file(".local/share/TrashCAN/files/a");
        f.home.file(".local/share/Trash/files/folder/c");
        f.home.file(".local/share/Trash/info/c.trashinfo");
        const auto before = f.everything(f.home.path());
        path.replace("TRASH", f.places.homeTrash.c_str()).replace("HOME", f.home.path().c_str());
        const auto erased = f.trash.erase(path.toStdString());
        QVERIFY(!erased);
        QCOMPARE(erased.error(), u"It is not in the Trash."_s);
        QVERIFY(f.everything(f.home.path()) == before);
    }

    void erasingTheSameTwiceSaysSo()
    {
        TrashFixture f;
        f.home.file("a");
        const auto moved = f.trash.move(f.home.path("a"));
        QVERIFY(moved && f.trash.erase(*moved));
        const auto again = f.trash.erase(*moved);
        QVERIFY(!again);
        QCOMPARE(again.error(), u"It is not there any more."_s);
    }

    void holds_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<bool>("held");
        QTest::newRow("the trash") << QByteArray("TRASH") << true;
        QTest::newRow("spelt otherwise") << QByteArray("HOME//.local/./share/x/../Trash/") << true;
        QTest::newRow("a thing that is not there") << QByteArray("TRASH/files/gone/deep") << true;
        QTest::newRow("through a link") << QByteArray("HOME/way/files") << true;
        QTest::newRow("the link itself") << QByteArray("HOME/way") << false;
        QTest::newRow("what holds it") << QByteArray("HOME/.local/share") << false;
        QTest::newRow("longer name") << QByteArray("TRASH2/files/a") << false;
        QTest::newRow("out of it") << QByteArray("TRASH/../a") << false;
        QTest::newRow("another user's on the root of the disk") << QByteArray("/.Trash-1/files/a") << false;
        QTest::newRow("empty") << QByteArray() << false;
    }

    void holds()
    {
        QFETCH(QByteArray, path);
        QFETCH(bool, held);
        TrashFixture f;
        f.home.folder(".local/share/Trash/files");
        f.home.link("way", ".local/share/Trash");
        path.replace("TRASH", f.places.homeTrash.c_str()).replace("HOME", f.home.path().c_str());
        QCOMPARE(f.trash.holds(path.toStdString()), held);
        QVERIFY(f.trash.holds("/.Trash-" + std::to_string(f.places.user) + "/files/a"));
        QVERIFY(f.trash.holds("/.Trash/" + std::to_string(f.places.user)));
    }

    void listsThingsWithTheirNotesAndLeftovers()
    {
        TrashFixture f;
        f.home.file("b");
        QVERIFY(f.trash.move(f.home.path("b")));
        f.home.file(".local/share/Trash/files/.hidden");
        f.home.file(".local/share/Trash/info/lost.trashinfo");
        f.home.file(".local/share/Trash/expunged/9/x");
        f.home.file(".local/share/Trash/directorysizes");
        const std::vector<TrashEntry> things{ { .path = f.files(".hidden") },
            { .path = f.files("b"), .note = f.note("b") } };
        const std::vector<TrashEntry> leftovers{ { .path = f.places.homeTrash + "/expunged/9" } };
        auto all = things;
        all.insert(all.end(), leftovers.begin(), leftovers.end());
        QVERIFY(f.trash.items(f.places.homeTrash) == all);
        QVERIFY(f.trash.items(f.places.homeTrash + "/files/") == things);
        QVERIFY(f.trash.items(f.places.homeTrash + "/expunged") == leftovers);
        for (const auto &item : all)
            QVERIFY(f.trash.erase(item.path));
        QVERIFY(f.trash.items(f.places.homeTrash).empty());
    }

    void listsNothingWithoutATrash()
    {
        const TrashFixture f;
        QVERIFY(f.trash.items(f.places.homeTrash).empty());
        QVERIFY(f.trash.items(f.home.path()).empty());
        QVERIFY(f.names(f.home.path()).empty());
    }
};

QUILLBROOK_SUITE(TestLinuxTrashErasing, QCoreApplication, giveUpRoot)
#include "tst_LinuxTrashErasing.moc"
