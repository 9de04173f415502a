#include "Scan/FastScanner.h"
#include "Support/FakeDirectories.h"

#include <QTest>

#include <future>
#include <semaphore>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Flags = FileTree::Flags;
using Type = DirectoryRecord::Type;
using Paths = std::vector<std::string>;

constexpr auto limit = 20s;

DirectoryRecord aFolder(std::string_view name)
{
    return FakeDirectories::aFolder(name);
}

DirectoryRecord aFile(std::string_view name, std::int64_t size = 0)
{
    return FakeDirectories::aFile(name, size);
}

FastScanner::Result scanned(FakeDirectories &directories, FastScanner::Request request = { .rootPath = "/r" })
{
    return FastScanner(directories).scan(request);
}

qint32 find(const FastScanner::Result &result, const QString &path)
{
    return result.tree->find(path, result.root);
}

// The tree in index order, as "path size flags".
QStringList nodes(const FastScanner::Result &result)
{
    QStringList lines;
    for (qint32 node = 0; node < result.tree->nodeCount(); ++node)
        lines << u"%1 %2 %3"_s.arg(result.tree->path(node))
                     .arg(result.tree->size(node))
                     .arg(int(result.tree->nodeFlags(node)));
    return lines;
}

} // namespace

class TestFastScanner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyFolderIsANodeWithoutChildren();
    void rootThatCannotBeOpenedGivesOneUnreadableNode();
    void rootPathIsStandardised_data();
    void rootPathIsStandardised();
    void sizesAreRolledUpAndSorted();
    void recordsOfSeveralReadsAreJoined();
    void unreadableFolderIsMarkedAndCounted();
    void hardLinksCountOnce();
    void sameFileIdOnAnotherDeviceCounts();
    void fileWithoutAnIdAlwaysCounts();
    void linkIsAFileOfItsOwnSizeAndNotEntered();
    void packagesAreMarkedAndEntered_data();
    void packagesAreMarkedAndEntered();
    void entryWithoutANameIsDropped();
    void otherDeviceIsListedButNeitherMeasuredNorEntered();
    void otherDeviceIsMeasuredWhenCrossingIsAllowed();
    void mountPointIsNeverEntered_data();
    void mountPointIsNeverEntered();
    void deviceThatIsNotToldIsNoBoundary();
    void exclusionHoldsForFoldersAlone();
    void exclusionsCompareByCanonicalEquivalence();
    void listsDoNotApplyToTheRoot();
    void allowlistRestrictsOnlyItsKeys();
    void emptyAllowedSetStillMeasuresFiles();
    void quietScopeMeasuresFilesOfTheHomeAndNotItsDocuments();
    void namesThatAreNotTextAreOpenedRaw();
    void folderNamedWithTheWholePathOfTheFileSystemRoot();
    void threadCountIsClamped_data();
    void threadCountIsClamped();
    void twoChildrenStayWithTheirWorkerAndTheRestGoesNewestFirst();
    void cancelWakesWaitingWorkersAndLeavesAPartialTree();
    void cancelDropsTheJobsThatAWorkerKept();
    void scannerServesAgainAfterACancel();
    void progressCountsWhileTheScanRuns();
    void manyWorkersBuildTheSameTree();
};

void TestFastScanner::emptyFolderIsANodeWithoutChildren()
{
    FakeDirectories directories;
    directories.folder("/r", { aFolder("empty") });
    directories.folder("/r/empty", {});
    const auto result = scanned(directories, { .rootPath = "/r", .threads = 4 });
    QCOMPARE(nodes(result), (QStringList{ u"/r 0 1"_s, u"/r/empty 0 1"_s }));
    QCOMPARE(result.tree->children(1), QList<qint32>());
    QCOMPARE(result.unreadableDirectories, 0);
    QVERIFY(result.duration >= 0);
}

void TestFastScanner::rootThatCannotBeOpenedGivesOneUnreadableNode()
{
    FakeDirectories directories;
    directories.rootDevice = std::nullopt;
    const auto result = scanned(directories, { .rootPath = "/missing" });
    QCOMPARE(nodes(result), QStringList{ u"/missing 0 17"_s });
    QCOMPARE(result.root, 0);
    QCOMPARE(result.unreadableDirectories, 1);
}

void TestFastScanner::rootPathIsStandardised_data()
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

