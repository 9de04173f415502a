#include "Scan/FastScanner.h"
#include "Support/FakeDirectories.h"
#include "Support/Suite.h"

#include <QTest>

#include <algorithm>
#include <future>
#include <map>
#include <semaphore>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Flags = FileTree::Flags;
using Type = DirectoryRecord::Type;
using Paths = std::vector<std::string>;

constexpr auto limit = 20s;

using Folders = std::map<std::string, std::vector<DirectoryRecord>>;

DirectoryRecord aFolder(std::string_view name)
{
    return FakeDirectories::aFolder(name);
}

DirectoryRecord aFile(std::string_view name, std::int64_t size = 0)
{
    return FakeDirectories::aFile(name, size);
}

DirectoryRecord aMount(std::string_view name)
{
    auto record = aFolder(name);
    record.isMountPoint = true;
    return record;
}

DirectoryRecord elsewhere(DirectoryRecord record)
{
    record.device = FakeDirectories::homeDevice + 1;
    return record;
}

// One of two links to the file with this id.
DirectoryRecord aLinkedFile(std::string_view name, std::uint64_t device, std::uint64_t id)
{
    auto record = aFile(name, 100);
    record.fileDevice = device;
    record.fileId = id;
    record.linkCount = 2;
    return record;
}

FastScanner::Result scanned(FakeDirectories &directories, FastScanner::Request request = { .rootPath = "/r" })
{
    return FastScanner(directories).scan(request);
}

qint32 find(const FastScanner::Result &result, const QString &path)
{
    return result.tree->find(path, result.root);
}

// The tree in index order, each node as "path size flags".
QString nodes(const FastScanner::Result &result)
{
    QStringList lines;
    for (qint32 node = 0; node < result.tree->nodeCount(); ++node)
        lines << u"%1 %2 %3"_s.arg(result.tree->path(node))
                     .arg(result.tree->size(node))
                     .arg(int(result.tree->nodeFlags(node)));
    return lines.join(u", "_s);
}

qsizetype countOf(const FastScanner::Result &result, Flags flag)
{
    return std::ranges::count_if(result.tree->flags(), [&](Flags flags) { return contains(flags, flag); });
}

} // namespace

