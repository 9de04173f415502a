#include "Scan/Treemap.h"
#include "Support/EndsProcess.h"

#include <QTest>

#include <cmath>
#include <limits>
#include <numeric>
#include <tuple>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Flags = FileTree::Flags;

// A tree below the root "/home/someone", finished by `finish`.
struct MadeTree
{
    qint32 folder(qint32 parent, std::string_view name)
    {
        return tree.addNode(parent, name, 0, Flags::directory);
    }
    qint32 file(qint32 parent, std::string_view name, qint64 size)
    {
        return tree.addNode(parent, name, size, Flags::none);
    }
    const FileTree &finish()
    {
        tree.rollUp();
        tree.sortChildrenBySize();
        return tree;
    }

    FileTree tree{ 16 };
    qint32 root = folder(FileTree::noNode, "/home/someone");
};

double area(const QRectF &rect)
{
    return rect.width() * rect.height();
}

std::vector<qint32> ids(const std::vector<Treemap::Tile> &tiles)
{
    std::vector<qint32> result;
    for (const auto &tile : tiles)
        result.push_back(tile.id);
    return result;
}

// The layout rule in its plainest form, to check the fast one against: smallest and largest of a row are
// looked for anew at every step.
std::vector<QRectF> plainRectangles(const std::vector<qint64> &sizes, QRectF in, double minimumSide)
{
    std::vector<QRectF> result;
    const auto sum = double(std::accumulate(sizes.begin(), sizes.end(), qint64(0)));
    const auto scale = in.width() * in.height() / sum;
    for (size_t i = 0; i < sizes.size();) {
        const auto side = std::min(in.width(), in.height());
        if (side <= minimumSide)
            break;
        auto rowArea = 0.0;
        auto previous = std::numeric_limits<double>::max();
        auto end = i;
        while (end < sizes.size()) {
            const auto candidate = rowArea + scale * double(sizes[end]);
            auto smallest = std::numeric_limits<double>::max();
            auto largest = 0.0;
            for (auto k = i; k <= end; ++k) {
                smallest = std::min(smallest, scale * double(sizes[k]));
                largest = std::max(largest, scale * double(sizes[k]));
            }
            const auto s = candidate * candidate;
            const auto t = side * side;
            const auto worst = std::max(t * largest / s, s / (t * smallest));
            if (previous < worst)
                break;
            previous = worst;
            rowArea = candidate;
            ++end;
        }
        const auto thickness = rowArea / side;
        const bool wide = in.height() <= in.width();
        auto position = wide ? in.y() : in.x();
        for (; i < end; ++i) {
            const auto length = side * (scale * double(sizes[i]) / rowArea);
            const auto rect = wide ? QRectF(in.x(), position, thickness, length)
                                   : QRectF(position, in.y(), length, thickness);
            if (rect.width() > minimumSide && rect.height() > minimumSide)
                result.push_back(rect);
            position += length;
        }
        in = wide ? QRectF(in.x() + thickness, in.y(), in.width() - thickness, in.height())
                  : QRectF(in.x(), in.y() + thickness, in.width(), in.height() - thickness);
    }
    return result;
}

} // namespace

class TestTreemap : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nodeWithoutVisibleChildrenHasNoTiles();
    void invalidNodeHasNoTiles();
    void sidesMustBeGreaterThanTheMinimum_data();
    void sidesMustBeGreaterThanTheMinimum();
    void depthZeroShowsNothing();
    void depthOneShowsDirectChildrenOnly();
    void singleChildFillsTheRectangle();
    void titleStripIsTakenOffAtDepthZeroOnly();
    void twoEqualChildrenShareASquareInOneRow();
    void tallRectangleGetsStripsFromTheTop();
    void equalRatioTakesTheItemIn();
    void ratioGettingWorseEndsTheRow();
    void tileTooThinLeavesAGap();
    void zeroSizedChildrenTakeNoArea();
    void folderComesBeforeItsChildren();
    void tileTellsItsNode();
    void pathsAreTheTreesPaths_data();
    void pathsAreTheTreesPaths();
    void rectanglesFollowThePlainRule_data();
    void rectanglesFollowThePlainRule();
    void wideFolderIsLaidOut();
    void overflowEndsTheProcess();
};

void TestTreemap::nodeWithoutVisibleChildrenHasNoTiles()
{
    MadeTree made;
    const auto empty = made.folder(made.root, "empty");
    made.file(made.root, "zero", 0);
    QVERIFY(Treemap::layout({ .tree = made.finish(), .node = empty, .in = { 0, 0, 100, 100 } }).empty());
    QVERIFY(Treemap::layout({ .tree = made.tree, .node = made.root, .in = { 0, 0, 100, 100 } }).empty());
}

