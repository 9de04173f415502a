// On a btrfs disk of the test's own, that this program alone sees; skipped where it may not have one.

#include "Platform/Linux/Backups/BtrfsSnapshots.h"
#include "Support/PrivateMounts.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QProcess>
#include <QTest>

#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Quillbrook;
using namespace Quillbrook::PrivateMounts;
using namespace Qt::StringLiterals;

namespace {

constexpr int toolLimit = 20'000;

QString whyNotPermitted;

// Empty, or why it went wrong.
QString run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(toolLimit) || process.exitCode() != 0)
        return program + u": "_s + process.errorString()
            + QString::fromLocal8Bit(process.readAllStandardError());
    return {};
}

// A disk with a subvolume "home".
struct Disk
{
    Disk()
    {
        tree.folder("disk");
        tree.file("image");
        if (::truncate(tree.path("image").c_str(), 256LL << 20U) != 0)
            failure = u"no room for an image"_s;
        if (failure.isEmpty())
            failure = run(u"mkfs.btrfs"_s, { u"-q"_s, tree.text("image") });
        if (failure.isEmpty())
            failure = run(u"mount"_s, { u"-o"_s, u"loop"_s, tree.text("image"), tree.text("disk") });
        if (failure.isEmpty() && !isMounted(tree.path("disk")))
            failure = u"the image is not mounted"_s;
        isThere = failure.isEmpty();
        if (isThere)
            failure = run(u"btrfs"_s, { u"subvolume"_s, u"create"_s, tree.text("disk/home") });
    }
    Disk(const Disk &) = delete;
    Disk &operator=(const Disk &) = delete;
    ~Disk()
    {
        if (isThere)
            ::umount2(tree.path("disk").c_str(), MNT_DETACH);
    }

    [[nodiscard]] QString snapshot(const std::string &of, const std::string &name) const
    {
        return run(u"btrfs"_s, { u"subvolume"_s, u"snapshot"_s, u"-r"_s, tree.text(of), tree.text(name) });
    }

    TempTree tree;
    QString failure;
    bool isThere = false;
};

} // namespace

class TestBtrfsSnapshots : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!whyNotPermitted.isEmpty())
            QSKIP(qPrintable(whyNotPermitted));
    }

    void snapshotsOfTheSubvolumeAreCounted()
    {
        const Disk disk;
        if (!disk.failure.isEmpty())
            QSKIP(qPrintable(disk.failure));
        disk.tree.folder("disk/home/me/deep");
        disk.tree.folder("disk/home/snapshots");
        QCOMPARE(BtrfsSnapshots::count(disk.tree.path("disk/home")), 0);
        QCOMPARE(disk.snapshot("disk/home", "disk/home/first"), QString());
        QCOMPARE(disk.snapshot("disk/home", "disk/home/snapshots/second\n"), QString());
        // Neither another subvolume in it, nor a snapshot of that, nor one that lies elsewhere.
        QCOMPARE(
            run(u"btrfs"_s, { u"subvolume"_s, u"create"_s, disk.tree.text("disk/home/me/own") }), QString());
        QCOMPARE(disk.snapshot("disk/home/me/own", "disk/home/of own"), QString());
        QCOMPARE(disk.snapshot("disk/home", "disk/outside"), QString());
        QCOMPARE(BtrfsSnapshots::count(disk.tree.path("disk/home")), 2);
        QCOMPARE(BtrfsSnapshots::count(disk.tree.path("disk")), 0);
    }

    void ordinaryUserIsToldToo()
    {
        const Disk disk;
        if (!disk.failure.isEmpty())
            QSKIP(qPrintable(disk.failure));
        disk.tree.folder("disk/home/closed");
        QCOMPARE(disk.snapshot("disk/home", "disk/home/open"), QString());
        QCOMPARE(disk.snapshot("disk/home", "disk/home/closed/hidden"), QString());
        disk.tree.permissions("disk/home/closed", 0700);
        const auto child = ::fork();
        if (child == 0) {
            const bool isOther = ::setresuid(65534, 65534, 65534) == 0;
            ::_exit(isOther ? BtrfsSnapshots::count(disk.tree.path("disk/home")) : 99);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status));
        QCOMPARE(WEXITSTATUS(status), 1);
    }

    void moreSnapshotsThanOneAnswerHolds()
    {
        const Disk disk;
        if (!disk.failure.isEmpty())
            QSKIP(qPrintable(disk.failure));
        constexpr int more = 300;
        for (int i = 0; i < more; ++i)
            QCOMPARE(disk.snapshot("disk/home", "disk/home/" + std::to_string(i)), QString());
        QCOMPARE(BtrfsSnapshots::count(disk.tree.path("disk/home")), more);
    }

    void subvolumeOfAFolder()
    {
        const Disk disk;
        if (!disk.failure.isEmpty())
            QSKIP(qPrintable(disk.failure));
        disk.tree.folder("disk/home/me/deep");
        disk.tree.folder("disk/plain");
        const auto home = disk.tree.path("disk/home");
        QCOMPARE(BtrfsSnapshots::subvolumeOf(home + "/me/deep"), home);
        QCOMPARE(BtrfsSnapshots::subvolumeOf(home), home);
        QCOMPARE(BtrfsSnapshots::subvolumeOf(disk.tree.path("disk/plain")), disk.tree.path("disk"));
        QCOMPARE(BtrfsSnapshots::subvolumeOf(home + "/nowhere"), home);
    }

    void anotherFileSystemHasNone()
    {
        const TempTree tree;
        tree.folder("mount/folder");
        const Mounted mounted("none", tree.path("mount"), "tmpfs");
        QCOMPARE(mounted.failure(), QString());
        tree.folder("mount/folder");
        QCOMPARE(BtrfsSnapshots::subvolumeOf(tree.path("mount/folder")), tree.path("mount"));
        QCOMPARE(BtrfsSnapshots::count(tree.path("mount")), 0);
        QCOMPARE(BtrfsSnapshots::count(tree.path("nowhere")), 0);
    }
};

QUILLBROOK_SUITE(TestBtrfsSnapshots, QCoreApplication, [] { whyNotPermitted = enter(); })
#include "tst_BtrfsSnapshots.moc"