void TestFastScanner::rootPathIsStandardised()
{
    QFETCH(QString, asked);
    QFETCH(QString, root);
    FakeDirectories directories;
    directories.folder(root.toStdString(), { aFile("f", 3) });
    const auto result = scanned(directories, { .rootPath = asked.toStdString(), .home = "/home/someone" });
    QCOMPARE(result.tree->path(result.root), root);
    QCOMPARE(result.tree->size(result.root), 3);
    QCOMPARE(result.tree->path(1), (root == u"/" ? QString() : root) + u"/f"_s);
}

void TestFastScanner::sizesAreRolledUpAndSorted()
{
    FakeDirectories directories;
    directories.folder("/r", { aFile("small", 1), aFolder("a"), aFile("large", 20), aFile("also small", 1) });
    directories.folder("/r/a", { aFile("x", 4), aFolder("b") });
    directories.folder("/r/a/b", { aFile("y", 6) });
    const auto result = scanned(directories);
    QCOMPARE(result.tree->size(result.root), 32);
    QCOMPARE(result.tree->size(find(result, u"/r/a"_s)), 10);
    QStringList names;
    for (const auto child : result.tree->children(result.root))
        names << result.tree->name(child);
    QCOMPARE(names, (QStringList{ u"large"_s, u"a"_s, u"also small"_s, u"small"_s }));
    QCOMPARE(result.tree->fileCount(), 5);
    QCOMPARE(result.tree->dirCount(), 3);
}

void TestFastScanner::recordsOfSeveralReadsAreJoined()
{
    FakeDirectories directories;
    directories.recordsPerRead = 2;
    directories.folder("/r", { aFile("a", 1), aFile("b", 2), aFile("c", 4), aFolder("d"), aFile("e", 8) });
    directories.folder("/r/d", { aFile("f", 16) });
    const auto result = scanned(directories);
    QCOMPARE(result.tree->size(result.root), 31);
    QCOMPARE(nodes(result),
        (QStringList{ u"/r 31 1"_s, u"/r/a 1 0"_s, u"/r/b 2 0"_s, u"/r/c 4 0"_s, u"/r/d 16 1"_s,
            u"/r/e 8 0"_s, u"/r/d/f 16 0"_s }));
}

void TestFastScanner::unreadableFolderIsMarkedAndCounted()
{
    FakeDirectories directories;
    directories.folder("/r", { aFolder("shut"), aFolder("gone"), aFile("f", 5) });
    directories.folder("/r/shut", { aFile("hidden", 100) });
    directories.closed = { "/r/shut" };
    const auto result = scanned(directories);
    QCOMPARE(result.unreadableDirectories, 2);
    QCOMPARE(result.tree->size(result.root), 5);
    QCOMPARE(result.tree->nodeFlags(find(result, u"/r/shut"_s)), Flags::directory | Flags::unreadable);
    QCOMPARE(result.tree->nodeFlags(find(result, u"/r/gone"_s)), Flags::directory | Flags::unreadable);
    QCOMPARE(find(result, u"/r/shut/hidden"_s), FileTree::noNode);
}

void TestFastScanner::hardLinksCountOnce()
{
    FakeDirectories directories;
    auto link = aFile("link", 100);
    link.fileDevice = 1;
    link.fileId = 42;
    link.linkCount = 2;
    directories.folder("/r", { aFolder("a"), aFolder("b") });
    directories.folder("/r/a", { link });
    directories.folder("/r/b", { link });
    FastScanner scanner(directories);
    const auto result = scanner.scan({ .rootPath = "/r" });
    QCOMPARE(result.tree->size(result.root), 100);
    QVERIFY(find(result, u"/r/a/link"_s) != FileTree::noNode);
    QVERIFY(find(result, u"/r/b/link"_s) != FileTree::noNode);
    QCOMPARE(scanner.progress().filesSeen, 2);
    QCOMPARE(scanner.progress().bytesSeen, 100);
}

void TestFastScanner::sameFileIdOnAnotherDeviceCounts()
{
    FakeDirectories directories;
    auto one = aFile("one", 100);
    one.fileDevice = 1;
    one.fileId = 42;
    one.linkCount = 2;
    auto other = one;
    other.name = "other";
    other.fileDevice = 2;
    directories.folder("/r", { one, other });
    QCOMPARE(scanned(directories).tree->size(0), 200);
}