void TestTreemap::invalidNodeHasNoTiles()
{
    MadeTree made;
    made.file(made.root, "file", 10);
    for (const auto node : { -1, 2, 1'000'000 })
        QVERIFY(Treemap::layout({ .tree = made.finish(), .node = node, .in = { 0, 0, 100, 100 } }).empty());
}

void TestTreemap::sidesMustBeGreaterThanTheMinimum_data()
{
    QTest::addColumn<QRectF>("in");
    QTest::addColumn<bool>("shown");
    QTest::newRow("width at the minimum") << QRectF(0, 0, 3.0, 100) << false;
    QTest::newRow("height at the minimum") << QRectF(0, 0, 100, 3.0) << false;
    QTest::newRow("just above") << QRectF(0, 0, 3.001, 3.001) << true;
    QTest::newRow("no area") << QRectF() << false;
    QTest::newRow("negative width") << QRectF(0, 0, -100, 100) << false;
    QTest::newRow("not a number") << QRectF(0, 0, std::nan(""), 100) << false;
}

void TestTreemap::sidesMustBeGreaterThanTheMinimum()
{
    QFETCH(QRectF, in);
    MadeTree made;
    made.file(made.root, "file", 10);
    const auto tiles = Treemap::layout({ .tree = made.finish(), .node = made.root, .in = in });
    QTEST(!tiles.empty(), "shown");
}

void TestTreemap::depthZeroShowsNothing()
{
    MadeTree made;
    made.file(made.root, "file", 10);
    const QRectF in(0, 0, 100, 100);
    QVERIFY(
        Treemap::layout({ .tree = made.finish(), .node = made.root, .in = in, .maximumDepth = 0 }).empty());
}

void TestTreemap::depthOneShowsDirectChildrenOnly()
{
    MadeTree made;
    const auto folder = made.folder(made.root, "folder");
    made.file(folder, "inside", 100);
    const auto file = made.file(made.root, "file", 50);
    const QRectF in(0, 0, 300, 300);
    const auto tiles
        = Treemap::layout({ .tree = made.finish(), .node = made.root, .in = in, .maximumDepth = 1 });
    QCOMPARE(ids(tiles), (std::vector{ folder, file }));
    QCOMPARE(Treemap::layout({ .tree = made.tree, .node = made.root, .in = in }).size(), size_t(3));
}

void TestTreemap::singleChildFillsTheRectangle()
{
    MadeTree made;
    const auto folder = made.folder(made.root, "folder");
    const auto inside = made.file(folder, "inside", 100);
    const auto tiles
        = Treemap::layout({ .tree = made.finish(), .node = made.root, .in = { 10, 20, 200, 100 } });
    QCOMPARE(ids(tiles), (std::vector{ folder, inside }));
    QCOMPARE(tiles[0].rect, QRectF(10, 20, 200, 100));
    QCOMPARE(tiles[0].depth, 0);
    QCOMPARE(tiles[1].rect, QRectF(11.5, 20 + 1.5 + 14, 197, 100 - 3 - 14));
    QCOMPARE(tiles[1].depth, 1);
}

void TestTreemap::titleStripIsTakenOffAtDepthZeroOnly()
{
    MadeTree made;
    const auto outer = made.folder(made.root, "outer");
    const auto inner = made.folder(outer, "inner");
    made.file(inner, "file", 100);
    const auto tiles
        = Treemap::layout({ .tree = made.finish(), .node = made.root, .in = { 0, 0, 200, 100 } });
    QCOMPARE(tiles.size(), size_t(3));
    QCOMPARE(tiles[1].rect, QRectF(1.5, 15.5, 197, 83));
    QCOMPARE(tiles[2].rect, QRectF(3, 17, 194, 80));
    QCOMPARE(tiles[2].depth, 2);
}

void TestTreemap::twoEqualChildrenShareASquareInOneRow()
{
    MadeTree made;
    made.file(made.root, "a", 100);
    made.file(made.root, "b", 100);
    const auto tiles
        = Treemap::layout({ .tree = made.finish(), .node = made.root, .in = { 0, 0, 100, 100 } });
    QCOMPARE(tiles.size(), size_t(2));
    QCOMPARE(tiles[0].rect, QRectF(0, 0, 100, 50));
    QCOMPARE(tiles[1].rect, QRectF(0, 50, 100, 50));
}

