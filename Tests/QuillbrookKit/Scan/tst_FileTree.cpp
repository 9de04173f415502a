#include "Scan/FileTree.h"
#include "Support/EndsProcess.h"
#include "Support/Suite.h"

#include <QTest>

#include <algorithm>
#include <limits>
#include <memory>
#include <random>
#include <tuple>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Flags = FileTree::Flags;

// "/a" holds the folders "b" and "bc" and the file "f"; "/a/b" holds the file "x".
struct SmallTree
{
    FileTree tree{ 8 };
    qint32 root = tree.addNode(FileTree::noNode, "/a", 0, Flags::directory);
    qint32 b = tree.addNode(root, "b", 0, Flags::directory);
    qint32 bc = tree.addNode(root, "bc", 0, Flags::directory);
    qint32 f = tree.addNode(root, "f", 7, Flags::none);
    qint32 x = tree.addNode(b, "x", 5, Flags::none);
};

// The walk as text: "name@depth" in the order of visits.
QStringList visits(const FileTree &tree, qint32 from, qint32 closed = FileTree::noNode)
{
    QStringList result;
    tree.walk(from, [&](qint32 node, qint32 depth) {
        result << tree.name(node) + u'@' + QString::number(depth);
        return node != closed;
    });
    return result;
}

} // namespace

