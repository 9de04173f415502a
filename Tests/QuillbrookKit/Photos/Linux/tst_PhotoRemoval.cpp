// Moving pictures to the Trash, all or none, on real files as an ordinary user.

#include "Photos/Linux/PhotoRemoval.h"
#include "Photos/Linux/PhotoWalk.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Removal/Linux/LinuxGuards.h"
#include "Support/MadePictures.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QCoreApplication>
#include <QTest>

#include <algorithm>

using namespace Quillbrook;

namespace {

struct Library : TrashFixture
{
    LinuxFileRemoval removal{ calls };
    LinuxFileFacts facts;
    LinuxFileReading reading;
    LinuxFileWriting writing;
    HostGuards guards = LinuxGuards::guards({ .homes = { home.path() }, .trashes = places });
    const std::string list = PhotoRemoval::standardList(home.path("data"));
    const std::map<std::string, std::string> atFirst = [this] {
        for (const char *name : { "a.jpg", "sub/b.jpg", "sub/b.cr2", "odd\xff\n.png" })
            makePicture(home, std::string("Pictures/") + name, noon(2019, 6, 1));
        makePicture(home, "Pictures/later.jpg", noon(2022, 6, 1));
        return pictures();
    }();

    [[nodiscard]] std::map<std::string, std::string> pictures() const
    {
        return everything(home.path("Pictures"));
    }
    [[nodiscard]] PhotoRemoval photoRemoval()
    {
        return PhotoRemoval({ .removal
            = { .trash = trash, .removal = removal, .files = facts, .clock = clock, .guards = &guards },
            .reading = reading,
            .writing = writing,
            .home = home.path(),
            .list = list });
    }
    [[nodiscard]] std::shared_ptr<const LinuxPhotoAssets> assets() const
    {
        PhotoWork work;
        PhotoWalk walk(
            PhotoQuery::ofRange(noon(2019, 1, 1), noon(2020, 1, 1), true), [](const auto &) { return false; },
            work);
        std::ignore = walk.walk({ .path = home.path("Pictures") });
        return walk.take();
    }
    [[nodiscard]] std::vector<std::string> trashed() const { return names(places.homeTrash + "/files"); }
    [[nodiscard]] std::vector<std::string> notes() const { return names(places.homeTrash + "/info"); }
    /// Nothing has changed, and nothing is left of the attempt.
    void isAsAtFirst() const
    {
        QCOMPARE(pictures(), atFirst);
        QVERIFY(trashed().empty());
        QVERIFY(notes().empty());
    }
};

} // namespace

