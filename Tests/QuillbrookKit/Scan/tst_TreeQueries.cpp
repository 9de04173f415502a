#include "Scan/TreeQueries.h"
#include "Support/EndsProcess.h"
#include "Support/Suite.h"

#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <limits>
#include <memory>
#include <tuple>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Flags = FileTree::Flags;

QStringList names(const QList<NodeSnapshot> &snapshots)
{
    QStringList result;
    for (const auto &snapshot : snapshots)
        result.append(snapshot.name);
    return result;
}

QList<qint64> sizes(const QList<NodeSnapshot> &snapshots)
{
    QList<qint64> result;
    for (const auto &snapshot : snapshots)
        result.append(snapshot.bytes);
    return result;
}

// Files of the given sizes directly below the root, named by their place.
std::unique_ptr<FileTree> treeOfFiles(const QList<qint64> &fileSizes)
{
    auto tree = std::make_unique<FileTree>(fileSizes.size() + 1);
    tree->addNode(FileTree::noNode, "/r", 0, Flags::directory);
    for (qsizetype i = 0; i < fileSizes.size(); ++i)
        tree->addNode(0, "f" + std::to_string(i), fileSizes[i], Flags::none);
    tree->rollUp();
    tree->sortChildrenBySize();
    return tree;
}

// Nodes in the order in which a walk meets them.
QList<qint32> walkOrder(const FileTree &tree)
{
    QList<qint32> nodes;
    tree.walk(0, [&](qint32 node, qint32) {
        nodes.append(node);
        return true;
    });
    return nodes;
}

} // namespace