void TestFastScanner::fileWithoutAnIdAlwaysCounts()
{
    FakeDirectories directories;
    auto file = aFile("one", 100);
    file.linkCount = 2;
    auto other = file;
    other.name = "other";
    directories.folder("/r", { file, other });
    QCOMPARE(scanned(directories).tree->size(0), 200);
}

void TestFastScanner::linkIsAFileOfItsOwnSizeAndNotEntered()
{
    FakeDirectories directories;
    auto link = aFile("link", 12);
    link.type = Type::symlink;
    directories.folder("/r", { link });
    directories.folder("/r/link", { aFile("behind", 100) });
    const auto result = scanned(directories);
    QCOMPARE(nodes(result), (QStringList{ u"/r 12 1"_s, u"/r/link 12 2"_s }));
    QCOMPARE(result.tree->fileCount(), 1);
    QCOMPARE(directories.opened(), Paths{ "/r" });
}

void TestFastScanner::packagesAreMarkedAndEntered_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isPackage");
    QTest::newRow("app") << QByteArray("Foo.app") << true;
    QTest::newRow("bundle") << QByteArray("x.bundle") << true;
    QTest::newRow("framework") << QByteArray("x.framework") << true;
    QTest::newRow("project") << QByteArray("x.xcodeproj") << true;
    QTest::newRow("photo library") << QByteArray("x.photoslibrary") << true;
    QTest::newRow("another case") << QByteArray("Foo.APP") << false;
    QTest::newRow("suffix alone") << QByteArray(".app") << false;
    QTest::newRow("suffix inside") << QByteArray("Foo.app.d") << false;
    QTest::newRow("no dot") << QByteArray("Fooapp") << false;
}

void TestFastScanner::packagesAreMarkedAndEntered()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, isPackage);
    FakeDirectories directories;
    const auto path = "/r/" + name.toStdString();
    auto file = aFile("file.app", 1);
    directories.folder("/r", { aFolder({ name.data(), size_t(name.size()) }) });
    directories.folder(path, { file });
    const auto result = scanned(directories);
    QCOMPARE(contains(result.tree->nodeFlags(1), Flags::package), isPackage);
    QCOMPARE(result.tree->size(1), 1);
    QCOMPARE(result.tree->nodeFlags(2), Flags::none);
}

void TestFastScanner::entryWithoutANameIsDropped()
{
    FakeDirectories directories;
    directories.folder("/r", { aFile("", 100), aFile("f", 1), aFolder("") });
    FastScanner scanner(directories);
    const auto result = scanner.scan({ .rootPath = "/r" });
    QCOMPARE(nodes(result), (QStringList{ u"/r 1 1"_s, u"/r/f 1 0"_s }));
    QCOMPARE(scanner.progress().filesSeen, 1);
}

void TestFastScanner::otherDeviceIsListedButNeitherMeasuredNorEntered()
{
    FakeDirectories directories;
    auto file = aFile("file", 100);
    auto folder = aFolder("folder");
    file.device = folder.device = FakeDirectories::homeDevice + 1;
    directories.folder("/r", { file, folder });
    directories.folder("/r/folder", { aFile("behind", 100) });
    FastScanner scanner(directories);
    const auto result = scanner.scan({ .rootPath = "/r" });
    QCOMPARE(nodes(result), (QStringList{ u"/r 0 1"_s, u"/r/file 0 8"_s, u"/r/folder 0 9"_s }));
    QCOMPARE(scanner.progress().filesSeen, 0);
    QCOMPARE(directories.opened(), Paths{ "/r" });
}

void TestFastScanner::otherDeviceIsMeasuredWhenCrossingIsAllowed()
{
    FakeDirectories directories;
    auto file = aFile("file", 100);
    auto folder = aFolder("folder");
    file.device = folder.device = FakeDirectories::homeDevice + 1;
    directories.folder("/r", { file, folder });
    directories.folder("/r/folder", { aFile("behind", 100) });
    const auto result = scanned(directories, { .rootPath = "/r", .crossDevices = true });
    QCOMPARE(nodes(result),
        (QStringList{
            u"/r 200 1"_s, u"/r/file 100 0"_s, u"/r/folder 100 1"_s, u"/r/folder/behind 100 0"_s }));
}

