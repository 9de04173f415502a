#include "Screens/Map/TreemapGeometry.h"
#include "Support/Suite.h"

#include <QRandomGenerator>
#include <QTest>

#include <vector>

using namespace Quillbrook;
using TreemapGeometry::Direction;

namespace {

// A folder with a title strip and two files side by side, and a file to the right of the folder.
const std::vector<Treemap::Tile> someTiles{
    { .id = 1, .rect = { 0, 0, 100, 100 }, .depth = 0, .name = "folder", .isDirectory = true },
    { .id = 2, .rect = { 1.5, 15.5, 47, 83 }, .depth = 1, .name = "left" },
    { .id = 3, .rect = { 50, 15.5, 48.5, 83 }, .depth = 1, .name = "right" },
    { .id = 4, .rect = { 100, 0, 60, 100 }, .depth = 0, .name = "beside" },
};

// A tree of `folders` folders with files of seeded sizes.
void growTree(FileTree &tree, quint32 seed, int folders)
{
    QRandomGenerator random(seed);
    std::vector<qint32> parents{ tree.addNode(FileTree::noNode, "/made/up", 0, FileTree::Flags::directory) };
    for (int i = 0; i < folders; ++i) {
        const auto above = parents[random.bounded(quint32(parents.size()))];
        const auto folder = tree.addNode(above, "folder", 0, FileTree::Flags::directory);
        parents.push_back(folder);
        for (auto files = random.bounded(12); files > 0; --files)
            tree.addNode(folder, "file", 1 + random.bounded(1 << random.bounded(1, 25)), {});
    }
    tree.rollUp();
    tree.sortChildrenBySize();
}

} // namespace

Q_DECLARE_METATYPE(Quillbrook::TreemapGeometry::Direction)

class TestTreemapGeometry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void innermostTileUnderAPointWins_data()
    {
        QTest::addColumn<QPointF>("point");
        QTest::addColumn<int>("position");
        QTest::newRow("title strip") << QPointF(50, 5) << 0;
        QTest::newRow("child") << QPointF(20, 50) << 1;
        QTest::newRow("gap between two children of a folder") << QPointF(49.2, 50) << 0;
        QTest::newRow("inset beside a child") << QPointF(0.5, 50) << 0;
        QTest::newRow("edge shared by two tiles belongs to the later") << QPointF(100, 50) << 3;
    }

    void innermostTileUnderAPointWins()
    {
        QFETCH(QPointF, point);
        QFETCH(int, position);
        QCOMPARE(TreemapGeometry::tileAt(someTiles, point), std::optional<size_t>(position));
    }

    void nothingIsUnderAPointOutside()
    {
        QVERIFY(!TreemapGeometry::tileAt(someTiles, { 170, 50 }));
        QVERIFY(!TreemapGeometry::tileAt({}, { 0, 0 }));
    }

    void tileIsFoundByItsNode()
    {
        QCOMPARE(TreemapGeometry::tileOf(someTiles, 3), std::optional<size_t>(2));
        QVERIFY(!TreemapGeometry::tileOf(someTiles, 9));
        QVERIFY(!TreemapGeometry::tileOf(someTiles, FileTree::noNode));
    }

    void ownAreaOfAFolderEndsAtItsFirstChild()
    {
        QCOMPARE(TreemapGeometry::ownArea(someTiles, 0), QRectF(0, 0, 100, 15.5));
    }

    void ownAreaOfAFileIsItsTile()
    {
        QCOMPARE(TreemapGeometry::ownArea(someTiles, 1), someTiles[1].rect);
        QCOMPARE(TreemapGeometry::ownArea(someTiles, 3), someTiles[3].rect);
    }

    void neighbourIsTheNearestTileInADirection_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<Direction>("direction");
        QTest::addColumn<int>("to");
        QTest::newRow("down from a folder into it") << 0 << Direction::down << 2;
        QTest::newRow("up from a child to its folder") << 1 << Direction::up << 0;
        QTest::newRow("right to the next file") << 1 << Direction::right << 2;
        QTest::newRow("right out of the folder") << 2 << Direction::right << 3;
        QTest::newRow("left back into it, in the same row") << 3 << Direction::left << 2;
        QTest::newRow("right from the title of the folder") << 0 << Direction::right << 3;
    }

    void neighbourIsTheNearestTileInADirection()
    {
        QFETCH(int, from);
        QFETCH(Direction, direction);
        QFETCH(int, to);
        QCOMPARE(TreemapGeometry::neighbour(someTiles, size_t(from), direction), std::optional<size_t>(to));
    }

    void nothingLiesBeyondTheEdge()
    {
        QVERIFY(!TreemapGeometry::neighbour(someTiles, 3, Direction::right));
        QVERIFY(!TreemapGeometry::neighbour(someTiles, 0, Direction::up));
        QVERIFY(!TreemapGeometry::neighbour(someTiles, 1, Direction::down));
        QVERIFY(!TreemapGeometry::neighbour(someTiles, 0, Direction::left));
    }

    void rowIsKeptWhereATileBesideItIsNearer()
    {
        const std::vector<Treemap::Tile> tiles{
            { .id = 1, .rect = { 0, 0, 50, 50 } },
            { .id = 2, .rect = { 50, 60, 50, 40 } },
            { .id = 3, .rect = { 58, 0, 42, 60 } },
        };
        QCOMPARE(TreemapGeometry::neighbour(tiles, 0, Direction::right), std::optional<size_t>(2));
    }

    void everyTileCanBeReachedFromTheFirst_data()
    {
        QTest::addColumn<quint32>("seed");
        for (const quint32 seed : { 1U, 2U, 3U, 4U, 5U, 6U })
            QTest::addRow("seed %u", seed) << seed;
    }

    void everyTileCanBeReachedFromTheFirst()
    {
        QFETCH(quint32, seed);
        FileTree tree(2000);
        growTree(tree, seed, 150);
        const auto tiles = Treemap::layout({ .tree = tree, .node = 0, .in = QRectF(0, 0, 1000, 600) });
        QVERIFY(tiles.size() > 100);

        std::vector<bool> reached(tiles.size(), false);
        std::vector<size_t> pending{ 0 };
        reached[0] = true;
        while (!pending.empty()) {
            const auto position = pending.back();
            pending.pop_back();
            for (const auto direction :
                { Direction::left, Direction::right, Direction::up, Direction::down }) {
                const auto next = TreemapGeometry::neighbour(tiles, position, direction);
                if (next && !reached[*next]) {
                    reached[*next] = true;
                    pending.push_back(*next);
                }
            }
        }
        QCOMPARE(std::ranges::count(reached, false), 0);
    }
};

QUILLBROOK_SUITE(TestTreemapGeometry, QCoreApplication)
#include "tst_TreemapGeometry.moc"
