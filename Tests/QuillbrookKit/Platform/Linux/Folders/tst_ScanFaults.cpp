// The scanner on real files, with a system that fails, forgets or changes something between two calls. The
// two calls that matter are answered here first; the rest is the real system.

#include "Support/DiskScan.h"
#include "Support/Suite.h"

#include <QTest>

#include <cerrno>
#include <cstddef>
#include <dirent.h>
#include <functional>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Flags = FileTree::Flags;

// What the system does besides its work; empty means nothing. Set before a scan, called by its one worker.
struct Faults
{
    /// Called before a file is asked about; an errno to fail with, or 0.
    std::function<int(const std::string &name)> beforeStatus{};
    std::function<void(struct statx &)> afterStatus{};
    /// Called before folder entries are read, with how often that was done before; an errno or 0.
    std::function<int(int)> beforeEntries{};
    std::function<void(dirent64 &)> afterEntry{};
    size_t mostEntryBytes = 1U << 20U;
    int entryReads = 0;
};

Faults faults;
LinuxDirectoryReading disk;

} // namespace

extern "C" {

int statx(int folder, const char *name, int flags, unsigned mask, struct statx *status)
{
    if (faults.beforeStatus && *name != '\0') {
        if (const int error = faults.beforeStatus(name); error != 0) {
            errno = error;
            return -1;
        }
    }
    const auto result = ::syscall(SYS_statx, folder, name, flags, mask, status);
    if (result == 0 && faults.afterStatus)
        faults.afterStatus(*status);
    return static_cast<int>(result);
}

ssize_t getdents64(int folder, void *buffer, size_t length)
{
    if (faults.beforeEntries) {
        if (const int error = faults.beforeEntries(faults.entryReads++); error != 0) {
            errno = error;
            return -1;
        }
    }
    const auto result = ::syscall(SYS_getdents64, folder, buffer, std::min(length, faults.mostEntryBytes));
    for (long offset = 0; offset < result && faults.afterEntry;) {
        auto &entry = *reinterpret_cast<dirent64 *>(static_cast<char *>(buffer) + offset);
        faults.afterEntry(entry);
        offset += entry.d_reclen;
    }
    return result;
}
}

namespace {

// From here on this thread and those it starts have no openat2, as on old kernels and in some sandboxes.
bool takeOpenat2Away(unsigned answer)
{
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat2, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | answer),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter{ .len = std::size(program), .filter = program };
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
        && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

} // namespace

class TestScanFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { faults = {}; }
    void cleanup() { faults = {}; }

    void kindThatIsNotToldIsAskedFor()
    {
        const TempTree tree;
        tree.file("folder/deeper/file", 100);
        tree.link("link", "folder");
        tree.pipe("pipe");
        faults.afterEntry = [](dirent64 &entry) { entry.d_type = DT_UNKNOWN; };
        const auto result = scanned(tree, disk);
        QCOMPARE(result.unreadableDirectories, 0);
        QCOMPARE(result.tree->dirCount(), 3);
        QCOMPARE(result.flagsOf("folder"), Flags::directory);
        QCOMPARE(result.flagsOf("link"), Flags::symlink);
        QCOMPARE(result.flagsOf("pipe"), Flags::none);
        QCOMPARE(result.total(), tree.allocated("folder/deeper/file"));
    }

    void fileThatVanishesBeforeItIsAskedIsDropped()
    {
        const TempTree tree;
        tree.file("goes", 100);
        tree.file("stays", 100);
        faults.beforeStatus = [&](const std::string &name) {
            if (name == "goes")
                ::unlink(tree.path("goes").c_str());
            return 0;
        };
        const auto result = scanned(tree, disk);
        QCOMPARE(result.tree->nodeCount(), 2);
        QCOMPARE(result.total(), tree.allocated("stays"));
    }

    void fileThatMayNotBeAskedIsMarked_data()
    {
        QTest::addColumn<int>("error");
        QTest::newRow("no right") << EACCES;
        QTest::newRow("damaged disk") << EIO;
        QTest::newRow("stale handle") << ESTALE;
    }

    void fileThatMayNotBeAskedIsMarked()
    {
        QFETCH(int, error);
        const TempTree tree;
        tree.file("file", 100);
        tree.link("link", "file");
        tree.file("other", 100);
        faults.beforeStatus = [&](const std::string &name) { return name == "other" ? 0 : error; };
        const auto result = scanned(tree, disk);
        QCOMPARE(result.tree->fileCount(), 3);
        QCOMPARE(result.unmeasuredFiles, 2);
        QCOMPARE(result.unreadableDirectories, 0);
        QCOMPARE(result.flagsOf("file"), Flags::unmeasured);
        QCOMPARE(result.flagsOf("link"), Flags::symlink | Flags::unmeasured);
        QCOMPARE(result.total(), tree.allocated("other"));
    }

    void interruptedCallsAreTriedAgain()
    {
        const TempTree tree;
        tree.file("a/file", 100);
        int asked = 0;
        faults.beforeStatus = [&](const std::string &) { return asked++ < 3 ? EINTR : 0; };
        faults.beforeEntries = [](int before) { return before % 3 == 2 ? 0 : EINTR; };
        const auto result = scanned(tree, disk);
        QCOMPARE(asked, 4);
        QCOMPARE(result.unmeasuredFiles, 0);
        QCOMPARE(result.total(), tree.allocated("a/file"));
    }

    void fileReplacedByAFolderIsEntered()
    {
        const TempTree tree;
        tree.file("thing", 100);
        faults.beforeStatus = [&](const std::string &name) {
            if (name == "thing") {
                ::unlink(tree.path("thing").c_str());
                tree.file("thing/inside", 5000);
            }
            return 0;
        };
        const auto result = scanned(tree, disk);
        QCOMPARE(result.flagsOf("thing"), Flags::directory);
        QCOMPARE(result.total(), tree.allocated("thing/inside"));
    }

    void readErrorInTheMiddleKeepsWhatWasRead()
    {
        const TempTree tree;
        for (int i = 0; i < 100; ++i)
            tree.file("file with a long enough name " + std::to_string(i), 100);
        faults.mostEntryBytes = 1024;
        faults.beforeEntries = [](int before) { return before < 2 ? 0 : EIO; };
        const auto result = scanned(tree, disk);
        QCOMPARE(result.unreadableDirectories, 0);
        QVERIFY(result.tree->fileCount() > 0);
        QVERIFY(result.tree->fileCount() < 100);
        QCOMPARE(result.total(), result.tree->fileCount() * tree.allocated("file with a long enough name 0"));
    }

    void entriesOfManySmallReadsAreJoined()
    {
        const TempTree tree;
        for (int i = 0; i < 100; ++i)
            tree.file(std::to_string(i), 100);
        // The first read has room for little more than the two entries that every folder has.
        faults.mostEntryBytes = 64;
        const auto result = scanned(tree, disk);
        QCOMPARE(result.tree->fileCount(), 100);
        QCOMPARE(result.total(), 100 * tree.allocated("0"));
    }

    void foldersCostNoCallOfTheirOwn()
    {
        const TempTree tree;
        tree.file("a/b/c/file", 100);
        tree.folder("a/d");
        QStringList asked;
        faults.beforeStatus = [&](const std::string &name) {
            asked << QString::fromStdString(name);
            return 0;
        };
        const auto result = scanned(tree, disk);
        QCOMPARE(result.tree->dirCount(), 5);
        QCOMPARE(asked, QStringList{ u"file"_s });
    }

    void systemWithoutMountIdsIsMeasured()
    {
        const TempTree tree;
        tree.file("a/file", 100);
        faults.afterStatus = [](struct statx &status) {
            status.stx_mask &= ~unsigned{ STATX_MNT_ID };
            status.stx_mnt_id = 0xDEAD;
        };
        const auto result = scanned(tree, disk);
        QCOMPARE(result.total(), tree.allocated("a/file"));
        QCOMPARE(result.flagsOf("a/file"), Flags::none);
    }

    void absurdSizeIsNotNegative()
    {
        const TempTree tree;
        tree.file("file", 100);
        faults.afterStatus = [](struct statx &status) { status.stx_blocks = ~std::uint64_t{ 0 }; };
        QVERIFY(scanned(tree, disk).tree->size(0) > 0);
    }

    void systemWithoutOpenat2IsMeasured_data()
    {
        QTest::addColumn<int>("answer");
        QTest::newRow("unknown call") << ENOSYS;
        QTest::newRow("forbidden call") << EPERM;
    }

    void systemWithoutOpenat2IsMeasured()
    {
        QFETCH(int, answer);
        const TempTree tree;
        tree.file("a/b/file", 100);
        tree.file("c/file", 100);
        const auto expected = tree.allocated("a/b/file") + tree.allocated("c/file");
        bool isTakenAway = false;
        FastScanner::Result result;
        std::thread([&] {
            isTakenAway = takeOpenat2Away(unsigned(answer));
            result = scanned(tree, disk);
        }).join();
        if (!isTakenAway)
            QSKIP("system call filters are not permitted here");
        QCOMPARE(result.unreadableDirectories, 0);
        QCOMPARE(result.tree->size(result.root), expected);
    }
};

QUILLBROOK_SUITE(TestScanFaults, QCoreApplication)
#include "tst_ScanFaults.moc"