void TestFastScanner::mountPointIsNeverEntered_data()
{
    QTest::addColumn<bool>("crossDevices");
    QTest::newRow("staying") << false;
    QTest::newRow("crossing") << true;
}

void TestFastScanner::mountPointIsNeverEntered()
{
    QFETCH(bool, crossDevices);
    FakeDirectories directories;
    auto mount = aFolder("Mount.app");
    mount.isMountPoint = true;
    directories.folder("/r", { mount });
    directories.folder("/r/Mount.app", { aFile("behind", 100) });
    const auto result = scanned(directories, { .rootPath = "/r", .crossDevices = crossDevices });
    QCOMPARE(result.tree->nodeCount(), 2);
    QCOMPARE(result.tree->nodeFlags(1), Flags::directory | Flags::package | Flags::mountPoint);
    QCOMPARE(result.unreadableDirectories, 0);
}

void TestFastScanner::deviceThatIsNotToldIsNoBoundary()
{
    FakeDirectories directories;
    auto file = aFile("file", 100);
    file.device = 0;
    directories.folder("/r", { file });
    QCOMPARE(scanned(directories).tree->size(0), 100);
}

void TestFastScanner::exclusionHoldsForFoldersAlone()
{
    FakeDirectories directories;
    directories.folder("/r", { aFolder("out"), aFolder("outside"), aFile("file", 2) });
    directories.folder("/r/out", { aFile("hidden", 100) });
    directories.folder("/r/outside", { aFile("seen", 4) });
    const auto result
        = scanned(directories, { .rootPath = "/r", .exclusions = { u"/r/out"_s, u"/r/file"_s } });
    QCOMPARE(nodes(result),
        (QStringList{
            u"/r 6 1"_s, u"/r/out 0 1"_s, u"/r/outside 4 1"_s, u"/r/file 2 0"_s, u"/r/outside/seen 4 0"_s }));
    QCOMPARE(result.unreadableDirectories, 0);
}

void TestFastScanner::exclusionsCompareByCanonicalEquivalence()
{
    FakeDirectories directories;
    directories.folder("/r", { aFolder("caf\xC3\xA9"), aFolder("bar\xE9") });
    const auto result
        = scanned(directories, { .rootPath = "/r", .exclusions = { u"/r/cafe\u0301"_s, u"/r/bar\uFFFD"_s } });
    QCOMPARE(directories.opened(), Paths{ "/r" });
    QCOMPARE(result.unreadableDirectories, 0);
}

void TestFastScanner::listsDoNotApplyToTheRoot()
{
    FakeDirectories directories;
    directories.folder("/r/home", { aFile("f", 3) });
    const auto result = scanned(directories,
        { .rootPath = "/r/home",
            .exclusions = { u"/r/home"_s },
            .allowlist = { { u"/r"_s, { u"other"_s } } } });
    QCOMPARE(result.tree->size(0), 3);
}

void TestFastScanner::allowlistRestrictsOnlyItsKeys()
{
    FakeDirectories directories;
    directories.folder("/r", { aFolder("in"), aFolder("out") });
    directories.folder("/r/in", { aFolder("any"), aFolder("deep") });
    directories.folder("/r/in/any", { aFile("f", 1) });
    directories.folder("/r/in/deep", { aFolder("in"), aFolder("out") });
    directories.folder("/r/in/deep/in", { aFile("f", 2) });
    directories.folder("/r/in/deep/out", { aFile("f", 4) });
    directories.folder("/r/out", { aFile("f", 8) });
    const auto result = scanned(directories,
        { .rootPath = "/r",
            .allowlist = { { u"/r"_s, { u"in"_s } }, { u"/r/in/deep"_s, { u"in"_s, u"missing"_s } } } });
    QCOMPARE(result.tree->size(0), 3);
    QCOMPARE(result.tree->nodeFlags(find(result, u"/r/out"_s)), Flags::directory);
    QCOMPARE(result.tree->children(find(result, u"/r/in/deep/out"_s)), QList<qint32>());
    QCOMPARE(result.unreadableDirectories, 0);
}

void TestFastScanner::emptyAllowedSetStillMeasuresFiles()
{
    FakeDirectories directories;
    directories.folder("/r", { aFile("f", 3), aFolder("a") });
    directories.folder("/r/a", { aFile("g", 5) });
    const auto result = scanned(directories, { .rootPath = "/r", .allowlist = { { u"/r"_s, {} } } });
    QCOMPARE(nodes(result), (QStringList{ u"/r 3 1"_s, u"/r/f 3 0"_s, u"/r/a 0 1"_s }));
}

