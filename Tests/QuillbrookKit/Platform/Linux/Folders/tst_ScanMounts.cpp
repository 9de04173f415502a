// The scanner where other things are mounted below its root. All mounts are seen by this program alone; where
// it may not have mounts of its own, its tests are skipped with the reason.

#include "Support/DiskScan.h"
#include "Support/HookedDirectories.h"
#include "Support/PrivateMounts.h"
#include "Support/Suite.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <future>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Quillbrook;
using namespace Quillbrook::PrivateMounts;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Flags = FileTree::Flags;

constexpr auto fencedFolder = Flags::directory | Flags::mountPoint;
constexpr int toolLimit = 60000;

QString whyNotPermitted;

// Runs a tool to its end; what it said when it failed.
QString run(const QString &program, const QStringList &arguments)
{
    // Tools of the administrator are not on every user's search path.
    const QStringList places{ u"/usr/sbin"_s, u"/sbin"_s, u"/usr/bin"_s, u"/bin"_s };
    const auto path = QStandardPaths::findExecutable(program, places);
    if (path.isEmpty())
        return program + u" is not installed"_s;
    QProcess process;
    process.start(path, arguments);
    if (!process.waitForFinished(toolLimit) || process.exitCode() != 0)
        return program + u" failed: "_s + QString::fromLocal8Bit(process.readAllStandardError());
    return {};
}

// A disk image of its own file system, mounted on a folder.
struct ImageMount
{
    ImageMount(const TempTree &tree, const QString &maker, QStringList makerArguments)
        : folder(tree.path("image"))
    {
        tree.folder("image");
        tree.file("disk");
        if (::truncate(tree.path("disk").c_str(), 256LL << 20U) != 0) {
            failure = u"no room for an image"_s;
            return;
        }
        failure = run(maker, makerArguments << tree.text("disk"));
        if (failure.isEmpty())
            failure = run(u"mount"_s, { u"-o"_s, u"loop"_s, tree.text("disk"), tree.text("image") });
        if (failure.isEmpty() && !isMounted(folder))
            failure = u"the image is not mounted"_s;
    }
    ~ImageMount()
    {
        if (failure.isEmpty())
            ::umount(folder.c_str());
    }

    std::string folder;
    QString failure;
};

// A FUSE server that answers until it is stopped. It ends with this object at the latest.
struct Server
{
    explicit Server(const TempTree &tree)
    {
        const auto program = QStandardPaths::findExecutable(u"bindfs"_s);
        if (program.isEmpty()) {
            failure = u"bindfs is not installed"_s;
            return;
        }
        tree.file("served/file", 100);
        tree.folder("home/mount");
        folder = tree.path("home/mount");
        process.start(program, { u"-f"_s, tree.text("served"), tree.text("home/mount") });
        QElapsedTimer timer;
        timer.start();
        while (!isMounted(folder) && timer.elapsed() < toolLimit && process.state() != QProcess::NotRunning)
            process.waitForFinished(10);
        if (!isMounted(folder))
            failure = u"bindfs did not mount: "_s + QString::fromLocal8Bit(process.readAllStandardError());
    }
    ~Server()
    {
        process.kill();
        process.waitForFinished(toolLimit);
        if (failure.isEmpty())
            ::umount2(folder.c_str(), MNT_DETACH);
    }

    std::string folder;
    QString failure;
    QProcess process;
};

} // namespace

