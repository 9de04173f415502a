// The scanner where it lacks rights. Root passes every check, so that this program gives root up before it
// begins.

#include "Platform/Linux/Folders/LinuxDirectoryReading.h"
#include "Scan/FastScanner.h"
#include "Support/HookedDirectories.h"
#include "Support/RootGivenUp.h"
#include "Support/TempTree.h"

#include <QCoreApplication>
#include <QTest>

#include <unistd.h>

using namespace Quillbrook;

namespace {

using Flags = FileTree::Flags;

qint32 find(const FastScanner::Result &result, const TempTree &tree, const std::string &name)
{
    return result.tree->find(tree.text(name), result.root);
}

FastScanner::Result scanned(const TempTree &tree, const std::string &root = {})
{
    LinuxDirectoryReading directories;
    return FastScanner(directories).scan({ .rootPath = tree.path(root), .threads = 2 });
}

} // namespace

class TestScanWithoutRights : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(::geteuid() != 0); }
    void shutFolderIsUnreadable_data();
    void shutFolderIsUnreadable();
    void shutRootGivesOneUnreadableNode();
    void folderThatLosesItsPermissionIsUnreadable();
    void folderThatLosesItsPermissionWhileOpenIsRead();
    void folderWhoseEntriesMayNotBeAskedListsThem();
};

void TestScanWithoutRights::shutFolderIsUnreadable_data()
{
    QTest::addColumn<uint>("mode");
    QTest::newRow("nothing") << 0U;
    QTest::newRow("passing only") << 0100U;
    QTest::newRow("writing only") << 0200U;
}

void TestScanWithoutRights::shutFolderIsUnreadable()
{
    QFETCH(uint, mode);
    const TempTree tree;
    tree.file("shut/file", 100);
    tree.file("open/file", 100);
    tree.permissions("shut", mode);
    const auto result = scanned(tree);
    QCOMPARE(result.unreadableDirectories, 1);
    QCOMPARE(result.tree->nodeFlags(find(result, tree, "shut")), Flags::directory | Flags::unreadable);
    QCOMPARE(result.tree->nodeCount(), 4);
    QCOMPARE(result.tree->size(result.root), tree.allocated("open/file"));
}

void TestScanWithoutRights::shutRootGivesOneUnreadableNode()
{
    const TempTree tree;
    tree.file("shut/file", 100);
    tree.permissions("shut", 0);
    const auto result = scanned(tree, "shut");
    QCOMPARE(result.tree->nodeCount(), 1);
    QCOMPARE(result.unreadableDirectories, 1);
    QCOMPARE(result.tree->nodeFlags(result.root), Flags::directory | Flags::unreadable);
}

void TestScanWithoutRights::folderThatLosesItsPermissionIsUnreadable()
{
    const TempTree tree;
    tree.file("shuts/file", 100);
    LinuxDirectoryReading real;
    HookedDirectories directories(real);
    directories.beforeOpen = [&](const std::string &path) {
        if (path == tree.path("shuts"))
            tree.permissions("shuts", 0);
    };
    const auto result = FastScanner(directories).scan({ .rootPath = tree.path() });
    QCOMPARE(result.unreadableDirectories, 1);
    QCOMPARE(result.tree->nodeCount(), 2);
}

void TestScanWithoutRights::folderThatLosesItsPermissionWhileOpenIsRead()
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
    const auto result = FastScanner(directories).scan({ .rootPath = tree.path() });
    const auto folder = find(result, tree, "shuts");
    QCOMPARE(result.tree->nodeFlags(folder), Flags::directory);
    QCOMPARE(result.tree->children(folder).size(), 2);
    QCOMPARE(result.tree->size(folder), 0);
    QCOMPARE(result.unreadableDirectories, 1);
}

void TestScanWithoutRights::folderWhoseEntriesMayNotBeAskedListsThem()
{
    const TempTree tree;
    tree.file("names/file", 100);
    tree.file("names/folder/file", 100);
    tree.link("names/link", "file");
    tree.permissions("names", 0400);
    const auto result = scanned(tree);
    QCOMPARE(result.tree->nodeFlags(find(result, tree, "names")), Flags::directory);
    QCOMPARE(result.tree->nodeFlags(find(result, tree, "names/file")), Flags::none);
    QCOMPARE(result.tree->nodeFlags(find(result, tree, "names/link")), Flags::symlink);
    QCOMPARE(
        result.tree->nodeFlags(find(result, tree, "names/folder")), Flags::directory | Flags::unreadable);
    QCOMPARE(result.tree->size(result.root), 0);
    QCOMPARE(result.unreadableDirectories, 1);
}

int main(int argc, char **argv)
{
    if (!giveUpRoot())
        qFatal("root could not be given up");
    QCoreApplication application(argc, argv);
    TestScanWithoutRights test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ScanWithoutRights.moc"
