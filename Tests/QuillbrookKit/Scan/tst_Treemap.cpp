#include "Scan/Treemap.h"
#include "Support/EndsProcess.h"
#include "Support/Suite.h"

#include <QTest>

#include <cmath>
#include <limits>
#include <numeric>
#include <tuple>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Flags = FileTree::Flags;

// A tree below the root "/home/someone".
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
    // The tiles below the root, once all nodes are there.
    std::vector<Treemap::Tile> tiles(const QRectF &in, int maximumDepth = 5)
    {
        tree.rollUp();
        tree.sortChildrenBySize();
        return Treemap::layout({ .tree = tree, .node = root, .in = in, .maximumDepth = maximumDepth });
    }

    FileTree tree{ 16 };
    qint32 root = folder(FileTree::noNode, "/home/someone");
};

// Tiles of files of these sizes in one folder, in the order of its list.
std::vector<Treemap::Tile> tilesOf(const QList<qint64> &sizes, const QRectF &in, double minimumSide = 3)
{
    MadeTree made;
    for (qsizetype i = sizes.size(); i-- > 0;)
        made.file(made.root, "file", sizes[i]);
    made.tree.rollUp();
    return Treemap::layout({ .tree = made.tree, .node = 0, .in = in, .minimumTileSide = minimumSide });
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
    void filesShareTheRectangle_data()
    {
        using Sizes = QList<qint64>;
        using Rectangles = QList<QRectF>;
        QTest::addColumn<Sizes>("sizes");
        QTest::addColumn<QRectF>("in");
        QTest::addColumn<double>("minimumSide");
        QTest::addColumn<Rectangles>("tiles");
        const QRectF square(0, 0, 128, 128);
        QTest::newRow("nothing") << Sizes{} << square << 3.0 << Rectangles{};
        QTest::newRow("empty files only") << Sizes{ 0, 0 } << square << 3.0 << Rectangles{};
        QTest::newRow("empty files take no area")
            << Sizes{ 10, 0, 0, 0 } << square << 3.0 << Rectangles{ square };
        QTest::newRow("width at the minimum") << Sizes{ 10 } << QRectF(0, 0, 3, 100) << 3.0 << Rectangles{};
        QTest::newRow("height at the minimum") << Sizes{ 10 } << QRectF(0, 0, 100, 3) << 3.0 << Rectangles{};
        QTest::newRow("just above the minimum")
            << Sizes{ 10 } << QRectF(0, 0, 3.001, 3.001) << 3.0 << Rectangles{ { 0, 0, 3.001, 3.001 } };
        QTest::newRow("no area") << Sizes{ 10 } << QRectF() << 3.0 << Rectangles{};
        QTest::newRow("negative width") << Sizes{ 10 } << QRectF(0, 0, -100, 100) << 3.0 << Rectangles{};
        QTest::newRow("not a number")
            << Sizes{ 10 } << QRectF(0, 0, std::nan(""), 100) << 3.0 << Rectangles{};
        QTest::newRow("two equal ones share a square in one row")
            << Sizes{ 100, 100 } << square << 3.0 << Rectangles{ { 0, 0, 128, 64 }, { 0, 64, 128, 64 } };
        QTest::newRow("strips from the top of a tall rectangle") << Sizes{ 300,
            100 } << QRectF(0, 0, 100, 400) << 3.0 << Rectangles{ { 0, 0, 100, 300 }, { 0, 300, 100, 100 } };
        // The thin one alone has the ratio 64, and so has the worst of both together.
        QTest::newRow("an equal ratio takes the item in")
            << Sizes{ 2, 126 } << square << 1.0 << Rectangles{ { 0, 0, 128, 2 }, { 0, 2, 128, 126 } };
        QTest::newRow("a ratio getting worse ends the row") << Sizes{ 50,
            50 } << QRectF(0, 0, 400, 200) << 3.0 << Rectangles{ { 0, 0, 200, 200 }, { 200, 0, 200, 200 } };
        QTest::newRow("a tile too thin leaves a gap")
            << Sizes{ 2, 126 } << square << 3.0 << Rectangles{ { 0, 2, 128, 126 } };
    }

    void filesShareTheRectangle()
    {
        QFETCH(QList<qint64>, sizes);
        QFETCH(QRectF, in);
        QFETCH(double, minimumSide);
        QList<QRectF> tiles;
        for (const auto &tile : tilesOf(sizes, in, minimumSide))
            tiles.append(tile.rect);
        QTEST(tiles, "tiles");
    }

    void invalidNodeHasNoTiles()
    {
        MadeTree made;
        made.file(made.root, "file", 10);
        for (const auto node : { -1, 2, 1'000'000 })
            QVERIFY(Treemap::layout({ .tree = made.tree, .node = node, .in = { 0, 0, 100, 100 } }).empty());
    }

    void depthEndsTheLayout()
    {
        for (const int depth : { 0, 1, 2, 3 }) {
            MadeTree made;
            const auto outer = made.folder(made.root, "outer");
            const auto inner = made.folder(outer, "inner");
            const std::vector expected{ outer, inner, made.file(inner, "file", 100) };
            QCOMPARE(ids(made.tiles({ 0, 0, 200, 100 }, depth)),
                std::vector(expected.begin(), expected.begin() + depth));
        }
    }

    void contentsLieInsideTheirFolder()
    {
        MadeTree made;
        const auto inner = made.folder(made.folder(made.root, "outer"), "inner");
        made.file(inner, "file", 100);
        const auto tiles = made.tiles({ 10, 20, 200, 100 });
        QCOMPARE(tiles.size(), size_t(3));
        QCOMPARE(tiles[0].rect, QRectF(10, 20, 200, 100));
        // The strip for the title is taken off at depth 0 only.
        QCOMPARE(tiles[1].rect, QRectF(11.5, 20 + 1.5 + 14, 197, 100 - 3 - 14));
        QCOMPARE(tiles[2].rect, QRectF(13, 20 + 3 + 14, 194, 80));
        for (qint32 depth = 0; depth < 3; ++depth)
            QCOMPARE(tiles[size_t(depth)].depth, depth);
    }

    void folderComesBeforeItsChildren()
    {
        MadeTree made;
        const auto first = made.folder(made.root, "first");
        const auto inFirst = made.file(first, "a", 200);
        const auto second = made.folder(made.root, "second");
        const auto inSecond = made.file(second, "b", 100);
        const auto tiles = made.tiles({ 0, 0, 300, 200 });
        QCOMPARE(ids(tiles), (std::vector{ first, inFirst, second, inSecond }));
        QVERIFY(tiles[0].rect.contains(tiles[1].rect));
        QVERIFY(tiles[2].rect.contains(tiles[3].rect));
    }

    void tileTellsItsNode_data()
    {
        QTest::addColumn<QByteArray>("root");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("text");
        const QByteArray home("/home/someone");
        QTest::newRow("ordinary") << home << QByteArray("name") << u"name"_s;
        QTest::newRow("root of the disk") << QByteArray("/") << QByteArray("name") << u"name"_s;
        QTest::newRow("not UTF-8") << home << QByteArray("a\xff") << u"a\uFFFD"_s;
        QTest::newRow("byte order mark") << home << QByteArray("\xef\xbb\xbfname") << u"\uFEFFname"_s;
        QTest::newRow("line feed") << home << QByteArray("a\nb") << u"a\nb"_s;
    }

    void tileTellsItsNode()
    {
        QFETCH(QByteArray, root);
        QFETCH(QByteArray, name);
        QFETCH(QString, text);
        FileTree tree(8);
        tree.addNode(FileTree::noNode, root.toStdString(), 0, Flags::directory);
        const auto focus = tree.addNode(0, name.toStdString(), 0, Flags::directory);
        const auto file = tree.addNode(focus, name.toStdString(), 10, Flags::none);
        tree.rollUp();
        const Treemap::Tile folderTile{ .id = focus,
            .rect = { 0, 0, 100, 100 },
            .bytes = 10,
            .name = text,
            .isDirectory = true,
            .path = (root == "/" ? QString() : u"/home/someone"_s) + u'/' + text };
        const Treemap::Tile fileTile{ .id = file,
            .rect = { 0, 0, 100, 100 },
            .bytes = 10,
            .name = text,
            .path = folderTile.path + u'/' + text };
        const QRectF in(0, 0, 100, 100);
        QVERIFY(Treemap::layout({ .tree = tree, .node = 0, .in = in }).front() == folderTile);
        QVERIFY(Treemap::layout({ .tree = tree, .node = focus, .in = in }).front() == fileTile);
    }

    void rectanglesFollowThePlainRule_data()
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

    void rectanglesFollowThePlainRule()
    {
        QFETCH(QList<qint64>, sizes);
        QFETCH(QRectF, in);
        const auto tiles = tilesOf(sizes, in);
        const auto expected = plainRectangles({ sizes.begin(), sizes.end() }, in, 3.0);
        QCOMPARE(tiles.size(), expected.size());
        QVERIFY(!tiles.empty());
        for (size_t i = 0; i < tiles.size(); ++i)
            QCOMPARE(tiles[i].rect, expected[i]);
    }

    void wideFolderIsLaidOut()
    {
        const QList<qint64> sizes(300'000, 4096);
        const QRectF in(0, 0, 1000, 600);
        QVERIFY(tilesOf(sizes, in).empty());
        const auto tiles = tilesOf(sizes, in, 0.5);
        QVERIFY(tiles.size() > size_t(sizes.size() / 2));
        for (const auto &tile : tiles)
            QVERIFY(std::abs(tile.rect.width() * tile.rect.height() - 2.0) < 0.001);
    }

    void overflowEndsTheProcess()
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
};

QUILLBROOK_SUITE(TestTreemap, NoApplication)
#include "tst_Treemap.moc"
