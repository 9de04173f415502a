// The scanner on real files, read the way Linux reads them.

#include "Platform/Linux/LinuxDirectoryReading.h"
#include "Scan/FastScanner.h"
#include "Support/TempTree.h"

#include <QTest>

namespace Quillbrook {

namespace {

FastScanner::Result scanned(const TempTree &tree, const std::string &root = {})
{
    LinuxDirectoryReading directories;
    return FastScanner(directories).scan({ .rootPath = tree.text(root), .threads = 2 });
}

} // namespace

class TestScanOnDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void totalIsTheSumOfAllAllocatedSizes();
    void rootThatDoesNotExistGivesOneUnreadableNode();
};

void TestScanOnDisk::totalIsTheSumOfAllAllocatedSizes()
{
    const TempTree tree;
    tree.file("a/small", 100);
    tree.file("a/b/large", 100000);
    tree.file("top", 5000);
    const auto result = scanned(tree);
    QCOMPARE(result.unreadableDirectories, 0);
    QCOMPARE(result.tree->nodeCount(), 6);
    QCOMPARE(result.tree->fileCount(), 3);
    QCOMPARE(result.tree->size(result.root),
        tree.allocated("a/small") + tree.allocated("a/b/large") + tree.allocated("top"));
    const auto large = result.tree->find(tree.text("a/b/large"), result.root);
    QCOMPARE(result.tree->size(large), tree.allocated("a/b/large"));
}

void TestScanOnDisk::rootThatDoesNotExistGivesOneUnreadableNode()
{
    const TempTree tree;
    const auto result = scanned(tree, "missing");
    QCOMPARE(result.tree->nodeCount(), 1);
    QCOMPARE(result.unreadableDirectories, 1);
    QCOMPARE(result.tree->size(0), 0);
    QCOMPARE(result.tree->nodeFlags(0), FileTree::Flags::directory | FileTree::Flags::unreadable);
}

} // namespace Quillbrook

QTEST_GUILESS_MAIN(Quillbrook::TestScanOnDisk)
#include "tst_ScanOnDisk.moc"
