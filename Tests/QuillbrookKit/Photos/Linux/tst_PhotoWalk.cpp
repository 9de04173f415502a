#include "Photos/Linux/PhotoStatus.h"
#include "Photos/Linux/PhotoWalk.h"
#include "Platform/Linux/Files/FileDescriptor.h"
#include "Support/MadePictures.h"
#include "Support/Suite.h"

#include <QTest>

#include <climits>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

using namespace Quillbrook;

namespace {

using Names = std::vector<std::string>;

struct Library
{
    TempTree tree;
    QDateTime from = noon(2019, 1, 1);
    QDateTime to = noon(2020, 1, 1);
    bool videos = true;
    std::function<bool(const std::string &)> keeps = [](const std::string &) { return false; };

    [[nodiscard]] std::shared_ptr<const LinuxPhotoAssets> query(PhotoWalk::Root root = {}) const
    {
        PhotoWork work;
        PhotoWalk walk(PhotoQuery::ofRange(from, to, videos), keeps, work);
        root.path = tree.path();
        return walk.walk(root) ? walk.take() : nullptr;
    }
    /// Of each asset the names of its files, relative to the folder, in the order of their letters.
    [[nodiscard]] std::vector<Names> found(const PhotoWalk::Root &root = {}) const
    {
        std::vector<Names> all;
        const auto assets = query(root);
        for (const auto &shot : assets->shots()) {
            auto &names = all.emplace_back();
            for (const auto &file : shot.files)
                names.push_back(assets->path(file).substr(tree.path().size() + 1));
            std::ranges::sort(names);
        }
        return all;
    }
    void picture(const std::string &name, const QDateTime &made = noon(2019, 6, 1), qint64 bytes = 100) const
    {
        makePicture(tree, name, made, bytes);
    }
};

} // namespace