class TestFastScanner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Flags: 1 folder, 2 link, 4 package, 8 mount point, 16 unreadable, 32 unmeasured.
    void treeTellsWhatTheDiskHolds_data()
    {
        QTest::addColumn<Folders>("folders");
        QTest::addColumn<FastScanner::Request>("request");
        QTest::addColumn<QString>("tree");
        const auto row = [](const char *name, const Folders &folders, const QString &tree,
                             const FastScanner::Request &request = { .rootPath = "/r" }) {
            QTest::newRow(name) << folders << request << tree;
        };
        row("an empty folder", { { "/r", { aFolder("empty") } }, { "/r/empty", {} } },
            u"/r 0 1, /r/empty 0 1"_s);
        row("a root that can't be opened", {}, u"/missing 0 17"_s, { .rootPath = "/missing" });
        row("folders that can't be opened",
            { { "/r", { aFolder("shut"), aFile("f", 5), aFolder("x") } }, { "/r/x", { aFolder("gone") } } },
            u"/r 5 1, /r/shut 0 17, /r/f 5 0, /r/x 0 1, /r/x/gone 0 17"_s);
        row("sizes are added up",
            { { "/r", { aFile("x", 1), aFolder("a"), aFile("y", 20) } },
                { "/r/a", { aFile("z", 4), aFolder("b") } }, { "/r/a/b", { aFile("z", 6) } } },
            u"/r 31 1, /r/x 1 0, /r/a 10 1, /r/y 20 0, /r/a/z 4 0, /r/a/b 6 1, /r/a/b/z 6 0"_s);
        row("a file whose size is not told",
            { { "/r",
                { { .name = "f", .device = FakeDirectories::homeDevice, .isMeasured = false },
                    { .name = "link", .type = Type::symlink, .isMeasured = false }, aFile("g", 5) } } },
            u"/r 5 1, /r/f 0 32, /r/link 0 34, /r/g 5 0"_s);
        row("a linked file counts once",
            { { "/r", { aFolder("a"), aFolder("b") } }, { "/r/a", { aLinkedFile("f", 1, 42) } },
                { "/r/b", { aLinkedFile("f", 1, 42) } } },
            u"/r 100 1, /r/a 0 1, /r/b 100 1, /r/b/f 100 0, /r/a/f 0 0"_s);
        row("a linked file on each of two devices counts twice",
            { { "/r", { aLinkedFile("f", 1, 42), aLinkedFile("g", 2, 42) } } },
            u"/r 200 1, /r/f 100 0, /r/g 100 0"_s);
        row("a linked file without an id counts each time",
            { { "/r", { aLinkedFile("f", 1, 0), aLinkedFile("g", 1, 0) } } },
            u"/r 200 1, /r/f 100 0, /r/g 100 0"_s);
        row("a link is a file of its own size and not entered",
            { { "/r", { { .name = "link", .allocatedSize = 12, .type = Type::symlink } } },
                { "/r/link", { aFile("behind", 100) } } },
            u"/r 12 1, /r/link 12 2"_s);
        row("packages are marked and entered",
            { { "/r",
                  { aFolder("a.app"), aFolder("b.bundle"), aFolder("c.framework"), aFolder("d.xcodeproj"),
                      aFolder("e.photoslibrary"), aFile("file.app", 1) } },
                { "/r/a.app", { aFile("f", 1) } }, { "/r/b.bundle", {} }, { "/r/c.framework", {} },
                { "/r/d.xcodeproj", {} }, { "/r/e.photoslibrary", {} } },
            u"/r 2 1, /r/a.app 1 5, /r/b.bundle 0 5, /r/c.framework 0 5, /r/d.xcodeproj 0 5, "
            "/r/e.photoslibrary 0 5, /r/file.app 1 0, /r/a.app/f 1 0"_s);
        row("no packages",
            { { "/r", { aFolder("a.APP"), aFolder(".app"), aFolder("a.app.d"), aFolder("aapp") } },
                { "/r/a.APP", {} }, { "/r/.app", {} }, { "/r/a.app.d", {} }, { "/r/aapp", {} } },
            u"/r 0 1, /r/a.APP 0 1, /r/.app 0 1, /r/a.app.d 0 1, /r/aapp 0 1"_s);
        row("an entry without a name is dropped",
            { { "/r", { aFile("", 100), aFile("f", 1), aFolder("") } } }, u"/r 1 1, /r/f 1 0"_s);
        const Folders otherDevice{ { "/r", { elsewhere(aFile("f", 100)), elsewhere(aFolder("a")) } },
            { "/r/a", { aFile("behind", 100) } } };
        row("another device", otherDevice, u"/r 0 1, /r/f 0 8, /r/a 0 9"_s);
        row("another device, crossing", otherDevice, u"/r 200 1, /r/f 100 0, /r/a 100 1, /r/a/behind 100 0"_s,
            { .rootPath = "/r", .crossDevices = true });
        const Folders mount{ { "/r", { aMount("m.app") } }, { "/r/m.app", { aFile("behind", 100) } } };
        row("a mount point", mount, u"/r 0 1, /r/m.app 0 13"_s);
        row("a mount point, crossing", mount, u"/r 0 1, /r/m.app 0 13"_s,
            { .rootPath = "/r", .crossDevices = true });
        row("a device that is not told is no boundary",
            { { "/r", { { .name = "f", .allocatedSize = 100 } } } }, u"/r 100 1, /r/f 100 0"_s);
        row("exclusions hold for that folder alone",
            { { "/r", { aFolder("out"), aFolder("outside"), aFile("f", 2) } },
                { "/r/out", { aFile("hidden", 100) } }, { "/r/outside", { aFile("seen", 4) } } },
            u"/r 6 1, /r/out 0 1, /r/outside 4 1, /r/f 2 0, /r/outside/seen 4 0"_s,
            { .rootPath = "/r", .exclusions = { u"/r/out"_s, u"/r/f"_s } });
        row("exclusions compare by canonical equivalence",
            { { "/r", { aFolder("caf\xC3\xA9"), aFolder("bar\xE9") } } },
            u"/r 0 1, /r/caf\u00E9 0 1, /r/bar\uFFFD 0 1"_s,
            { .rootPath = "/r", .exclusions = { u"/r/cafe\u0301"_s, u"/r/bar\uFFFD"_s } });
        row("lists do not apply to the root", { { "/r/home", { aFile("f", 3) } } },
            u"/r/home 3 1, /r/home/f 3 0"_s,
            { .rootPath = "/r/home",
                .exclusions = { u"/r/home"_s },
                .allowlist = { { u"/r"_s, { u"other"_s } } } });
        row("the allowlist restricts only its keys",
            { { "/r", { aFolder("in"), aFolder("out") } }, { "/r/in", { aFolder("any"), aFolder("deep") } },
                { "/r/in/any", { aFile("f", 1) } }, { "/r/in/deep", { aFolder("in"), aFolder("out") } },
                { "/r/in/deep/in", { aFile("f", 2) } }, { "/r/in/deep/out", { aFile("f", 4) } },
                { "/r/out", { aFile("f", 8) } } },
            u"/r 3 1, /r/in 3 1, /r/out 0 1, /r/in/any 1 1, /r/in/deep 2 1, /r/in/deep/in 2 1, "
            "/r/in/deep/out 0 1, /r/in/deep/in/f 2 0, /r/in/any/f 1 0"_s,
            { .rootPath = "/r",
                .allowlist = { { u"/r"_s, { u"in"_s } }, { u"/r/in/deep"_s, { u"in"_s, u"missing"_s } } } });
        row("an empty allowed set still measures files",
            { { "/r", { aFile("f", 3), aFolder("a") } }, { "/r/a", { aFile("g", 5) } } },
            u"/r 3 1, /r/f 3 0, /r/a 0 1"_s, { .rootPath = "/r", .allowlist = { { u"/r"_s, {} } } });
        row("the quiet scope",
            { { "/h", { aFile("notes", 3), aFolder("Documents"), aFolder(".cache") } },
                { "/h/Documents", { aFile("letter", 100) } }, { "/h/.cache", { aFile("thing", 5) } } },
            u"/h 8 1, /h/notes 3 0, /h/Documents 0 1, /h/.cache 5 1, /h/.cache/thing 5 0"_s,
            { .rootPath = "/h", .allowlist = FastScanner::quietAllowlist(u"/h"_s) });
        row("the root of the disk",
            { { "/", { aFolder("home"), aFolder("usr") } }, { "/home", { aFile("f", 100) } },
                { "/usr", { aFile("f", 5) } } },
            u"/ 5 1, /home 0 1, /usr 5 1, /usr/f 5 0"_s,
            { .rootPath = "/", .exclusions = FastScanner::defaultExclusions() });
        row("names that are not text",
            { { "/r", { aFolder("caf\xE9"), aFolder("line\nfeed") } },
                { "/r/caf\xE9", { aFile("f\xFF", 3) } }, { "/r/line\nfeed", { aFile("g", 5) } } },
            u"/r 8 1, /r/caf\uFFFD 3 1, /r/line\nfeed 5 1, /r/line\nfeed/g 5 0, /r/caf\uFFFD/f\uFFFD 3 0"_s);
        row("a root whose name is not text",
            { { "/caf\xE9", { aFolder("in"), aFolder("out") } }, { "/caf\xE9/in", { aFile("f", 3) } },
                { "/caf\xE9/out", { aFile("f", 5) } } },
            u"/caf\uFFFD 3 1, /caf\uFFFD/in 3 1, /caf\uFFFD/out 0 1, /caf\uFFFD/in/f 3 0"_s,
            { .rootPath = "/caf\xE9", .allowlist = { { u"/caf\uFFFD"_s, { u"in"_s } } } });
    }

    void treeTellsWhatTheDiskHolds()
    {
        QFETCH(Folders, folders);
        QFETCH(FastScanner::Request, request);
        for (const size_t recordsPerRead : { 1, 1000 }) {
            FakeDirectories directories;
            directories.recordsPerRead = recordsPerRead;
            if (folders.empty())
                directories.rootDevice = std::nullopt;
            for (const auto &[path, records] : folders)
                directories.folder(path, records);
            FastScanner scanner(directories);
            const auto result = scanner.scan(request);
            QTEST(nodes(result), "tree");
            QVERIFY(result.duration >= 0);
            QCOMPARE(result.root, 0);
            QCOMPARE(result.tree->dirCount(), countOf(result, Flags::directory));
            QCOMPARE(result.unreadableDirectories, countOf(result, Flags::unreadable));
            QCOMPARE(result.unmeasuredFiles, countOf(result, Flags::unmeasured));
            const auto fenced = std::ranges::count(result.tree->flags(), Flags::mountPoint);
            QCOMPARE(scanner.progress(),
                (FastScanner::Progress{
                    .filesSeen = result.tree->fileCount() - fenced, .bytesSeen = result.tree->size(0) }));
        }
    }

    void rootPathIsStandardised_data()
    {
        QTest::addColumn<QString>("asked");
        QTest::addColumn<QString>("root");
        QTest::newRow("file system root") << u"/"_s << u"/"_s;
        QTest::newRow("trailing slash") << u"/r/"_s << u"/r"_s;
        QTest::newRow("dots") << u"/x/./../r"_s << u"/r"_s;
        QTest::newRow("home") << u"~"_s << u"/home/someone"_s;
        QTest::newRow("below home") << u"~/x/"_s << u"/home/someone/x"_s;
        QTest::newRow("slashes only") << u"//"_s << u"/"_s;
    }

    void rootPathIsStandardised()
    {
        QFETCH(QString, asked);
        QFETCH(QString, root);
        FakeDirectories directories;
        directories.folder(root.toStdString(), { aFile("f", 3) });
        const auto result
            = scanned(directories, { .rootPath = asked.toStdString(), .home = "/home/someone" });
        QCOMPARE(nodes(result), u"%1 3 1, %2/f 3 0"_s.arg(root, root == u"/" ? QString() : root));
    }

    void childrenAreSortedBySize()
    {
        FakeDirectories directories;
        directories.folder(
            "/r", { aFile("small", 1), aFolder("a"), aFile("large", 20), aFile("also small", 1) });
        directories.folder("/r/a", { aFile("x", 10) });
        const auto result = scanned(directories);
        QStringList names;
        for (const auto child : result.tree->children(result.root))
            names << result.tree->name(child);
        QCOMPARE(names, (QStringList{ u"large"_s, u"a"_s, u"also small"_s, u"small"_s }));
    }

    void threadCountIsClamped_data()
    {
        QTest::addColumn<int>("asked");
        QTest::addColumn<int>("readers");
        QTest::newRow("none") << 0 << 1;
        QTest::newRow("negative") << -5 << 1;
        QTest::newRow("some") << 3 << 3;
        QTest::newRow("most") << 32 << 32;
        QTest::newRow("more") << 100 << 32;
    }

    void threadCountIsClamped()
    {
        QFETCH(int, asked);
        QFETCH(int, readers);
        FakeDirectories directories;
        directories.folder("/r", {});
        std::ignore = scanned(directories, { .rootPath = "/r", .threads = asked });
        QCOMPARE(directories.readersMade(), readers);
    }

    void twoChildrenStayWithTheirWorkerAndTheRestGoesNewestFirst()
    {
        FakeDirectories directories;
        directories.folder("/r", { aFolder("a"), aFolder("b"), aFolder("c"), aFolder("d") });
        for (const auto *path : { "/r/a", "/r/c", "/r/d" })
            directories.folder(path, {});
        directories.folder("/r/b", { aFolder("x"), aFolder("y"), aFolder("z") });
        for (const auto *path : { "/r/b/x", "/r/b/y", "/r/b/z" })
            directories.folder(path, {});
        std::ignore = scanned(directories);
        QCOMPARE(directories.opened(),
            (Paths{ "/r", "/r/b", "/r/b/y", "/r/b/x", "/r/a", "/r/b/z", "/r/d", "/r/c" }));
    }

    void cancelWakesWaitingWorkersAndLeavesAPartialTree()
    {
        constexpr int threads = 8;
        FakeDirectories directories;
        directories.folder("/r", { aFile("f", 3), aFolder("a"), aFolder("b"), aFolder("c"), aFolder("d") });
        std::binary_semaphore arrived(0);
        std::binary_semaphore mayGoOn(0);
        directories.beforeOpen = [&](const std::string &) {
            arrived.release();
            mayGoOn.acquire();
        };
        FastScanner scanner(directories);
        auto scan = std::async(
            std::launch::async, [&] { return scanner.scan({ .rootPath = "/r", .threads = threads }); });
        const bool blocked = arrived.try_acquire_for(limit) && directories.waitForReaders(threads);
        scanner.cancel();
        const bool othersLeft = directories.waitForEndedReaders(threads - 1);
        mayGoOn.release();
        QVERIFY(scan.wait_for(limit) == std::future_status::ready);
        QVERIFY(blocked);
        QVERIFY(othersLeft);
        const auto result = scan.get();
        QCOMPARE(result.tree->nodeCount(), 6);
        QCOMPARE(result.tree->size(0), 3);
        QCOMPARE(directories.opened(), Paths{ "/r" });
    }

    void cancelDropsTheJobsThatAWorkerKept()
    {
        FakeDirectories directories;
        directories.folder("/r", { aFolder("a"), aFolder("b") });
        directories.folder("/r/a", { aFile("f", 3) });
        directories.folder("/r/b", { aFile("g", 5) });
        FastScanner scanner(directories);
        directories.beforeOpen = [&](const std::string &path) {
            if (path == "/r/b")
                scanner.cancel();
        };
        const auto result = scanner.scan({ .rootPath = "/r" });
        QCOMPARE(directories.opened(), (Paths{ "/r", "/r/b" }));
        QCOMPARE(result.tree->size(0), 5);
        QCOMPARE(result.unreadableDirectories, 0);
    }

    void stopBeforeTheScanReadsNothing()
    {
        std::stop_source stop;
        stop.request_stop();
        for (const auto threads : { 1, 8 }) {
            FakeDirectories directories;
            directories.folder("/r", { aFile("f", 3) });
            FastScanner scanner(directories);
            const auto result
                = scanner.scan({ .rootPath = "/r", .threads = threads, .stop = stop.get_token() });
            QCOMPARE(directories.opened(), Paths());
            QCOMPARE(result.tree->nodeCount(), 1);
        }
    }

    void scannerServesAgainAfterACancel()
    {
        FakeDirectories directories;
        directories.folder("/r", { aFile("f", 3), aFolder("gone") });
        FastScanner scanner(directories);
        directories.beforeOpen = [&](const std::string &) { scanner.cancel(); };
        std::ignore = scanner.scan({ .rootPath = "/r" });
        QCOMPARE(scanner.progress().filesSeen, 1);
        directories.beforeOpen = {};
        const auto result = scanner.scan({ .rootPath = "/r", .threads = 2 });
        QCOMPARE(result.tree->size(0), 3);
        QCOMPARE(result.unreadableDirectories, 1);
        QCOMPARE(scanner.progress(),
            (FastScanner::Progress{ .filesSeen = 1, .bytesSeen = 3, .directoriesQueued = 0 }));
        const auto again = scanner.scan({ .rootPath = "/r" });
        QCOMPARE(again.unreadableDirectories, 1);
        QCOMPARE(scanner.progress().filesSeen, 1);
        QCOMPARE(result.tree->nodeCount(), 3);
    }

    void progressCountsWhileTheScanRuns()
    {
        FakeDirectories directories;
        directories.folder("/r", { aFile("f", 3), aFolder("a"), aFolder("b"), aFolder("c"), aFolder("d") });
        directories.folder("/r/b", { aFile("g", 5) });
        for (const auto *path : { "/r/a", "/r/c", "/r/d" })
            directories.folder(path, {});
        FastScanner scanner(directories);
        QCOMPARE(scanner.progress(), FastScanner::Progress{});
        std::vector<FastScanner::Progress> seen;
        directories.beforeOpen = [&](const std::string &) { seen.push_back(scanner.progress()); };
        std::ignore = scanner.scan({ .rootPath = "/r" });
        const std::vector<FastScanner::Progress> expected{
            { .filesSeen = 0, .bytesSeen = 0, .directoriesQueued = 0 },
            { .filesSeen = 1, .bytesSeen = 3, .directoriesQueued = 2 },
            { .filesSeen = 2, .bytesSeen = 8, .directoriesQueued = 2 },
            { .filesSeen = 2, .bytesSeen = 8, .directoriesQueued = 1 },
            { .filesSeen = 2, .bytesSeen = 8, .directoriesQueued = 0 },
        };
        QVERIFY(seen == expected);
    }

    void manyWorkersBuildTheSameTree()
    {
        FakeDirectories directories;
        std::vector<DirectoryRecord> few{ aFile("one", 1), aFile("two", 2) };
        std::vector<DirectoryRecord> many{ aFolder("a"), aFolder("b"), aFolder("c"), aFolder("d"),
            aFile("f", 4) };
        Paths level{ "/r" };
        for (int depth = 0; depth < 5; ++depth) {
            Paths below;
            for (const auto &path : level) {
                directories.folder(path, many);
                for (const auto *name : { "/a", "/b", "/c", "/d" })
                    below.push_back(path + name);
            }
            level = below;
        }
        for (const auto &path : level)
            directories.folder(path, few);
        const auto result = scanned(directories, { .rootPath = "/r", .threads = 16 });
        const qsizetype inner = 1 + 4 + 16 + 64 + 256;
        QCOMPARE(result.tree->dirCount(), inner + 1024);
        QCOMPARE(result.tree->fileCount(), inner + 2 * 1024);
        QCOMPARE(result.tree->size(0), 4 * inner + 3 * 1024);
        QCOMPARE(directories.opened().size(), size_t(inner + 1024));
        for (qint32 node = 1; node < result.tree->nodeCount(); ++node)
            QVERIFY(result.tree->parent()[size_t(node)] < node);
        QVERIFY(find(result, u"/r/d/c/b/a/d/two"_s) != FileTree::noNode);
    }
};

QUILLBROOK_SUITE(TestFastScanner, QCoreApplication)
#include "tst_FastScanner.moc"