class TestPhotoRemoval : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFileOfTheRangeGoes()
    {
        Library library;
        auto removal = library.photoRemoval();
        PhotoWork work;
        QCOMPARE(removal.moveAll(*library.assets(), work), PhotoDeletion{ .succeeded = true });
        QCOMPARE(work.done.load(), qsizetype(4));
        QCOMPARE(work.total.load(), qsizetype(4));
        QCOMPARE(work.bytes.load(), qint64(400));
        QCOMPARE(library.trashed(), (std::vector<std::string>{ "a.jpg", "b.cr2", "b.jpg", "odd\xff\n.png" }));
        QCOMPARE(library.pictures().size(), size_t(2));
        QCOMPARE(removal.held().size(), size_t(4));
    }

    void whatWentCanBePutBackAfterAStart()
    {
        Library library;
        PhotoWork work;
        QVERIFY(library.photoRemoval().moveAll(*library.assets(), work).succeeded);
        auto removal = library.photoRemoval();
        QCOMPARE(removal.held().size(), size_t(4));
        PhotoWork again;
        QCOMPARE(removal.putBack(again), PhotoReturn{ .returned = 4 });
        QCOMPARE(again.done.load(), qsizetype(4));
        QCOMPARE(again.total.load(), qsizetype(4));
        QCOMPARE(again.bytes.load(), qint64(400));
        library.isAsAtFirst();
        QVERIFY(removal.held().empty());
        QVERIFY(library.photoRemoval().held().empty());
    }

    void nothingIsReplacedWhenPutBack()
    {
        Library library;
        auto removal = library.photoRemoval();
        PhotoWork work;
        QVERIFY(removal.moveAll(*library.assets(), work).succeeded);
        library.home.fileWith("Pictures/a.jpg", "new");
        PhotoWork again;
        const auto result = removal.putBack(again);
        QCOMPARE(result.returned, qsizetype(3));
        QCOMPARE(result.stayed.size(), qsizetype(1));
        QVERIFY(result.stayed.front().startsWith(QStringLiteral("a.jpg is still in the Trash: ")));
        QCOMPARE(library.content(library.home.path("Pictures/a.jpg")), std::string("new"));
        QCOMPARE(removal.held().size(), size_t(1));
    }

    void whatTheUserPutBackOrEmptiedIsHeldNoMore()
    {
        Library library;
        auto removal = library.photoRemoval();
        PhotoWork work;
        QVERIFY(removal.moveAll(*library.assets(), work).succeeded);
        QVERIFY(library.trash.erase(library.files("a.jpg")));
        QVERIFY(library.trash.restore(library.files("b.jpg"), library.home.path("Pictures/sub/b.jpg")));
        library.home.fileWith(".local/share/Trash/files/a.jpg", "of somebody else");
        QCOMPARE(removal.held().size(), size_t(2));
        PhotoWork again;
        QCOMPARE(removal.putBack(again).returned, qsizetype(2));
        QCOMPARE(library.trashed(), std::vector<std::string>{ "a.jpg" });
    }

    void oneThatCanNotGoBringsAllBack_data()
    {
        QTest::addColumn<QByteArray>("obstacle");
        for (const char *obstacle :
            { "vanished", "exchanged", "exchanged for a link", "no right", "kept by a guard" })
            QTest::newRow(obstacle) << QByteArray(obstacle);
    }

    void oneThatCanNotGoBringsAllBack()
    {
        QFETCH(QByteArray, obstacle);
        Library library;
        const auto assets = library.assets();
        auto removal = library.photoRemoval();
        auto expected = library.atFirst;
        const auto path = library.home.path("Pictures/sub/b.jpg");
        if (obstacle == "no right")
            library.home.permissions("Pictures/sub", 0500);
        else if (obstacle == "kept by a guard")
            library.guards.guards.push_back({ .names =
                                                  [](const GuardedPath &path) {
                                                      return path.path.ends_with("b.jpg")
                                                          ? std::optional<std::string>("")
                                                          : std::nullopt;
                                                  },
                .sentence = QStringLiteral("Kept.") });
        else
            std::filesystem::rename(path, library.home.path("elsewhere"));
        if (obstacle == "exchanged")
            library.home.fileWith("Pictures/sub/b.jpg", "another");
        if (obstacle == "exchanged for a link")
            library.home.link("Pictures/sub/b.jpg", "../../elsewhere");
        expected = library.pictures();
        PhotoWork work;
        QCOMPARE(removal.moveAll(*assets, work), PhotoDeletion{});
        QVERIFY(work.done.load() < 4);
        library.home.permissions("Pictures/sub", 0700);
        QCOMPARE(library.pictures(), expected);
        QVERIFY(library.trashed().empty());
        QVERIFY(library.notes().empty());
        QVERIFY(removal.held().empty());
    }

    void whatCanNotComeBackIsTold()
    {
        Library library;
        const auto assets = library.assets();
        auto removal = library.photoRemoval();
        // The last file has gone, and when the first is to come back something has its place.
        const auto path = [&](size_t shot) { return assets->path(assets->shots()[shot].files.front()); };
        std::filesystem::remove(path(2));
        library.guards.guards.push_back(
            { .names = [&](const GuardedPath &judged) -> std::optional<std::string> {
                 if (judged.path == path(2) || judged.path == path(1))
                     std::ofstream(path(0)) << "new";
                 return std::nullopt;
             },
                .sentence = QStringLiteral("-") });
        PhotoWork work;
        const auto deletion = removal.moveAll(*assets, work);
        QVERIFY(!deletion.succeeded);
        QCOMPARE(deletion.stranded.size(), qsizetype(1));
        QCOMPARE(library.content(path(0)), std::string("new"));
        QCOMPARE(removal.held().size(), size_t(1));
        std::filesystem::remove(path(0));
        PhotoWork again;
        QCOMPARE(removal.putBack(again).returned, qsizetype(1));
    }

    void nothingIsMovedThatCanNotBeNotedDown()
    {
        Library library;
        auto removal = library.photoRemoval();
        library.home.fileWith("data", "in the place of the folder");
        PhotoWork work;
        QCOMPARE(removal.moveAll(*library.assets(), work), PhotoDeletion{});
        library.isAsAtFirst();
    }

    void whatHasGoneComesBackWhenTheListEnds()
    {
        Library library;
        auto removal = library.photoRemoval();
        PhotoWork work;
        work.moved = [&] {
            if (work.done == 2)
                std::filesystem::permissions(library.list, std::filesystem::perms::owner_read);
        };
        QCOMPARE(removal.moveAll(*library.assets(), work), PhotoDeletion{});
        QCOMPARE(work.done.load(), qsizetype(2));
        library.isAsAtFirst();
        QVERIFY(removal.held().empty());
    }

    void fullDiskMovesNothing()
    {
        Library library;
        const auto assets = library.assets();
        auto removal = library.photoRemoval();
        library.calls.before = [writes = 0](std::string_view call, const char *) mutable {
            return call == "write" && ++writes > 2 ? ENOSPC : 0;
        };
        PhotoWork work;
        QCOMPARE(removal.moveAll(*assets, work), PhotoDeletion{});
        library.isAsAtFirst();
    }

    void stoppedAttemptBringsAllBack()
    {
        Library library;
        auto removal = library.photoRemoval();
        PhotoWork work;
        library.calls.before = [&](std::string_view call, const char *) {
            work.isStopped = work.isStopped || (call.starts_with("rename") && work.done > 1);
            return 0;
        };
        QCOMPARE(removal.moveAll(*library.assets(), work), PhotoDeletion{});
        QCOMPARE(work.done.load(), qsizetype(3));
        library.isAsAtFirst();
        QVERIFY(removal.held().empty());
    }

    void attemptThatAKillCutShortCanBePutBack()
    {
        Library library;
        const auto assets = library.assets();
        PhotoWork work;
        QVERIFY(library.photoRemoval().moveAll(*assets, work).succeeded);
        // The list as it was before the last of its lines, which ends the whole.
        auto lines = library.content(library.list);
        lines.resize(lines.rfind('\n', lines.size() - 2) + 1);
        library.home.fileWith("data/Quillbrook/photos.jsonl", lines);
        auto removal = library.photoRemoval();
        PhotoWork again;
        QCOMPARE(removal.putBack(again).returned, qsizetype(4));
        library.isAsAtFirst();
    }

    // As a kill leaves it between the two steps of a move, in either direction.
    void noteThatAKillLeftAloneIsDropped()
    {
        Library library;
        PhotoWork work;
        QVERIFY(library.photoRemoval().moveAll(*library.assets(), work).succeeded);
        std::filesystem::rename(library.files("a.jpg"), library.home.path("Pictures/a.jpg"));
        auto removal = library.photoRemoval();
        QCOMPARE(library.notes().size(), size_t(3));
        QCOMPARE(removal.held().size(), size_t(3));
        PhotoWork again;
        QCOMPARE(removal.putBack(again), PhotoReturn{ .returned = 3 });
        library.isAsAtFirst();
    }

    void stoppedReturnLeavesTheRestInTheTrash()
    {
        Library library;
        auto removal = library.photoRemoval();
        PhotoWork work;
        QVERIFY(removal.moveAll(*library.assets(), work).succeeded);
        PhotoWork stopped;
        stopped.moved = [&] { stopped.isStopped = stopped.done == 3; };
        QCOMPARE(removal.putBack(stopped), PhotoReturn{ .returned = 3 });
        QCOMPARE(removal.held().size(), size_t(1));
        PhotoWork again;
        QCOMPARE(library.photoRemoval().putBack(again), PhotoReturn{ .returned = 1 });
        library.isAsAtFirst();
    }
};

QUILLBROOK_SUITE(TestPhotoRemoval, QCoreApplication, giveUpRoot)
#include "tst_PhotoRemoval.moc"