void TestTreemap::tallRectangleGetsStripsFromTheTop()
{
    MadeTree made;
    const auto large = made.file(made.root, "large", 300);
    const auto small = made.file(made.root, "small", 100);
    const auto tiles
        = Treemap::layout({ .tree = made.finish(), .node = made.root, .in = { 0, 0, 100, 400 } });
    QCOMPARE(ids(tiles), (std::vector{ large, small }));
    QCOMPARE(tiles[0].rect, QRectF(0, 0, 100, 300));
    QCOMPARE(tiles[1].rect, QRectF(0, 300, 100, 100));
}

void TestTreemap::equalRatioTakesTheItemIn()
{
    // In link order, which is last to first here: the thin one alone has the ratio 64, and so has the worst
    // of both together.
    FileTree tree(4);
    tree.addNode(FileTree::noNode, "/home/someone", 0, Flags::directory);
    tree.addNode(0, "thick", 126, Flags::none);
    tree.addNode(0, "thin", 2, Flags::none);
    tree.rollUp();
    const auto tiles
        = Treemap::layout({ .tree = tree, .node = 0, .in = { 0, 0, 128, 128 }, .minimumTileSide = 1 });
    QCOMPARE(tiles.size(), size_t(2));
    QCOMPARE(tiles[0].rect, QRectF(0, 0, 128, 2));
    QCOMPARE(tiles[1].rect, QRectF(0, 2, 128, 126));
}

void TestTreemap::ratioGettingWorseEndsTheRow()
{
    MadeTree made;
    made.file(made.root, "a", 50);
    made.file(made.root, "b", 50);
    const auto tiles
        = Treemap::layout({ .tree = made.finish(), .node = made.root, .in = { 0, 0, 400, 200 } });
    QCOMPARE(tiles[0].rect, QRectF(0, 0, 200, 200));
    QCOMPARE(tiles[1].rect, QRectF(200, 0, 200, 200));
}

void TestTreemap::tileTooThinLeavesAGap()
{
    FileTree tree(4);
    tree.addNode(FileTree::noNode, "/home/someone", 0, Flags::directory);
    const auto thick = tree.addNode(0, "thick", 126, Flags::none);
    tree.addNode(0, "thin", 2, Flags::none);
    tree.rollUp();
    const auto tiles = Treemap::layout({ .tree = tree, .node = 0, .in = { 0, 0, 128, 128 } });
    QCOMPARE(ids(tiles), (std::vector{ thick }));
    QCOMPARE(tiles[0].rect, QRectF(0, 2, 128, 126));
}

void TestTreemap::zeroSizedChildrenTakeNoArea()
{
    MadeTree made;
    const auto file = made.file(made.root, "file", 10);
    for (int i = 0; i < 50; ++i)
        made.file(made.root, "zero", 0);
    const auto tiles
        = Treemap::layout({ .tree = made.finish(), .node = made.root, .in = { 0, 0, 100, 100 } });
    QCOMPARE(ids(tiles), (std::vector{ file }));
    QCOMPARE(tiles[0].rect, QRectF(0, 0, 100, 100));
}

void TestTreemap::folderComesBeforeItsChildren()
{
    MadeTree made;
    const auto first = made.folder(made.root, "first");
    const auto inFirst = made.file(first, "a", 200);
    const auto second = made.folder(made.root, "second");
    const auto inSecond = made.file(second, "b", 100);
    const auto tiles
        = Treemap::layout({ .tree = made.finish(), .node = made.root, .in = { 0, 0, 300, 200 } });
    QCOMPARE(ids(tiles), (std::vector{ first, inFirst, second, inSecond }));
    QVERIFY(tiles[0].rect.contains(tiles[1].rect));
    QVERIFY(tiles[2].rect.contains(tiles[3].rect));
}

void TestTreemap::tileTellsItsNode()
{
    MadeTree made;
    const auto folder = made.folder(made.root, "folder");
    const auto file = made.file(folder, "file.txt", 100);
    const auto tiles
        = Treemap::layout({ .tree = made.finish(), .node = made.root, .in = { 0, 0, 200, 100 } });
    const Treemap::Tile expectedFolder{ .id = folder,
        .rect = { 0, 0, 200, 100 },
        .depth = 0,
        .bytes = 100,
        .name = u"folder"_s,
        .isDirectory = true,
        .path = u"/home/someone/folder"_s };
    QVERIFY(tiles[0] == expectedFolder);
    QCOMPARE(tiles[1].id, file);
    QCOMPARE(tiles[1].name, u"file.txt"_s);
    QVERIFY(!tiles[1].isDirectory);
    QCOMPARE(tiles[1].path, u"/home/someone/folder/file.txt"_s);
}