void TestFastScanner::quietScopeMeasuresFilesOfTheHomeAndNotItsDocuments()
{
    FakeDirectories directories;
    directories.folder("/h", { aFile("notes", 3), aFolder("Documents"), aFolder(".cache") });
    directories.folder("/h/Documents", { aFile("letter", 100) });
    directories.folder("/h/.cache", { aFile("thing", 5) });
    const auto result
        = scanned(directories, { .rootPath = "/h", .allowlist = FastScanner::quietAllowlist(u"/h"_s) });
    QCOMPARE(result.tree->size(0), 8);
    const auto documents = find(result, u"/h/Documents"_s);
    QVERIFY(result.tree->isDirectory(documents));
    QCOMPARE(result.tree->size(documents), 0);
}

void TestFastScanner::namesThatAreNotTextAreOpenedRaw()
{
    FakeDirectories directories;
    directories.folder("/r", { aFolder("caf\xE9"), aFolder("line\nfeed") });
    directories.folder("/r/caf\xE9", { aFile("f\xFF", 3) });
    directories.folder("/r/line\nfeed", { aFile("g", 5) });
    const auto result = scanned(directories);
    QCOMPARE(result.unreadableDirectories, 0);
    QCOMPARE(result.tree->size(0), 8);
    QCOMPARE(result.tree->rawPath(find(result, u"/r/caf\uFFFD/f\uFFFD"_s)), std::string("/r/caf\xE9/f\xFF"));
}

void TestFastScanner::folderNamedWithTheWholePathOfTheFileSystemRoot()
{
    FakeDirectories directories;
    directories.folder("/", { aFolder("home"), aFolder("usr") });
    directories.folder("/home", { aFile("f", 100) });
    directories.folder("/usr", { aFile("f", 5) });
    const auto result
        = scanned(directories, { .rootPath = "/", .exclusions = FastScanner::defaultExclusions() });
    QCOMPARE(directories.opened(), (Paths{ "/", "/usr" }));
    QCOMPARE(result.tree->size(0), 5);
    QCOMPARE(result.tree->path(3), u"/usr/f"_s);
}

void TestFastScanner::threadCountIsClamped_data()
{
    QTest::addColumn<int>("asked");
    QTest::addColumn<int>("readers");
    QTest::newRow("none") << 0 << 1;
    QTest::newRow("negative") << -5 << 1;
    QTest::newRow("some") << 3 << 3;
    QTest::newRow("most") << 32 << 32;
    QTest::newRow("more") << 100 << 32;
}

void TestFastScanner::threadCountIsClamped()
{
    QFETCH(int, asked);
    QFETCH(int, readers);
    FakeDirectories directories;
    directories.folder("/r", {});
    std::ignore = scanned(directories, { .rootPath = "/r", .threads = asked });
    QCOMPARE(directories.readersMade(), readers);
}

void TestFastScanner::twoChildrenStayWithTheirWorkerAndTheRestGoesNewestFirst()
{
    FakeDirectories directories;
    directories.folder("/r", { aFolder("a"), aFolder("b"), aFolder("c"), aFolder("d") });
    for (const auto *path : { "/r/a", "/r/c", "/r/d" })
        directories.folder(path, {});
    directories.folder("/r/b", { aFolder("x"), aFolder("y"), aFolder("z") });
    for (const auto *path : { "/r/b/x", "/r/b/y", "/r/b/z" })
        directories.folder(path, {});
    std::ignore = scanned(directories);
    QCOMPARE(
        directories.opened(), (Paths{ "/r", "/r/b", "/r/b/y", "/r/b/x", "/r/a", "/r/b/z", "/r/d", "/r/c" }));
}

void TestFastScanner::cancelWakesWaitingWorkersAndLeavesAPartialTree()
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

void TestFastScanner::cancelDropsTheJobsThatAWorkerKept()
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

void TestFastScanner::scannerServesAgainAfterACancel()
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

void TestFastScanner::progressCountsWhileTheScanRuns()
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

void TestFastScanner::manyWorkersBuildTheSameTree()
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

QTEST_GUILESS_MAIN(TestFastScanner)
#include "tst_FastScanner.moc"