class TestTreeQueries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void largestFilesComeLargestFirst()
    {
        const auto tree = treeOfFiles({ 5, 50, 1, 40, 30 });
        QCOMPARE(sizes(TreeQueries::largestFiles(*tree, 0, 3)), (QList<qint64>{ 50, 40, 30 }));
        QCOMPARE(sizes(TreeQueries::largestFiles(*tree, 0, 100)), (QList<qint64>{ 50, 40, 30, 5, 1 }));
    }

    void largestFilesTellTheWholeNode()
    {
        const auto tree = treeOfFiles({ 5 });
        const NodeSnapshot expected{
            .id = 1, .name = u"f0"_s, .path = u"/r/f0"_s, .bytes = 5, .isDirectory = false
        };
        QVERIFY(TreeQueries::largestFiles(*tree, 0, 3) == QList<NodeSnapshot>{ expected });
    }

    void largestFilesLeaveFoldersOut()
    {
        FileTree tree(8);
        tree.addNode(FileTree::noNode, "/r", 0, Flags::directory);
        const auto folder = tree.addNode(0, "folder", 0, Flags::directory);
        tree.addNode(folder, "deep", 70, Flags::none);
        tree.addNode(0, "shallow", 20, Flags::none);
        tree.rollUp();
        tree.sortChildrenBySize();
        QCOMPARE(names(TreeQueries::largestFiles(tree, 0, 10)), (QStringList{ u"deep"_s, u"shallow"_s }));
    }

    void largestFilesLeaveEmptyFilesOut()
    {
        const auto tree = treeOfFiles({ 0, 3, 0 });
        QCOMPARE(sizes(TreeQueries::largestFiles(*tree, 0, 10)), QList<qint64>{ 3 });
    }

    void largestFilesTakeLinksAndPackagesContents()
    {
        FileTree tree(8);
        tree.addNode(FileTree::noNode, "/r", 0, Flags::directory);
        const auto package = tree.addNode(0, "Thing.app", 0, Flags::directory | Flags::package);
        tree.addNode(package, "inside", 7, Flags::none);
        tree.addNode(0, "link", 4, Flags::symlink);
        tree.rollUp();
        tree.sortChildrenBySize();
        QCOMPARE(names(TreeQueries::largestFiles(tree, 0, 10)), (QStringList{ u"inside"_s, u"link"_s }));
    }

    void limitOfNothingGivesNothing_data()
    {
        QTest::addColumn<qsizetype>("limit");
        QTest::newRow("none") << qsizetype(0);
        QTest::newRow("fewer than none") << qsizetype(-3);
    }

    void limitOfNothingGivesNothing()
    {
        QFETCH(qsizetype, limit);
        const auto tree = treeOfFiles({ 5, 6, 7 });
        QVERIFY(TreeQueries::largestFiles(*tree, 0, limit).isEmpty());
    }

    void limitThatOverflowsEndsTheProcess()
    {
        const auto tree = treeOfFiles({ 5, 6, 7 });
        constexpr auto most = std::numeric_limits<qsizetype>::max() / 2;
        QCOMPARE(TreeQueries::largestFiles(*tree, 0, most).size(), 3);
        QVERIFY(endsProcess([&] { std::ignore = TreeQueries::largestFiles(*tree, 0, most + 1); }));
    }

    void invalidRootGivesNothing()
    {
        const auto tree = treeOfFiles({ 5, 6, 7 });
        for (const auto root : { -1, 4, 1'000'000 }) {
            QVERIFY(TreeQueries::largestFiles(*tree, root, 10).isEmpty());
            QVERIFY(TreeQueries::search(*tree, root, u"f1"_s, 10).isEmpty());
        }
    }

    void largestFilesOfEqualSizeAreTheFirstMet()
    {
        const auto tree = treeOfFiles(QList<qint64>(100, 8));
        QStringList firstMet;
        for (const auto node : walkOrder(*tree).sliced(1, 5))
            firstMet.append(tree->name(node));
        QCOMPARE(names(TreeQueries::largestFiles(*tree, 0, 5)), firstMet);
    }

    void largestFilesAgreeWithSortingAll_data()
    {
        QTest::addColumn<qsizetype>("limit");
        QTest::addColumn<int>("kinds");
        for (const auto limit : { 1, 2, 7, 200, 999, 1000, 5000 }) {
            QTest::addRow("%d of few sizes", limit) << qsizetype(limit) << 10;
            QTest::addRow("%d of many sizes", limit) << qsizetype(limit) << 1'000'000;
        }
    }

    void largestFilesAgreeWithSortingAll()
    {
        QFETCH(qsizetype, limit);
        QFETCH(int, kinds);
        QRandomGenerator random(7);
        FileTree tree(3000);
        QList<qint32> folders{ tree.addNode(FileTree::noNode, "/r", 0, Flags::directory) };
        for (int i = 0; i < 3000; ++i) {
            const auto parent = folders[random.bounded(folders.size())];
            if (random.bounded(10) == 0)
                folders.append(tree.addNode(parent, "d" + std::to_string(i), 0, Flags::directory));
            else
                tree.addNode(parent, "f" + std::to_string(i), random.bounded(kinds), Flags::none);
        }
        tree.rollUp();
        tree.sortChildrenBySize();

        QList<qint32> expected;
        for (const auto node : walkOrder(tree)) {
            if (!tree.isDirectory(node) && tree.size(node) > 0)
                expected.append(node);
        }
        std::ranges::stable_sort(expected, [&](qint32 a, qint32 b) { return tree.size(a) > tree.size(b); });
        expected.resize(std::min(expected.size(), limit));
        QList<qint32> actual;
        for (const auto &snapshot : TreeQueries::largestFiles(tree, 0, limit))
            actual.append(snapshot.id);
        QCOMPARE(actual, expected);
    }

    void searchFindsFilesAndFolders()
    {
        FileTree tree(8);
        tree.addNode(FileTree::noNode, "/r", 0, Flags::directory);
        const auto folder = tree.addNode(0, "Laboratory", 0, Flags::directory);
        tree.addNode(folder, "lab.txt", 70, Flags::none);
        tree.addNode(folder, "other.txt", 7, Flags::none);
        tree.rollUp();
        tree.sortChildrenBySize();
        const auto found = TreeQueries::search(tree, 0, u"LAB"_s, 10);
        QCOMPARE(names(found), (QStringList{ u"Laboratory"_s, u"lab.txt"_s }));
        QCOMPARE(sizes(found), (QList<qint64>{ 77, 70 }));
    }

    void searchNeedsTwoCharactersAsPeopleCountThem_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<bool>("isLongEnough");
        QTest::newRow("empty") << QString() << false;
        QTest::newRow("one letter") << u"a"_s << false;
        QTest::newRow("two letters") << u"ab"_s << true;
        QTest::newRow("three letters") << u"lab"_s << true;
        QTest::newRow("one letter of two code points") << u"e\u0301"_s << false;
        QTest::newRow("one emoji of two code units") << u"📁"_s << false;
        QTest::newRow("two emoji") << u"📁📁"_s << true;
        QTest::newRow("two spaces") << u"  "_s << true;
    }

    void searchNeedsTwoCharactersAsPeopleCountThem()
    {
        QFETCH(QString, query);
        FileTree tree(8);
        tree.addNode(FileTree::noNode, "/r", 0, Flags::directory);
        tree.addNode(0, "lab.txt " + query.toStdString(), 1, Flags::none);
        QTEST(TreeQueries::isLongEnough(query), "isLongEnough");
        QTEST(!TreeQueries::search(tree, 0, query, 10).isEmpty(), "isLongEnough");
    }

    void searchFindsTheRootByItsPath()
    {
        FileTree tree(2);
        tree.addNode(FileTree::noNode, "/home/someone", 0, Flags::directory);
        QCOMPARE(names(TreeQueries::search(tree, 0, u"me/so"_s, 10)), QStringList{ u"/home/someone"_s });
    }

    void searchCutsBeforeItSorts()
    {
        FileTree tree(1001);
        tree.addNode(FileTree::noNode, "/r", 0, Flags::directory);
        for (qint64 size = 1; size <= 1000; ++size)
            tree.addNode(0, "match", size, Flags::none);
        tree.rollUp();
        tree.sortChildrenBySize();
        // The walk meets the smallest siblings first, so that the largest of all do not survive.
        const auto found = sizes(TreeQueries::search(tree, 0, u"match"_s, 300));
        QCOMPARE(found.size(), 300);
        for (qsizetype i = 0; i < found.size(); ++i)
            QCOMPARE(found[i], 300 - i);
    }

    void matchesOfEqualSizeKeepTheOrderOfTheWalk()
    {
        FileTree tree(8);
        tree.addNode(FileTree::noNode, "/r", 0, Flags::directory);
        for (const auto *name : { "twin-a", "twin-b", "twin-c" })
            tree.addNode(0, name, 8, Flags::none);
        tree.rollUp();
        tree.sortChildrenBySize();
        QStringList met;
        for (const auto node : walkOrder(tree).sliced(1))
            met.append(tree.name(node));
        QCOMPARE(names(TreeQueries::search(tree, 0, u"twin"_s, 10)), met);
    }

    void searchStaysBelowItsRoot()
    {
        FileTree tree(8);
        tree.addNode(FileTree::noNode, "/r", 0, Flags::directory);
        const auto folder = tree.addNode(0, "one", 0, Flags::directory);
        tree.addNode(folder, "match", 1, Flags::none);
        tree.addNode(0, "match", 1, Flags::none);
        QCOMPARE(TreeQueries::search(tree, folder, u"match"_s, 10).size(), 1);
        QCOMPARE(TreeQueries::search(tree, 0, u"match"_s, 10).size(), 2);
    }

    void searchWithoutRoomFindsNothing()
    {
        const auto tree = treeOfFiles({ 5, 6, 7 });
        QVERIFY(TreeQueries::search(*tree, 0, u"f1"_s, 0).isEmpty());
        QVERIFY(TreeQueries::search(*tree, 0, u"f1"_s, -1).isEmpty());
    }
};

QUILLBROOK_SUITE(TestTreeQueries, NoApplication)
#include "tst_TreeQueries.moc"