class TestScanMounts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        if (!whyNotPermitted.isEmpty())
            QSKIP(qPrintable(whyNotPermitted));
    }

    void mountedFileSystemIsListedAndNotEntered_data() { stayingAndCrossing(); }

    void mountedFileSystemIsListedAndNotEntered()
    {
        QFETCH(bool, crossDevices);
        const TempTree tree;
        tree.folder("a/mount");
        tree.file("a/file", 100);
        const Mounted mount("none", tree.path("a/mount"), "tmpfs");
        QCOMPARE(mount.failure(), QString());
        tree.file("a/mount/inside", 100000);
        const auto result = scanned(tree, {}, { .threads = 2, .crossDevices = crossDevices });
        QCOMPARE(result.flagsOf("a/mount"), fencedFolder);
        QCOMPARE(result.tree->children(result.find("a/mount")), QList<qint32>());
        QCOMPARE(result.total(), tree.allocated("a/file"));
        QCOMPARE(result.unreadableDirectories, 0);
    }

    void bindMountIsListedAndNotEntered()
    {
        const TempTree tree;
        tree.file("real/file", 100000);
        tree.folder("bound");
        const Mounted mount(tree.path("real"), tree.path("bound"), nullptr, MS_BIND);
        QCOMPARE(mount.failure(), QString());
        QVERIFY(tree.allocated("bound/file") > 0);
        const auto result = scanned(tree);
        QCOMPARE(result.flagsOf("bound"), fencedFolder);
        QCOMPARE(result.flagsOf("real"), Flags::directory);
        QCOMPARE(result.total(), tree.allocated("real/file"));
    }

    void fileMountedOverAFileCountsOnlyWhenCrossing_data() { stayingAndCrossing(); }

    void fileMountedOverAFileCountsOnlyWhenCrossing()
    {
        QFETCH(bool, crossDevices);
        const TempTree tree;
        tree.file("real", 100000);
        tree.file("over", 50000);
        const Mounted mount(tree.path("real"), tree.path("over"), nullptr, MS_BIND);
        QCOMPARE(mount.failure(), QString());
        const auto result = scanned(tree, {}, { .crossDevices = crossDevices });
        QCOMPARE(result.flagsOf("over"), crossDevices ? Flags::none : Flags::mountPoint);
        QCOMPARE(result.sizeOf("over"), crossDevices ? tree.allocated("real") : 0);
        QCOMPARE(result.total(), tree.allocated("real") + result.sizeOf("over"));
    }

    void mountPointNamesAreRaw()
    {
        const std::string name = "caf\xE9 with\ttab,\nline feed and \\040";
        const TempTree tree;
        tree.folder(name);
        tree.file("caf\xC3\xA9/file", 100);
        const Mounted mount("none", tree.path(name), "tmpfs");
        QCOMPARE(mount.failure(), QString());
        tree.file(name + "/inside", 100000);
        const auto result = scanned(tree);
        QCOMPARE(result.flagsOf(name), fencedFolder);
        QCOMPARE(result.total(), tree.allocated("caf\xC3\xA9/file"));
    }

    void rootThatIsAMountIsMeasured()
    {
        const TempTree tree;
        tree.folder("mount");
        const Mounted mount("none", tree.path("mount"), "tmpfs");
        QCOMPARE(mount.failure(), QString());
        tree.file("mount/a/file", 100);
        tree.folder("mount/b");
        const Mounted inner("none", tree.path("mount/b"), "tmpfs");
        tree.file("mount/b/inside", 100000);
        const auto result = scanned(tree, "mount");
        QCOMPARE(result.total(), tree.allocated("mount/a/file"));
        QCOMPARE(result.flagsOf("mount"), Flags::directory);
        QCOMPARE(result.flagsOf("mount/b"), fencedFolder);
    }

    void rootBehindALinkKnowsItsMounts()
    {
        const TempTree tree;
        tree.folder("var/home/mount");
        tree.link("home", "var/home");
        tree.file("var/home/file", 100);
        const Mounted mount("none", tree.path("var/home/mount"), "tmpfs");
        QCOMPARE(mount.failure(), QString());
        tree.file("home/mount/inside", 100000);
        for (const auto *root : { "home", "home/../home/" }) {
            const auto result = scanned(tree, root);
            QCOMPARE(result.tree->path(result.root), tree.text("home"));
            QCOMPARE(result.flagsOf("home/mount"), fencedFolder);
            QCOMPARE(result.total(), tree.allocated("var/home/file"));
        }
    }

    void mountHiddenBelowTheRootsOwnMountIsNoFence()
    {
        const TempTree tree;
        tree.folder("root/a");
        const Mounted hidden("none", tree.path("root/a"), "tmpfs");
        const Mounted over("none", tree.path("root"), "tmpfs");
        QCOMPARE(over.failure(), QString());
        tree.file("root/a/file", 100);
        const auto result = scanned(tree, "root");
        QCOMPARE(result.flagsOf("root/a"), Flags::directory);
        QCOMPARE(result.total(), tree.allocated("root/a/file"));
    }

    // One way of reading serves many scans.
    void everyScanKnowsTheMountsOfItsTime()
    {
        const TempTree tree;
        tree.folder("a/mount");
        LinuxDirectoryReading directories;
        QCOMPARE(scanned(tree, directories).flagsOf("a/mount"), Flags::directory);
        {
            const Mounted mount("none", tree.path("a/mount"), "tmpfs");
            QCOMPARE(mount.failure(), QString());
            QCOMPARE(scanned(tree, directories).flagsOf("a/mount"), fencedFolder);
        }
        QCOMPARE(scanned(tree, directories).flagsOf("a/mount"), Flags::directory);
    }

    void mountThatComesLaterIsNotEntered()
    {
        const TempTree tree;
        tree.folder("a/later");
        tree.file("a/file", 100);
        LinuxDirectoryReading real;
        HookedDirectories directories(real);
        std::unique_ptr<Mounted> mount;
        directories.beforeOpen = [&](const std::string &path) {
            if (path != tree.path("a/later"))
                return;
            mount = std::make_unique<Mounted>("none", path, "tmpfs");
            tree.file("a/later/inside", 100000);
        };
        const auto result = scanned(tree, directories);
        QVERIFY(mount != nullptr);
        QCOMPARE(mount->failure(), QString());
        QCOMPARE(result.flagsOf("a/later"), Flags::directory | Flags::unreadable);
        QCOMPARE(result.total(), tree.allocated("a/file"));
    }

    // The layers lie on two file systems, so that files and folders tell different device numbers.
    void overlayIsMeasuredWhole()
    {
        const TempTree tree;
        tree.folder("lower disk");
        tree.folder("upper disk");
        tree.folder("home");
        const Mounted lower("none", tree.path("lower disk"), "tmpfs");
        const Mounted upper("none", tree.path("upper disk"), "tmpfs");
        QCOMPARE(upper.failure(), QString());
        tree.file("lower disk/low/from below", 100000);
        tree.file("lower disk/low/covered", 50000);
        tree.file("upper disk/up/low/covered", 20000);
        tree.file("upper disk/up/from above", 30000);
        tree.hardLink("upper disk/up/low/again", "upper disk/up/from above");
        tree.folder("upper disk/work");
        const Mounted overlay("overlay", tree.path("home"), "overlay", 0,
            "lowerdir=" + tree.path("lower disk") + ",upperdir=" + tree.path("upper disk/up")
                + ",workdir=" + tree.path("upper disk/work"));
        if (!overlay.failure().isEmpty())
            QSKIP(qPrintable(u"no overlay: "_s + overlay.failure()));
        const auto result = scanned(tree, "home");
        QCOMPARE(result.unreadableDirectories, 0);
        QCOMPARE(result.tree->fileCount(), 4);
        for (qint32 node = 1; node < result.tree->nodeCount(); ++node)
            QVERIFY(!contains(result.tree->nodeFlags(node), Flags::mountPoint));
        QCOMPARE(result.total(),
            tree.allocated("lower disk/low/from below") + tree.allocated("upper disk/up/low/covered")
                + tree.allocated("upper disk/up/from above"));
    }

    void hungServerIsNotTouched()
    {
        const TempTree tree;
        tree.file("home/file", 100);
        const Server server(tree);
        if (!server.failure.isEmpty())
            QSKIP(qPrintable(server.failure));
        ::kill(pid_t(server.process.processId()), SIGSTOP);
        auto scan = std::async(std::launch::async, [&] { return scanned(tree, "home"); });
        const bool hasEnded = scan.wait_for(20s) == std::future_status::ready;
        // Ends whatever waits for it.
        ::kill(pid_t(server.process.processId()), SIGKILL);
        const auto result = scan.get();
        QVERIFY(hasEnded);
        QCOMPARE(result.flagsOf("home/mount"), fencedFolder);
        QCOMPARE(result.total(), tree.allocated("home/file"));
        QCOMPARE(result.unreadableDirectories, 0);
    }

    // With nothing in /proc neither the mount table nor the real path of the root can be read.
    void mountsThatAreNotToldAreFoundOut()
    {
        const TempTree tree;
        tree.file("a/file", 100);
        tree.folder("a/mount");
        const Mounted mount("none", tree.path("a/mount"), "tmpfs");
        QCOMPARE(mount.failure(), QString());
        tree.file("a/mount/inside", 100000);
        QVERIFY(::mount("none", "/proc", "tmpfs", 0, nullptr) == 0);
        const auto result = scanned(tree);
        QVERIFY(::umount("/proc") == 0);
        QCOMPARE(result.flagsOf("a/mount"), fencedFolder);
        QCOMPARE(result.total(), tree.allocated("a/file"));
        QCOMPARE(result.unreadableDirectories, 0);
    }

    void diskThatDoesNotTellKindsIsMeasured()
    {
        const TempTree tree;
        const ImageMount image(tree, u"mkfs.ext4"_s, { u"-q"_s, u"-F"_s, u"-O"_s, u"^filetype"_s });
        if (!image.failure.isEmpty())
            QSKIP(qPrintable(image.failure));
        tree.file("image/a/b/file", 100000);
        tree.link("image/link", "a");
        tree.folder("image/a/mount");
        const Mounted mount("none", tree.path("image/a/mount"), "tmpfs");
        QCOMPARE(mount.failure(), QString());
        tree.file("image/a/mount/inside", 100000);
        const auto result = scanned(tree, "image");
        QCOMPARE(result.unreadableDirectories, 0);
        QCOMPARE(result.flagsOf("image/a/b"), Flags::directory);
        QCOMPARE(result.flagsOf("image/link"), Flags::symlink);
        QCOMPARE(result.flagsOf("image/a/mount"), fencedFolder);
        QCOMPARE(result.sizeOf("image/a"), tree.allocated("image/a/b/file"));
    }

    // Each subvolume counts its inodes from the same number, so that files of two of them share a file id.
    void subvolumesAreMeasuredAndTheirFilesToldApart()
    {
        const TempTree tree;
        const ImageMount image(tree, u"mkfs.btrfs"_s, { u"-q"_s });
        if (!image.failure.isEmpty())
            QSKIP(qPrintable(image.failure));
        qint64 total = 0;
        for (const auto *name : { "image/one", "image/two" }) {
            QCOMPARE(run(u"btrfs"_s, { u"subvolume"_s, u"create"_s, tree.text(name) }), QString());
            const std::string folder = name;
            tree.file(folder + "/file", 100000);
            tree.hardLink(folder + "/link", folder + "/file");
            total += tree.allocated(folder + "/file");
        }
        struct stat one
        {
        };
        struct stat two
        {
        };
        QVERIFY(::stat(tree.path("image/one/file").c_str(), &one) == 0);
        QVERIFY(::stat(tree.path("image/two/file").c_str(), &two) == 0);
        QCOMPARE(one.st_ino, two.st_ino);
        QVERIFY(one.st_dev != two.st_dev);
        const auto result = scanned(tree, "image");
        QCOMPARE(result.unreadableDirectories, 0);
        QCOMPARE(result.flagsOf("image/one"), Flags::directory);
        QCOMPARE(result.total(), total);
    }

private:
    static void stayingAndCrossing()
    {
        QTest::addColumn<bool>("crossDevices");
        QTest::newRow("staying") << false;
        QTest::newRow("crossing") << true;
    }
};

QUILLBROOK_SUITE(TestScanMounts, QCoreApplication, [] { whyNotPermitted = enter(); })
#include "tst_ScanMounts.moc"