class TestPhotoWalk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void assetsComeInTheOrderTheyWereMade()
    {
        Library library;
        library.picture("b/2.jpg", noon(2019, 3, 1));
        library.picture("1.jpg", noon(2019, 5, 1));
        library.picture("a/3.mp4", noon(2019, 2, 1));
        library.picture("odd\xff.png", noon(2019, 4, 1));
        library.tree.file("notes.txt", 10);
        QCOMPARE(library.found(),
            (std::vector<Names>{ { "a/3.mp4" }, { "b/2.jpg" }, { "odd\xff.png" }, { "1.jpg" } }));
    }

    void bothEndsOfTheRangeAreIn_data()
    {
        QTest::addColumn<int>("milliseconds");
        QTest::addColumn<bool>("fromIsIn");
        QTest::addColumn<bool>("toIsIn");
        QTest::newRow("exactly") << 0 << true << true;
        QTest::newRow("a millisecond later") << 1 << false << true;
        QTest::newRow("a millisecond earlier") << -1 << true << false;
    }

    void bothEndsOfTheRangeAreIn()
    {
        QFETCH(int, milliseconds);
        QFETCH(bool, fromIsIn);
        QFETCH(bool, toIsIn);
        for (const auto year : { 1960, 2019 }) {
            Library library;
            library.picture("a.jpg", noon(year, 1, 1));
            library.from = noon(year, 1, 1).addMSecs(milliseconds);
            QCOMPARE(!library.found().empty(), fromIsIn);
            library.from = noon(1950, 1, 1);
            library.to = noon(year, 1, 1).addMSecs(milliseconds);
            QCOMPARE(!library.found().empty(), toIsIn);
        }
    }

    void nameTellsMoreThanTheFile()
    {
        Library library;
        library.picture("IMG_20190704_153000.jpg", noon(2022, 1, 1));
        library.picture("IMG_20180704_153000.jpg");
        QCOMPARE(library.found(), (std::vector<Names>{ { "IMG_20190704_153000.jpg" } }));
    }

    void birthCountsWhereItIsEarlierThanTheLastChange()
    {
        Library library;
        library.picture("a.jpg", QDateTime::currentDateTimeUtc().addYears(1));
        library.from = QDateTime::currentDateTimeUtc().addSecs(-3600);
        library.to = QDateTime::currentDateTimeUtc().addSecs(3600);
        const auto status = PhotoStatus::of(AT_FDCWD, library.tree.path("a.jpg").c_str());
        if (status->born == 0)
            QSKIP("this file system keeps no birth times");
        QCOMPARE(library.found().size(), size_t(1));
    }

    void filesOfOneShotAreOneAsset()
    {
        Library library;
        const auto shot = noon(2019, 6, 1);
        library.picture("1.CR2", shot, 300);
        library.picture("1.jpg", shot.addSecs(2), 200);
        library.picture("1.xmp", shot.addSecs(3), 20);
        library.picture("2.heic", shot.addDays(1));
        library.picture("2.mov", shot.addDays(1).addSecs(1));
        library.picture("2.heic.aae", shot.addDays(1).addSecs(60));
        library.picture("sub/1.jpg", shot.addDays(2));
        QCOMPARE(library.found(),
            (std::vector<Names>{
                { "1.CR2", "1.jpg", "1.xmp" }, { "2.heic", "2.heic.aae", "2.mov" }, { "sub/1.jpg" } }));
        QCOMPARE(library.query()->shots().front().files.front().name, std::string("1.CR2"));
        library.videos = false;
        // Who photographs with sound has photographed.
        QCOMPARE(library.found().size(), size_t(3));
    }

    void sameNameAtAnotherTimeIsAnotherShot()
    {
        Library library;
        const auto shot = noon(2019, 6, 1);
        library.picture("1.jpg", shot);
        library.picture("1.mov", shot.addSecs(61));
        library.picture("1.xmp", shot.addDays(100));
        library.picture("2.xmp", shot);
        QCOMPARE(library.found(), (std::vector<Names>{ { "1.jpg" }, { "1.mov" } }));
        library.videos = false;
        QCOMPARE(library.found(), (std::vector<Names>{ { "1.jpg" } }));
    }

    void shotIsMadeWhenItsFirstPictureIs()
    {
        Library library;
        library.picture("1.jpg", library.to.addSecs(-1));
        library.picture("1.mov", library.to.addSecs(5));
        library.picture("2.jpg", library.from.addSecs(-1));
        library.picture("2.mov", library.from.addSecs(1));
        QCOMPARE(library.found(), (std::vector<Names>{ { "1.jpg", "1.mov" } }));
    }

    void leavesOutWhatIsNoPicture()
    {
        Library library;
        library.picture("a.jpg");
        library.picture(".hidden.jpg");
        library.picture(".dtrash/files/a.jpg");
        library.picture("Thumbnails/a.jpg");
        library.tree.link("link.jpg", "a.jpg");
        library.tree.link("linked", "/usr");
        library.tree.pipe("pipe.jpg");
        library.tree.folder("folder.jpg");
        library.picture("folder.jpg/b.jpg");
        QCOMPARE(library.found(), (std::vector<Names>{ { "a.jpg" }, { "folder.jpg/b.jpg" } }));
    }

    void leavesOutWhatTheGuardsKeep()
    {
        Library library;
        std::vector<std::string> asked;
        library.picture("a.jpg");
        library.picture("a2.jpg");
        library.picture("kept/b.jpg");
        library.picture("kept/b2.jpg");
        library.picture("kept/below/c.jpg");
        library.picture("none/later.jpg", noon(2022, 1, 1));
        library.keeps = [&](const std::string &path) {
            asked.push_back(path.substr(library.tree.path().size() + 1));
            return asked.back().starts_with("kept/b") && !asked.back().starts_with("kept/below");
        };
        QCOMPARE(library.found().size(), size_t(3));
        // One of each folder that has a picture of the range.
        QCOMPARE(asked.size(), size_t(3));
    }

    // What the walk keeps of a folder is its path, and what it finds is moved by it.
    void leavesOutWhatNoPathReaches()
    {
        const Library library;
        const std::string shot = "/IMG_20190601_120000.jpg";
        constexpr size_t room = 200;
        std::string folder(room, 'f');
        while (library.tree.path(folder).size() + room + shot.size() < PATH_MAX)
            folder += '/' + std::string(room, 'f');
        std::filesystem::create_directories(library.tree.path(folder));
        library.tree.file(folder + shot);
        const std::string deeper(NAME_MAX, 'd');
        const FileDescriptor last(::open(library.tree.path(folder).c_str(), O_RDONLY | O_DIRECTORY));
        QCOMPARE(::mkdirat(last.number(), deeper.c_str(), 0700), 0);
        const FileDescriptor file(
            ::openat(last.number(), (deeper + shot).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        QVERIFY(file.isOpen());
        QCOMPARE(library.found(), (std::vector<Names>{ { folder + shot } }));
    }

    void folderOfVideosHasNoPictures()
    {
        Library library;
        library.picture("a.jpg");
        library.picture("b.mp4");
        library.picture("Pictures/c.mp4");
        const PhotoWalk::Root videos{ .kinds = { PhotoKind::video },
            .without = { library.tree.path("Pictures") } };
        QCOMPARE(library.found(videos), (std::vector<Names>{ { "b.mp4" } }));
    }

    void placeholdersLieElsewhere()
    {
        Library library;
        library.picture("a.jpg", noon(2019, 6, 1), 5000);
        library.picture("b.jpg.nextcloud", noon(2019, 6, 2), 1);
        library.picture("c.jpg", noon(2019, 6, 3), 0);
        if (::truncate(library.tree.path("c.jpg").c_str(), 7000) != 0)
            qFatal("no hole");
        library.picture("d.jpg", noon(2019, 6, 4));
        touchPicture(library.tree, "c.jpg", noon(2019, 6, 3));
        const auto assets = library.query();
        // One that has been exchanged meanwhile is not read.
        library.picture("other");
        QCOMPARE(::rename(library.tree.path("other").c_str(), library.tree.path("d.jpg").c_str()), 0);
        const auto resource = [&](qsizetype index) { return assets->resources(index).front(); };
        QCOMPARE(resource(0), (PhotoResource{ .fileSize = 5000, .locallyAvailable = true }));
        QCOMPARE(resource(1), (PhotoResource{ .fileSize = 1, .locallyAvailable = false }));
        QCOMPARE(resource(2), (PhotoResource{ .fileSize = 7000, .locallyAvailable = false }));
        QCOMPARE(resource(3), PhotoResource{});
    }

    void stopsWhenToldTo()
    {
        Library library;
        library.picture("a.jpg");
        PhotoWork work;
        PhotoWalk walk(PhotoQuery::ofRange(library.from, library.to, true), library.keeps, work);
        work.isStopped = true;
        QVERIFY(!walk.walk({ .path = library.tree.path() }));
        QCOMPARE(work.done.load(), qsizetype(0));
    }
};

QUILLBROOK_SUITE(TestPhotoWalk, NoApplication)
#include "tst_PhotoWalk.moc"
