// The scanner where it lacks rights. Root passes every check, so that this program gives root up before it
// begins.

#include "Support/DiskScan.h"
#include "Support/HookedDirectories.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"

#include <QCoreApplication>
#include <QTest>

#include <unistd.h>

using namespace Quillbrook;

namespace {

using Flags = FileTree::Flags;

} // namespace

class TestScanWithoutRights : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(::geteuid() != 0); }

    void shutFolderIsUnreadable_data()
    {
        QTest::addColumn<uint>("mode");
        QTest::newRow("nothing") << 0U;
        QTest::newRow("passing only") << 0100U;
        QTest::newRow("writing only") << 0200U;
    }

    void shutFolderIsUnreadable()
    {
        QFETCH(uint, mode);
        const TempTree tree;
        tree.file("shut/file", 100);
        tree.file("open/file", 100);
        tree.permissions("shut", mode);
        const auto result = scanned(tree);
        QCOMPARE(result.unreadableDirectories, 1);
        QCOMPARE(result.flagsOf("shut"), Flags::directory | Flags::unreadable);
        QCOMPARE(result.tree->nodeCount(), 4);
        QCOMPARE(result.total(), tree.allocated("open/file"));
        const auto shutRoot = scanned(tree, "shut");
        QCOMPARE(shutRoot.tree->nodeCount(), 1);
        QCOMPARE(shutRoot.unreadableDirectories, 1);
    }

    void folderThatLosesItsPermissionIsUnreadable()
    {
        const TempTree tree;
        tree.file("shuts/file", 100);
        LinuxDirectoryReading real;
        HookedDirectories directories(real);
        directories.beforeOpen = [&](const std::string &path) {
            if (path == tree.path("shuts"))
                tree.permissions("shuts", 0);
        };
        const auto result = scanned(tree, directories);
        QCOMPARE(result.unreadableDirectories, 1);
        QCOMPARE(result.tree->nodeCount(), 2);
    }

    void folderThatLosesItsPermissionWhileOpenIsRead()
    {
        const TempTree tree;
        tree.file("shuts/file", 100);
        tree.file("shuts/below/file", 100);
        LinuxDirectoryReading real;
        HookedDirectories directories(real);
        directories.afterOpen = [&](const std::string &path) {
            if (path == tree.path("shuts"))
                tree.permissions("shuts", 0);
        };
        const auto result = scanned(tree, directories);
        const auto folder = result.find("shuts");
        QCOMPARE(result.tree->nodeFlags(folder), Flags::directory);
        QCOMPARE(result.tree->children(folder).size(), 2);
        QCOMPARE(result.tree->size(folder), 0);
        QCOMPARE(result.unreadableDirectories, 1);
    }

    void folderWhoseEntriesMayNotBeAskedListsThem()
    {
        const TempTree tree;
        tree.file("names/file", 100);
        tree.file("names/folder/file", 100);
        tree.link("names/link", "file");
        tree.permissions("names", 0400);
        const auto result = scanned(tree);
        QCOMPARE(result.flagsOf("names"), Flags::directory);
        QCOMPARE(result.flagsOf("names/file"), Flags::unmeasured);
        QCOMPARE(result.flagsOf("names/link"), Flags::symlink | Flags::unmeasured);
        QCOMPARE(result.flagsOf("names/folder"), Flags::directory | Flags::unreadable);
        QCOMPARE(result.total(), 0);
        QCOMPARE(result.unreadableDirectories, 1);
        QCOMPARE(result.unmeasuredFiles, 2);
    }
};

QUILLBROOK_SUITE(TestScanWithoutRights, QCoreApplication, giveUpRoot)
#include "tst_ScanWithoutRights.moc"