class TestFileTree : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyTreeHasNothing()
    {
        FileTree tree(0);
        tree.rollUp();
        tree.sortChildrenBySize();
        QCOMPARE(tree.nodeCount(), 0);
        QCOMPARE(tree.fileCount(), 0);
        QCOMPARE(tree.dirCount(), 0);
        QCOMPARE(visits(tree, 0), QStringList());
        QCOMPARE(tree.path(0), QString());
        QCOMPARE(tree.find(u"/a"_s, 0), FileTree::noNode);
    }

    void nodeRemembersWhatItWasGiven()
    {
        const SmallTree made;
        const auto &tree = made.tree;
        QCOMPARE(tree.nodeCount(), 5);
        QCOMPARE(tree.fileCount(), 2);
        QCOMPARE(tree.dirCount(), 3);
        QCOMPARE(tree.parent()[size_t(made.x)], made.b);
        QCOMPARE(tree.parent()[size_t(made.root)], FileTree::noNode);
        QCOMPARE(tree.ownSize()[size_t(made.x)], 5);
        QCOMPARE(tree.totalSize()[size_t(made.x)], 5);
        QCOMPARE(tree.nameLength()[size_t(made.bc)], 2);
        QCOMPARE(tree.rawName(made.bc), std::string_view("bc"));
        QCOMPARE(
            std::string_view(tree.nameArena().data(), tree.nameArena().size()), std::string_view("/abbcfx"));
        QVERIFY(tree.isDirectory(made.b));
        QVERIFY(!tree.isDirectory(made.x));
        QCOMPARE(tree.children(made.x), QList<qint32>());
        QCOMPARE(tree.children(made.root), (QList<qint32>{ made.f, made.bc, made.b }));
    }

    void addNodesEqualsAddNodeForEach()
    {
        SmallTree one;
        SmallTree many;
        const std::string_view names = "firstlink.app";
        const std::vector<FileTree::Entry> entries{
            { .size = 11, .nameStart = 0, .flags = Flags::none },
            { .size = 22, .nameStart = 5, .flags = Flags::symlink },
            { .size = 0, .nameStart = 9, .flags = Flags::directory },
        };
        const auto first = many.tree.addNodes(many.root, entries, names);
        QCOMPARE(first, 5);
        std::ignore = one.tree.addNode(one.root, "first", 11, Flags::none);
        std::ignore = one.tree.addNode(one.root, "link", 22, Flags::symlink);
        std::ignore = one.tree.addNode(one.root, ".app", 0, Flags::directory);
        const auto equal = [](auto a, auto b) { return std::ranges::equal(a, b); };
        QVERIFY(equal(one.tree.parent(), many.tree.parent()));
        QVERIFY(equal(one.tree.firstChild(), many.tree.firstChild()));
        QVERIFY(equal(one.tree.nextSibling(), many.tree.nextSibling()));
        QVERIFY(equal(one.tree.ownSize(), many.tree.ownSize()));
        QVERIFY(equal(one.tree.totalSize(), many.tree.totalSize()));
        QVERIFY(equal(one.tree.nameOffset(), many.tree.nameOffset()));
        QVERIFY(equal(one.tree.nameLength(), many.tree.nameLength()));
        QVERIFY(equal(one.tree.flags(), many.tree.flags()));
        QVERIFY(equal(one.tree.nameArena(), many.tree.nameArena()));
        QCOMPARE(many.tree.fileCount(), one.tree.fileCount());
        QCOMPARE(many.tree.dirCount(), one.tree.dirCount());
        QCOMPARE(many.tree.addNodes(many.b, {}, {}), FileTree::noNode);
        QCOMPARE(many.tree.nodeCount(), one.tree.nodeCount());
        QCOMPARE(many.tree.children(many.b), QList<qint32>{ many.x });
    }

    void treeGrowsPastItsExpectation()
    {
        FileTree tree(1);
        std::ignore = tree.addNode(FileTree::noNode, "/", 0, Flags::directory);
        for (int i = 0; i < 10000; ++i)
            std::ignore = tree.addNode(0, std::to_string(i), i, Flags::none);
        tree.rollUp();
        QCOMPARE(tree.nodeCount(), 10001);
        QCOMPARE(tree.size(0), 9999LL * 10000 / 2);
        QCOMPARE(tree.path(4712), u"/4711"_s);
    }

    // Exactly 2^31 nodes still have an index each.
    void indicesEndAtTwoToTheThirtyFirst()
    {
        constexpr size_t count = size_t{ 1 } << 31U;
        QVERIFY(FileTree::hasIndicesFor(count, 0));
        QVERIFY(!FileTree::hasIndicesFor(count + 1, 0));
        QVERIFY(FileTree::hasIndicesFor(1, count - 1));
        QVERIFY(!FileTree::hasIndicesFor(1, count));
    }

    void nodeCostsThirtyFiveBytesOfArrays()
    {
        const SmallTree made;
        const auto &tree = made.tree;
        const auto bytes = tree.parent().size_bytes() + tree.firstChild().size_bytes()
            + tree.nextSibling().size_bytes() + tree.ownSize().size_bytes() + tree.totalSize().size_bytes()
            + tree.nameOffset().size_bytes() + tree.nameLength().size_bytes() + tree.flags().size_bytes();
        QCOMPARE(bytes, size_t(35 * tree.nodeCount()));
    }

    void longNameIsClippedInLengthButNotInTheArena()
    {
        FileTree tree(4);
        const std::string longName(70000, 'n');
        const auto root = tree.addNode(FileTree::noNode, "/", 0, Flags::directory);
        const auto node = tree.addNode(root, longName, 1, Flags::none);
        const auto next = tree.addNode(root, "next", 1, Flags::none);
        QCOMPARE(tree.nameLength()[size_t(node)], 65535);
        QCOMPARE(tree.name(node).size(), 65535);
        QCOMPARE(tree.nameArena().size(), size_t(1 + 70000 + 4));
        QCOMPARE(tree.name(next), u"next"_s);
    }

    void invalidIndexReadsNeutral_data()
    {
        QTest::addColumn<qint32>("node");
        QTest::newRow("no node") << FileTree::noNode;
        QTest::newRow("far below") << std::numeric_limits<qint32>::min();
        QTest::newRow("one past the end") << 5;
        QTest::newRow("far beyond") << std::numeric_limits<qint32>::max();
    }

    void invalidIndexReadsNeutral()
    {
        QFETCH(qint32, node);
        const SmallTree made;
        const auto &tree = made.tree;
        QVERIFY(!tree.isValid(node));
        QCOMPARE(tree.size(node), 0);
        QCOMPARE(tree.name(node), QString());
        QCOMPARE(tree.rawName(node), std::string_view());
        QCOMPARE(tree.path(node), QString());
        QCOMPARE(tree.rawPath(node), std::string());
        QCOMPARE(tree.nodeFlags(node), Flags::none);
        QVERIFY(!tree.isDirectory(node));
        QCOMPARE(tree.children(node), QList<qint32>());
        QCOMPARE(tree.find(u"/a/b"_s, node), FileTree::noNode);
        QVERIFY(!tree.snapshot(node).has_value());
    }

    void changingAMissingNodeEndsTheProcess()
    {
        SmallTree made;
        QVERIFY(endsProcess([&] { std::ignore = made.tree.addNode(5, "orphan", 0, Flags::none); }));
        QVERIFY(endsProcess([&] { std::ignore = made.tree.addNode(-2, "orphan", 0, Flags::none); }));
        QVERIFY(endsProcess([&] { made.tree.setUnreadable(FileTree::noNode); }));
        QVERIFY(endsProcess([&] { made.tree.setUnreadable(5); }));
        QVERIFY(!endsProcess([&] { made.tree.setUnreadable(4); }));
    }

    void setUnreadableKeepsTheOtherFlags()
    {
        SmallTree made;
        made.tree.setUnreadable(made.b);
        QCOMPARE(made.tree.nodeFlags(made.b), Flags::directory | Flags::unreadable);
        QCOMPARE(made.tree.nodeFlags(made.bc), Flags::directory);
    }

    void rollUpAddsEverySizeToAllAncestors()
    {
        SmallTree made;
        made.tree.rollUp();
        QCOMPARE(made.tree.size(made.root), 12);
        QCOMPARE(made.tree.size(made.b), 5);
        QCOMPARE(made.tree.size(made.bc), 0);
        QCOMPARE(made.tree.ownSize()[size_t(made.root)], 0);
    }

    void rollUpOverflowEndsTheProcess()
    {
        FileTree tree(4);
        const auto root = tree.addNode(FileTree::noNode, "/", 0, Flags::directory);
        std::ignore = tree.addNode(root, "huge", std::numeric_limits<qint64>::max(), Flags::none);
        QVERIFY(!endsProcess([&] { tree.rollUp(); }));
        std::ignore = tree.addNode(root, "one", 1, Flags::none);
        QVERIFY(endsProcess([&] { tree.rollUp(); }));
    }

    void sortPutsTheLargestFirst()
    {
        FileTree tree(8);
        const auto root = tree.addNode(FileTree::noNode, "/", 0, Flags::directory);
        const auto small = tree.addNode(root, "small", 1, Flags::none);
        const auto folder = tree.addNode(root, "folder", 0, Flags::directory);
        const auto large = tree.addNode(root, "large", 3, Flags::none);
        const auto low = tree.addNode(folder, "low", 4, Flags::none);
        const auto high = tree.addNode(folder, "high", 5, Flags::none);
        tree.rollUp();
        tree.sortChildrenBySize();
        QCOMPARE(tree.children(root), (QList<qint32>{ folder, large, small }));
        QCOMPARE(tree.children(folder), (QList<qint32>{ high, low }));
    }

    void sortIsStableInLongLists_data()
    {
        QTest::addColumn<int>("count");
        for (const int count : { 1, 2, 3, 39, 40, 41, 256, 257, 5000 })
            QTest::addRow("%d children", count) << count;
    }

    void sortIsStableInLongLists()
    {
        QFETCH(int, count);
        std::mt19937 random(4711);
        FileTree tree(16);
        const auto root = tree.addNode(FileTree::noNode, "/", 0, Flags::directory);
        std::vector<qint32> expected;
        for (int i = 0; i < count; ++i)
            expected.insert(
                expected.begin(), tree.addNode(root, "n", qint64(random() % 20) * 4096, Flags::none));
        std::ranges::stable_sort(expected, [&](qint32 a, qint32 b) { return tree.size(a) > tree.size(b); });
        tree.rollUp();
        tree.sortChildrenBySize();
        QCOMPARE(tree.children(root), QList<qint32>(expected.begin(), expected.end()));
    }

    void threadsSortTheSameWay()
    {
        const auto build = [](int threads) {
            std::mt19937 random(4711);
            auto tree = std::make_unique<FileTree>(300000);
            std::ignore = tree->addNode(FileTree::noNode, "/", 0, Flags::directory);
            for (qint32 node = 1; node < 300000; ++node)
                std::ignore
                    = tree->addNode(qint32(random() % unsigned(node)), "n", random() % 9, Flags::none);
            tree->rollUp();
            tree->sortChildrenBySize(threads);
            return tree;
        };
        const auto alone = build(1);
        for (const int threads : { 2, 3, 32 }) {
            const auto shared = build(threads);
            QVERIFY(std::ranges::equal(alone->firstChild(), shared->firstChild()));
            QVERIFY(std::ranges::equal(alone->nextSibling(), shared->nextSibling()));
        }
    }

    void pathJoinsComponents_data()
    {
        QTest::addColumn<QByteArray>("root");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("text");
        const QByteArray root("/a");
        QTest::newRow("root of the disk") << QByteArray("/") << QByteArray("name") << u"name"_s;
        QTest::newRow("another root") << root << QByteArray("name") << u"name"_s;
        QTest::newRow("no name") << root << QByteArray("") << u""_s;
        QTest::newRow("not UTF-8") << root << QByteArray("\xFF\xFEname") << u"\uFFFD\uFFFDname"_s;
        QTest::newRow("cut short") << root << QByteArray("caf\xC3") << u"caf\uFFFD"_s;
        QTest::newRow("line feed") << root << QByteArray("a\n") << u"a\n"_s;
        QTest::newRow("byte order marks")
            << root << QByteArray("\xEF\xBB\xBF\xEF\xBB\xBF.x") << u"\uFEFF\uFEFF.x"_s;
        QTest::newRow("byte order mark alone") << root << QByteArray("\xEF\xBB\xBF") << u"\uFEFF"_s;
    }

    void pathJoinsComponents()
    {
        QFETCH(QByteArray, root);
        QFETCH(QByteArray, name);
        QFETCH(QString, text);
        FileTree tree(4);
        const auto folder
            = tree.addNode(tree.addNode(FileTree::noNode, root.toStdString(), 0, Flags::directory),
                name.toStdString(), 0, {});
        const auto file = tree.addNode(folder, "f", 0, Flags::none);
        const auto prefix = root == "/" ? root : root + '/';
        QCOMPARE(tree.path(0), QString::fromUtf8(root));
        QCOMPARE(tree.rawName(folder), std::string_view(name.data(), size_t(name.size())));
        QCOMPARE(tree.name(folder), text);
        QCOMPARE(tree.rawPath(file), (prefix + name + "/f").toStdString());
        QCOMPARE(tree.path(file), QString::fromUtf8(prefix) + text + u"/f"_s);
    }

    void findFollowsThePath_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<qint32>("from");
        QTest::addColumn<qint32>("found");
        QTest::newRow("the start itself") << u"/a"_s << 0 << 0;
        QTest::newRow("the start with a slash") << u"/a/"_s << 0 << 0;
        QTest::newRow("a folder") << u"/a/b"_s << 0 << 1;
        QTest::newRow("a folder with doubled and trailing slashes") << u"/a//b/"_s << 0 << 1;
        QTest::newRow("a file") << u"/a/b/x"_s << 0 << 4;
        QTest::newRow("a name that begins alike") << u"/a/bc"_s << 0 << 2;
        QTest::newRow("nothing of that name") << u"/a/bcd"_s << 0 << -1;
        QTest::newRow("below a file") << u"/a/f/x"_s << 0 << -1;
        QTest::newRow("a root that begins alike") << u"/ab"_s << 0 << -1;
        QTest::newRow("above the start") << u"/"_s << 0 << -1;
        QTest::newRow("empty") << QString() << 0 << -1;
        QTest::newRow("another start itself") << u"/a/b"_s << 1 << 1;
        QTest::newRow("below another start") << u"/a/b/x"_s << 1 << 4;
        QTest::newRow("beside another start, alike") << u"/a/bc"_s << 1 << -1;
        QTest::newRow("above another start") << u"/a"_s << 1 << -1;
        QTest::newRow("another case") << u"/a/B"_s << 0 << -1;
    }

    void findFollowsThePath()
    {
        QFETCH(QString, path);
        QFETCH(qint32, from);
        const SmallTree made;
        QTEST(made.tree.find(path, from), "found");
    }

    void findBelowTheFileSystemRoot()
    {
        FileTree tree(2);
        const auto root = tree.addNode(FileTree::noNode, "/", 0, Flags::directory);
        const auto child = tree.addNode(root, "name", 0, Flags::directory);
        QCOMPARE(tree.find(u"/"_s, root), root);
        QCOMPARE(tree.find(u"/name"_s, root), child);
        QCOMPARE(tree.find(u"//name"_s, root), child);
        QCOMPARE(tree.find(u"name"_s, root), FileTree::noNode);
    }

    void findComparesByCanonicalEquivalence_data()
    {
        QTest::addColumn<QByteArray>("onDisk");
        QTest::addColumn<QString>("wanted");
        QTest::addColumn<bool>("found");
        QTest::newRow("composed, asked decomposed") << QByteArray("caf\xC3\xA9") << u"cafe\u0301"_s << true;
        QTest::newRow("decomposed, asked composed") << QByteArray("cafe\xCC\x81") << u"caf\u00E9"_s << true;
        QTest::newRow("kelvin sign, asked as K") << QByteArray("\xE2\x84\xAA") << u"K"_s << true;
        QTest::newRow("K, asked as kelvin sign") << QByteArray("K") << u"\u212A"_s << true;
        QTest::newRow("accent left out") << QByteArray("caf\xC3\xA9") << u"cafe"_s << false;
        QTest::newRow("repaired text of a broken name") << QByteArray("caf\xE9") << u"caf\uFFFD"_s << true;
        QTest::newRow("byte order mark before the name")
            << QByteArray("\xEF\xBB\xBF.cache") << u".cache"_s << false;
        QTest::newRow("byte order mark in both")
            << QByteArray("\xEF\xBB\xBF.cache") << u"\uFEFF.cache"_s << true;
        QTest::newRow("what the broken byte would be in another encoding")
            << QByteArray("caf\xE9") << u"caf\u00E9"_s << false;
    }

    void findComparesByCanonicalEquivalence()
    {
        QFETCH(QByteArray, onDisk);
        QFETCH(QString, wanted);
        QFETCH(bool, found);
        FileTree tree(4);
        const auto root = tree.addNode(FileTree::noNode, "/r\xC3\xA9", 0, Flags::directory);
        const auto node = tree.addNode(root, onDisk.toStdString(), 0, Flags::none);
        QCOMPARE(tree.find(u"/re\u0301/"_s + wanted, root), found ? node : FileTree::noNode);
    }

    void walkGoesLastSiblingFirstAndDeepFirst()
    {
        SmallTree made;
        QCOMPARE(visits(made.tree, made.root),
            (QStringList{ u"/a@0"_s, u"b@1"_s, u"x@2"_s, u"bc@1"_s, u"f@1"_s }));
        made.tree.rollUp();
        made.tree.sortChildrenBySize();
        QCOMPARE(visits(made.tree, made.root),
            (QStringList{ u"/a@0"_s, u"bc@1"_s, u"b@1"_s, u"x@2"_s, u"f@1"_s }));
        QCOMPARE(visits(made.tree, made.b), (QStringList{ u"b@0"_s, u"x@1"_s }));
        QCOMPARE(
            visits(made.tree, made.root, made.b), (QStringList{ u"/a@0"_s, u"bc@1"_s, u"b@1"_s, u"f@1"_s }));
        QCOMPARE(visits(made.tree, FileTree::noNode), QStringList());
        QCOMPARE(visits(made.tree, 5), QStringList());
    }

    void walkBearsAVeryDeepTree()
    {
        constexpr qint32 depth = 300000;
        FileTree tree(depth);
        auto node = tree.addNode(FileTree::noNode, "/", 0, Flags::directory);
        for (qint32 i = 1; i < depth; ++i)
            node = tree.addNode(node, "d", 1, Flags::directory);
        tree.rollUp();
        tree.sortChildrenBySize();
        qint32 deepest = 0;
        tree.walk(0, [&](qint32, qint32 at) {
            deepest = std::max(deepest, at);
            return true;
        });
        QCOMPARE(deepest, depth - 1);
        QCOMPARE(tree.size(0), depth - 1);
        QCOMPARE(tree.path(node).size(), 2 * (depth - 1));
    }

    void snapshotCopiesANode()
    {
        SmallTree made;
        made.tree.rollUp();
        const auto snapshot = made.tree.snapshot(made.b);
        QVERIFY(snapshot.has_value());
        const NodeSnapshot expected{
            .id = made.b, .name = u"b"_s, .path = u"/a/b"_s, .bytes = 5, .isDirectory = true
        };
        QCOMPARE(*snapshot, expected);
        QCOMPARE(qHash(*snapshot), qHash(expected));
        auto other = expected;
        other.bytes = 6;
        QVERIFY(*snapshot != other);
    }
};

QUILLBROOK_SUITE(TestFileTree, QCoreApplication)
#include "tst_FileTree.moc"
