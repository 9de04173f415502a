// The scanner on real files, read the way Linux reads them.

#include "Support/DiskScan.h"
#include "Support/HookedDirectories.h"
#include "Support/Suite.h"

#include <QFileInfo>
#include <QTest>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <set>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Flags = FileTree::Flags;

// The raw names directly in the root, each as often as it occurs.
std::multiset<std::string> namesInRoot(const FastScanner::Result &result)
{
    std::multiset<std::string> names;
    for (const auto child : result.tree->children(result.root))
        names.emplace(result.tree->rawName(child));
    return names;
}

// A chain of folders below an open one, longer than any path may be; returns the last one open.
int makeChain(int folder, int levels, const std::string &name)
{
    int current = ::dup(folder);
    for (int level = 0; level < levels; ++level) {
        ::mkdirat(current, name.c_str(), 0755);
        const int next = ::openat(current, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(current);
        current = next;
    }
    return current;
}

qint64 writeFileAt(int folder, const char *name, size_t bytes)
{
    const int file = ::openat(folder, name, O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    const std::string content(bytes, 'q');
    struct stat status
    {
    };
    const bool written
        = ::write(file, content.data(), bytes) == ssize_t(bytes) && ::fstat(file, &status) == 0;
    ::close(file);
    return written ? qint64{ status.st_blocks } * 512 : -1;
}

} // namespace

class TestScanOnDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void totalIsTheSumOfAllAllocatedSizes()
    {
        const TempTree tree;
        tree.file("a/small", 100);
        tree.file("a/b/large", 100000);
        tree.file("top", 5000);
        const auto result = scanned(tree);
        QCOMPARE(result.unreadableDirectories, 0);
        QCOMPARE(result.tree->nodeCount(), 6);
        QCOMPARE(result.tree->fileCount(), 3);
        QCOMPARE(
            result.total(), tree.allocated("a/small") + tree.allocated("a/b/large") + tree.allocated("top"));
        QCOMPARE(result.sizeOf("a/b/large"), tree.allocated("a/b/large"));
    }

    void rootThatIsNoFolderGivesOneUnreadableNode_data()
    {
        QTest::addColumn<QString>("root");
        for (const auto *root : { "missing", "file", "loop" })
            QTest::newRow(root) << QString::fromLatin1(root);
    }

    void rootThatIsNoFolderGivesOneUnreadableNode()
    {
        QFETCH(QString, root);
        const TempTree tree;
        tree.file("file", 100);
        tree.link("loop", "loop");
        const auto result = scanned(tree, root.toStdString());
        QCOMPARE(result.tree->nodeCount(), 1);
        QCOMPARE(result.unreadableDirectories, 1);
        QCOMPARE(result.total(), 0);
        QCOMPARE(result.tree->nodeFlags(0), Flags::directory | Flags::unreadable);
    }

    void rootThatIsALinkIsFollowed()
    {
        const TempTree tree;
        tree.file("real/a/file", 100);
        tree.link("link", "real");
        const auto result = scanned(tree, "link");
        QCOMPARE(result.unreadableDirectories, 0);
        QCOMPARE(result.tree->path(result.root), tree.text("link"));
        QCOMPARE(result.sizeOf("link/a/file"), tree.allocated("real/a/file"));
    }

    void rootWhoseNameIsNotTextIsMeasured()
    {
        const TempTree tree;
        tree.file("caf\xE9/b\xFF/file", 100);
        const auto result = scanned(tree, "caf\xE9");
        QCOMPARE(result.unreadableDirectories, 0);
        QCOMPARE(result.total(), tree.allocated("caf\xE9/b\xFF/file"));
        QCOMPARE(result.tree->rawPath(2), tree.path("caf\xE9/b\xFF/file"));
    }

    void fileSystemRootIsReadAndItsMountsAreFenced()
    {
        LinuxDirectoryReading directories;
        const auto result
            = FastScanner(directories).scan({ .rootPath = "/", .allowlist = { { u"/"_s, {} } } });
        QCOMPARE(result.unreadableDirectories, 0);
        QCOMPARE(result.tree->path(result.root), u"/"_s);
        const auto proc = result.tree->find(u"/proc"_s, result.root);
        QCOMPARE(result.tree->nodeFlags(proc), Flags::directory | Flags::mountPoint);
        const auto usr = result.tree->find(u"/usr"_s, result.root);
        QVERIFY(result.tree->isValid(usr));
    }

    void namesAreKeptAsRawBytes()
    {
        const std::vector<std::string> names{ "caf\xE9", "caf\xC3\xA9", "cafe\xCC\x81", "line\nfeed", " ",
            "...", "-rf", "\xFF\xFE", "tab\tbell\a", "quote\"back\\slash", std::string(255, 'n') };
        const TempTree tree;
        qint64 total = 0;
        for (const auto &name : names) {
            tree.file(name + "/" + name, 10);
            total += tree.allocated(name + "/" + name);
        }
        const auto result = scanned(tree);
        QCOMPARE(result.unreadableDirectories, 0);
        QCOMPARE(result.total(), total);
        QVERIFY(namesInRoot(result) == std::multiset(names.begin(), names.end()));
        for (const auto child : result.tree->children(result.root)) {
            const auto name = std::string(result.tree->rawName(child));
            QCOMPARE(
                result.tree->rawPath(result.tree->children(child).front()), tree.path(name + "/" + name));
        }
    }

    void folderOfManyEntriesIsReadWhole()
    {
        constexpr int count = 300000;
        const auto inMemory = u"/dev/shm"_s;
        const TempTree tree(QFileInfo(inMemory).isWritable() ? inMemory : QDir::tempPath());
        const int folder = ::open(tree.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        for (int i = 0; i < count; ++i)
            ::close(::openat(folder, std::to_string(i).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
        ::close(folder);
        tree.file("0", 5000);
        const auto result = scanned(tree);
        QCOMPARE(result.tree->fileCount(), count);
        QCOMPARE(result.total(), tree.allocated("0"));
        const auto names = namesInRoot(result);
        QCOMPARE(names.size(), size_t(count));
        QCOMPARE(std::set(names.begin(), names.end()).size(), size_t(count));
        QCOMPARE(result.tree->name(result.tree->children(result.root).front()), u"0"_s);
    }

    void pathsBeyondTheSystemsLimitAreMeasured()
    {
        const TempTree tree;
        const std::string name(200, 'd');
        const int root = ::open(tree.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        const int fork = makeChain(root, 45, name);
        // Branches that end far from each other, so that none can be opened from the one read before it.
        qint64 total = 0;
        for (const auto *branch : { "left", "middle", "right", "caf\xE9" }) {
            ::mkdirat(fork, branch, 0755);
            const int start = ::openat(fork, branch, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            const int end = makeChain(start, 20, name);
            total += writeFileAt(end, "file", 10000);
            ::close(end);
            ::close(start);
        }
        ::close(fork);
        ::close(root);
        const auto result = scanned(tree);
        QCOMPARE(result.unreadableDirectories, 0);
        QCOMPARE(result.tree->fileCount(), 4);
        QCOMPARE(result.tree->dirCount(), 1 + 45 + 4 * 21);
        QCOMPARE(result.total(), total);
        std::set<std::string> paths;
        for (qint32 node = 0; node < result.tree->nodeCount(); ++node) {
            if (!result.tree->isDirectory(node))
                paths.insert(result.tree->rawPath(node));
        }
        std::string chain;
        for (int level = 0; level < 45; ++level)
            chain += '/' + name;
        const auto below = chain.substr(0, 20 * (name.size() + 1));
        QVERIFY(paths.contains(tree.path() + chain + "/caf\xE9" + below + "/file"));
        QVERIFY(std::ranges::all_of(paths, [](const auto &path) { return path.size() > 2 * PATH_MAX; }));
    }

    void veryDeepChainIsMeasured()
    {
        constexpr int levels = 5000;
        const TempTree tree;
        const int root = ::open(tree.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        const int end = makeChain(root, levels, "deep");
        const auto size = writeFileAt(end, "file", 10000);
        ::close(end);
        ::close(root);
        const auto result = scanned(tree);
        QCOMPARE(result.tree->dirCount(), levels + 1);
        QCOMPARE(result.total(), size);
        QCOMPARE(result.unreadableDirectories, 0);
    }

    void folderThatVanishesBeforeItIsOpenedIsUnreadable()
    {
        const TempTree tree;
        tree.folder("goes");
        tree.file("stays/file", 100);
        LinuxDirectoryReading real;
        HookedDirectories directories(real);
        directories.beforeOpen = [&](const std::string &path) {
            if (path == tree.path("goes"))
                ::rmdir(path.c_str());
        };
        const auto result = scanned(tree, directories);
        QCOMPARE(result.unreadableDirectories, 1);
        QCOMPARE(result.flagsOf("goes"), Flags::directory | Flags::unreadable);
        QCOMPARE(result.total(), tree.allocated("stays/file"));
    }

    void folderThatVanishesWhileOpenEndsEmpty()
    {
        const TempTree tree;
        tree.file("goes/file", 100);
        tree.file("stays/file", 100);
        LinuxDirectoryReading real;
        HookedDirectories directories(real);
        directories.afterOpen = [&](const std::string &path) {
            if (path != tree.path("goes"))
                return;
            ::unlink((path + "/file").c_str());
            ::rmdir(path.c_str());
        };
        const auto result = scanned(tree, directories);
        QCOMPARE(result.unreadableDirectories, 0);
        QCOMPARE(result.tree->children(result.find("goes")), QList<qint32>());
        QCOMPARE(result.total(), tree.allocated("stays/file"));
    }

    void folderReplacedByALinkIsNotFollowed()
    {
        const TempTree tree;
        const TempTree elsewhere;
        elsewhere.file("secret", 100);
        tree.folder("folder");
        tree.folder("upper/lower");
        LinuxDirectoryReading real;
        HookedDirectories directories(real);
        directories.beforeOpen = [&](const std::string &path) {
            if (path == tree.path("folder")) {
                ::rmdir(path.c_str());
                ::symlink(elsewhere.path().c_str(), path.c_str());
            }
        };
        const auto result = scanned(tree, directories);
        QCOMPARE(result.unreadableDirectories, 1);
        QCOMPARE(result.tree->fileCount(), 0);
    }

    void linksAreNotFollowed()
    {
        const TempTree tree;
        tree.file("folder/file", 100);
        tree.link("folder/up", "..");
        tree.link("folder/self", ".");
        tree.link("loop a", "loop b");
        tree.link("loop b", "loop a");
        tree.link("dangling", "nowhere");
        tree.link("to folder", "folder");
        tree.link("long", std::string(3000, 'x'));
        const auto result = scanned(tree);
        QCOMPARE(result.unreadableDirectories, 0);
        QCOMPARE(result.tree->dirCount(), 2);
        QCOMPARE(result.tree->fileCount(), 8);
        qint64 total = tree.allocated("folder/file");
        for (const auto *name :
            { "folder/up", "folder/self", "loop a", "loop b", "dangling", "to folder", "long" }) {
            QCOMPARE(result.flagsOf(name), Flags::symlink);
            QCOMPARE(result.sizeOf(name), tree.allocated(name));
            total += tree.allocated(name);
        }
        QVERIFY(tree.allocated("long") > 0);
        QCOMPARE(result.total(), total);
    }

    void hardLinksAcrossFoldersCountOnce()
    {
        const TempTree tree;
        tree.file("a/file", 100000);
        tree.hardLink("b/link", "a/file");
        tree.hardLink("b/deep/another", "a/file");
        tree.file("single", 5000);
        const auto result = scanned(tree, {}, { .threads = 4 });
        QCOMPARE(result.total(), tree.allocated("a/file") + tree.allocated("single"));
        QCOMPARE(result.tree->fileCount(), 4);
        const std::set<qint64> sizes{ result.sizeOf("a/file"), result.sizeOf("b/link"),
            result.sizeOf("b/deep/another") };
        QVERIFY((sizes == std::set<qint64>{ 0, tree.allocated("a/file") }));
    }

    void pipesAndSocketsAreFiles()
    {
        const TempTree tree;
        tree.pipe("pipe");
        sockaddr_un address{ .sun_family = AF_UNIX, .sun_path = {} };
        std::strncpy(address.sun_path, tree.path("socket").c_str(), sizeof(address.sun_path) - 1);
        const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        QCOMPARE(::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof(address)), 0);
        const auto result = scanned(tree);
        ::close(socket);
        QCOMPARE(result.tree->fileCount(), 2);
        QCOMPARE(result.flagsOf("pipe"), Flags::none);
        QCOMPARE(result.flagsOf("socket"), Flags::none);
        QCOMPARE(result.total(), 0);
    }

    void deviceNodesAreFiles()
    {
        const TempTree tree;
        if (::mknod(tree.path("null").c_str(), S_IFCHR | 0600, makedev(1, 3)) != 0)
            QSKIP(qPrintable(
                u"device nodes can't be made here: "_s + QString::fromLocal8Bit(std::strerror(errno))));
        const auto result = scanned(tree);
        QCOMPARE(result.tree->fileCount(), 1);
        QCOMPARE(result.flagsOf("null"), Flags::none);
        QCOMPARE(result.total(), 0);
    }

    void sparseFileCountsWhatItTakesOnDisk()
    {
        constexpr off_t length = 64 * 1024 * 1024;
        const TempTree tree;
        tree.file("hole");
        tree.file("partly", 5000);
        QCOMPARE(::truncate(tree.path("hole").c_str(), length), 0);
        QCOMPARE(::truncate(tree.path("partly").c_str(), length), 0);
        const auto result = scanned(tree);
        QCOMPARE(result.sizeOf("hole"), 0);
        QCOMPARE(result.sizeOf("partly"), tree.allocated("partly"));
        QVERIFY(result.sizeOf("partly") < length / 2);
    }

    void fewDescriptorsAreEnough()
    {
        const TempTree tree;
        std::string deep = "x";
        for (int level = 0; level < 30; ++level)
            deep += "/x";
        tree.file(deep + "/file", 100);
        rlimit before{};
        QCOMPARE(::getrlimit(RLIMIT_NOFILE, &before), 0);
        const int next = ::dup(STDERR_FILENO);
        ::close(next);
        // The root, one folder and one more: no room to keep any ancestor open.
        const rlimit tight{ rlim_t(next) + 3, before.rlim_max };
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &tight), 0);
        const auto result = scanned(tree);
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &before), 0);
        QCOMPARE(result.unreadableDirectories, 0);
        QCOMPARE(result.total(), tree.allocated(deep + "/file"));
    }
};

QUILLBROOK_SUITE(TestScanOnDisk, QCoreApplication)
#include "tst_ScanOnDisk.moc"