void TestTreemap::pathsAreTheTreesPaths_data()
{
    QTest::addColumn<QByteArray>("root");
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("ordinary") << QByteArray("/home/someone") << QByteArray("name");
    QTest::newRow("root of the disk") << QByteArray("/") << QByteArray("name");
    QTest::newRow("not UTF-8") << QByteArray("/home/someone") << QByteArray("a\xff\xe2\x82");
    QTest::newRow("byte order mark") << QByteArray("/home/someone") << QByteArray("\xef\xbb\xbfname");
    QTest::newRow("line feed") << QByteArray("/home/someone") << QByteArray("a\nb");
}

void TestTreemap::pathsAreTheTreesPaths()
{
    QFETCH(QByteArray, root);
    QFETCH(QByteArray, name);
    FileTree tree(8);
    tree.addNode(FileTree::noNode, root.toStdString(), 0, Flags::directory);
    const auto focus = tree.addNode(0, name.toStdString(), 0, Flags::directory);
    const auto folder = tree.addNode(focus, name.toStdString(), 0, Flags::directory);
    tree.addNode(folder, name.toStdString(), 10, Flags::none);
    tree.rollUp();
    tree.sortChildrenBySize();
    for (const auto node : { 0, focus }) {
        const auto tiles = Treemap::layout({ .tree = tree, .node = node, .in = { 0, 0, 100, 100 } });
        QCOMPARE(tiles.size(), size_t(node == 0 ? 3 : 2));
        for (const auto &tile : tiles) {
            QCOMPARE(tile.path, tree.path(tile.id));
            QCOMPARE(tile.name, tree.name(tile.id));
        }
    }
}

void TestTreemap::rectanglesFollowThePlainRule_data()
{
    QTest::addColumn<QList<qint64>>("sizes");
    QTest::addColumn<QRectF>("in");
    QTest::newRow("textbook") << QList<qint64>{ 6, 6, 4, 3, 2, 2, 1 } << QRectF(0, 0, 600, 400);
    QTest::newRow("all equal") << QList<qint64>(17, 5) << QRectF(3, 4, 301, 77);
    QTest::newRow("one giant") << QList<qint64>{ 1'000'000, 10, 9, 8, 7 } << QRectF(0, 0, 1000, 600);
    QList<qint64> halving;
    for (qint64 size = qint64(1) << 40; size > 0; size /= 2)
        halving.append(size);
    QTest::newRow("halving") << halving << QRectF(0, 0, 1000, 600);
    QList<qint64> many;
    for (qint64 i = 0; i < 2000; ++i)
        many.append(1'000'000 / (i + 1) + 1);
    QTest::newRow("many") << many << QRectF(0, 0, 1000, 600);
    QTest::newRow("many, tall") << many << QRectF(0, 0, 90, 1400);
}

void TestTreemap::rectanglesFollowThePlainRule()
{
    QFETCH(QList<qint64>, sizes);
    QFETCH(QRectF, in);
    MadeTree made;
    for (const auto size : sizes)
        made.file(made.root, "file", size);
    const auto tiles = Treemap::layout({ .tree = made.finish(), .node = made.root, .in = in });
    const auto expected = plainRectangles({ sizes.begin(), sizes.end() }, in, 3.0);
    QCOMPARE(tiles.size(), expected.size());
    QVERIFY(!tiles.empty());
    for (size_t i = 0; i < tiles.size(); ++i)
        QCOMPARE(tiles[i].rect, expected[i]);
}

void TestTreemap::wideFolderIsLaidOut()
{
    MadeTree made;
    constexpr int width = 300'000;
    for (int i = 0; i < width; ++i)
        made.file(made.root, "file", 4096);
    const QRectF in(0, 0, 1000, 600);
    QVERIFY(Treemap::layout({ .tree = made.finish(), .node = made.root, .in = in }).empty());
    const auto tiles
        = Treemap::layout({ .tree = made.tree, .node = made.root, .in = in, .minimumTileSide = 0.5 });
    QVERIFY(tiles.size() > width / 2);
    for (const auto &tile : tiles)
        QVERIFY(std::abs(area(tile.rect) - 2.0) < 0.001);
}

void TestTreemap::overflowEndsTheProcess()
{
    FileTree tree(4);
    tree.addNode(FileTree::noNode, "/home/someone", 0, Flags::directory);
    tree.addNode(0, "a", std::numeric_limits<qint64>::max() - 1, Flags::none);
    const auto sized = [&](qint64 size) {
        tree.addNode(0, "b", size, Flags::none);
        return Treemap::layout({ .tree = tree, .node = 0, .in = { 0, 0, 100, 100 } }).size();
    };
    QCOMPARE(sized(1), size_t(1));
    QVERIFY(endsProcess([&] { std::ignore = sized(1); }));
}

QTEST_APPLESS_MAIN(TestTreemap)
#include "tst_Treemap.moc"
