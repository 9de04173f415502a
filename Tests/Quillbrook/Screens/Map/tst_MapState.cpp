#include "Screens/Map/MapState.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using TreemapGeometry::Direction;

namespace {

constexpr QSizeF viewSize(1000, 600);

struct Fixture : ScannedHome
{
    void show(QSizeF size = viewSize)
    {
        map.setSize(size);
        map.layoutIfNeeded();
    }
    void scanAndShow()
    {
        scan();
        show();
    }

    [[nodiscard]] const Treemap::Tile &tile(const std::string &name) const
    {
        return map.tiles()[TreemapGeometry::tileOf(map.tiles(), node(name)).value()];
    }
    [[nodiscard]] QPointF middle(const std::string &name) const { return tile(name).rect.center(); }
    /// In the strip with its title.
    [[nodiscard]] QPointF title(const std::string &name) const
    {
        return tile(name).rect.topLeft() + QPointF(20, 8);
    }

    MapState map{ model };
};

} // namespace

class TestMapState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void layoutRunsOnceAtFirstAppearance()
    {
        Fixture fixture;
        fixture.scanAndShow();
        QCOMPARE(fixture.map.layoutCount(), 1U);
        QVERIFY(!fixture.map.tiles().empty());
        fixture.map.layoutIfNeeded();
        QCOMPARE(fixture.map.layoutCount(), 1U);
    }

    void smallViewIsEmptyWithoutALayout_data()
    {
        QTest::addColumn<QSizeF>("size");
        QTest::newRow("10 wide") << QSizeF(10, 600);
        QTest::newRow("10 high") << QSizeF(1000, 10);
        QTest::newRow("nothing") << QSizeF(0, 0);
    }

    void smallViewIsEmptyWithoutALayout()
    {
        QFETCH(QSizeF, size);
        Fixture fixture;
        fixture.scan();
        fixture.show(size);
        QVERIFY(fixture.map.tiles().empty());
        QCOMPARE(fixture.map.layoutCount(), 0U);
    }

    void viewOverTenPointsIsLaidOut()
    {
        Fixture fixture;
        fixture.scan();
        fixture.show({ 10.5, 10.5 });
        QCOMPARE(fixture.map.layoutCount(), 1U);
    }

    void layoutRunsAgainOnlyWhenItsKeyChanges()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.show({ 900, 600 });
        QCOMPARE(fixture.map.layoutCount(), 2U);
        fixture.model.navigation().drillInto(fixture.node("Projects"));
        fixture.map.layoutIfNeeded();
        QCOMPARE(fixture.map.layoutCount(), 3U);
        fixture.model.navigation().popTo(0);
        fixture.map.layoutIfNeeded();
        QCOMPARE(fixture.map.layoutCount(), 4U);
        fixture.model.navigation().popTo(0);
        fixture.model.navigation().drillInto(fixture.node("lab.txt"));
        fixture.show({ 900, 600 });
        QCOMPARE(fixture.map.layoutCount(), 4U);
    }

    void anotherScanForcesALayout()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.scan();
        fixture.map.layoutIfNeeded();
        QCOMPARE(fixture.map.layoutCount(), 2U);
    }

    void hoveringAndSelectingCauseNoLayout()
    {
        Fixture fixture;
        fixture.scanAndShow();
        QSignalSpy tiles(&fixture.map, &MapState::tilesChanged);
        QSignalSpy marks(&fixture.map, &MapState::marksChanged);
        fixture.map.hoverAt(fixture.middle("Videos/film.mp4"));
        fixture.map.clickAt(fixture.middle("lab.txt"));
        fixture.map.walk(Direction::left);
        QCOMPARE(fixture.map.layoutCount(), 1U);
        QCOMPARE(tiles.count(), 0);
        QVERIFY(marks.count() >= 3);
    }

    void emptyMapSaysWhy()
    {
        Fixture fixture;
        fixture.show();
        QVERIFY(fixture.map.tiles().empty());
        QCOMPARE(fixture.map.emptyText(), "Scan this Mac to see what is using it.");
        fixture.model.scans().scan({ .scope = Scope::complete });
        fixture.map.layoutIfNeeded();
        QVERIFY(fixture.map.tiles().empty());
        QCOMPARE(fixture.map.emptyText(), "Measuring…");
        QTRY_COMPARE(fixture.model.scans().phase().kind, Phase::Kind::ready);
    }

    void hoverReportsTheInnermostTile()
    {
        Fixture fixture;
        fixture.scanAndShow();
        const auto point = fixture.middle("Projects/renderer/scene.glb");
        fixture.map.hoverAt(point);
        QCOMPARE(fixture.map.hover(), fixture.node("Projects/renderer/scene.glb"));
        QCOMPARE(fixture.map.hoverPoint(), point);
        fixture.map.hoverAt(fixture.title("Projects"));
        QCOMPARE(fixture.map.hover(), fixture.node("Projects"));
        fixture.map.hoverAt({ -5, -5 });
        QCOMPARE(fixture.map.hover(), FileTree::noNode);
    }

    void hoverOverAGapReportsTheFolder()
    {
        Fixture fixture;
        fixture.scanAndShow();
        // The inset between a folder's edge and its contents.
        fixture.map.hoverAt(fixture.tile("Videos").rect.bottomLeft() + QPointF(0.7, -20));
        QCOMPARE(fixture.map.hover(), fixture.node("Videos"));
    }

    void leavingThePointerClearsTheHover()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.map.hoverAt(fixture.middle("lab.txt"));
        QVERIFY(fixture.map.tooltipVisible());
        fixture.map.hoverLeft();
        QCOMPARE(fixture.map.hover(), FileTree::noNode);
        QVERIFY(!fixture.map.tooltipVisible());
    }

    void hoverFollowsALayoutUnderARestingPointer()
    {
        Fixture fixture;
        fixture.scanAndShow();
        const auto point = fixture.middle("Projects/renderer/scene.glb");
        fixture.map.hoverAt(point);
        fixture.model.navigation().drillInto(fixture.node("Videos"));
        fixture.map.layoutIfNeeded();
        QCOMPARE(fixture.map.hover(), fixture.node("Videos/film.mp4"));
        QCOMPARE(fixture.map.tooltipName(), "film.mp4");
    }

    void clickSelectsTheTileUnderThePointer()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.map.clickAt(fixture.title("Projects"));
        QCOMPARE(fixture.model.navigation().selection(), fixture.snapshot("Projects"));
        QCOMPARE(fixture.model.navigation().focus(), fixture.model.scans().rootNode());
        QCOMPARE(fixture.map.selected(), fixture.node("Projects"));
    }

    void clickWhereNoTileIsClearsTheSelection()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.map.clickAt(fixture.middle("lab.txt"));
        QVERIFY(fixture.model.navigation().selection());
        fixture.map.clickAt({ 5000, 5000 });
        QVERIFY(!fixture.model.navigation().selection());
    }

    void doubleClickGoesIntoAFolder()
    {
        Fixture fixture;
        fixture.scanAndShow();
        const auto point = fixture.title("Projects");
        fixture.map.clickAt(point);
        fixture.map.doubleClickAt(point);
        QCOMPARE(fixture.model.navigation().focus(), fixture.node("Projects"));
        QVERIFY(!fixture.model.navigation().selection());
    }

    void doubleClickOnAFileSelectsItAndKeepsTheFocus()
    {
        Fixture fixture;
        fixture.scanAndShow();
        const auto point = fixture.middle("Videos/film.mp4");
        fixture.map.clickAt(point);
        fixture.map.doubleClickAt(point);
        QCOMPARE(fixture.model.navigation().selection(), fixture.snapshot("Videos/film.mp4"));
        QCOMPARE(fixture.model.navigation().focus(), fixture.model.scans().rootNode());
    }

    void doubleClickMeansWhatTheFirstClickMet()
    {
        Fixture fixture;
        fixture.scanAndShow();
        const auto point = fixture.title("Videos");
        fixture.map.clickAt(point);
        // The selection bar may change the map's size: something else lies under the pointer now.
        fixture.show({ 1400, 600 });
        QCOMPARE(fixture.map.hitTest(point), fixture.node("Projects"));
        fixture.map.doubleClickAt(point);
        QCOMPARE(fixture.model.navigation().focus(), fixture.node("Videos"));
    }

    void tooltipTellsNameSizeAndPath()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.map.hoverAt(fixture.middle("Videos/film.mp4"));
        QCOMPARE(fixture.map.tooltipName(), "film.mp4");
        QCOMPARE(fixture.map.tooltipSize(), "80.0 MB");
        QCOMPARE(fixture.map.tooltipPath(), "~/Videos/film.mp4");
    }

    void tooltipStaysInsideTheMap_data()
    {
        QTest::addColumn<QSizeF>("size");
        QTest::addColumn<QPointF>("pointer");
        QTest::addColumn<QPointF>("panel");
        QTest::newRow("beside the pointer") << viewSize << QPointF(100, 100) << QPointF(114, 118);
        QTest::newRow("near the right edge") << viewSize << QPointF(900, 100) << QPointF(670, 118);
        QTest::newRow("just before it stops") << viewSize << QPointF(656, 100) << QPointF(670, 118);
        QTest::newRow("left of the view") << viewSize << QPointF(-20, 100) << QPointF(8, 118);
        QTest::newRow("view narrower than the panel")
            << QSizeF(200, 600) << QPointF(100, 100) << QPointF(8, 118);
        QTest::newRow("90 above the bottom") << viewSize << QPointF(100, 510) << QPointF(114, 528);
        QTest::newRow("within the bottom 90") << viewSize << QPointF(100, 511) << QPointF(114, 433);
    }

    void tooltipStaysInsideTheMap()
    {
        QFETCH(QSizeF, size);
        QFETCH(QPointF, pointer);
        QFETCH(QPointF, panel);
        Fixture fixture;
        fixture.scan();
        fixture.show(size);
        fixture.map.hoverAt(pointer);
        QCOMPARE(fixture.map.tooltipPosition(), panel);
    }

    void selectionOfAnotherTreeIsNotMarked()
    {
        Fixture fixture;
        fixture.scanAndShow();
        auto older = fixture.snapshot("lab.txt");
        older.path = "/home/someone/was-here-before.txt";
        fixture.model.navigation().setSelection(older);
        QCOMPARE(fixture.map.selected(), FileTree::noNode);
    }

    void walkStartsAtTheSelection()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.model.navigation().setSelection(fixture.snapshot("lab.txt"));
        fixture.map.enterWalk();
        QCOMPARE(fixture.map.current(), fixture.node("lab.txt"));

        Fixture untouched;
        untouched.scanAndShow();
        untouched.map.walk(Direction::down);
        QCOMPARE(untouched.map.current(), untouched.map.tiles().front().id);
    }

    void walkStepsToTheNearestTile()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.map.standOn(TreemapGeometry::tileOf(fixture.map.tiles(), fixture.node("Videos")).value());
        fixture.map.walk(Direction::down);
        QCOMPARE(fixture.map.current(), fixture.node("Videos/film.mp4"));
        fixture.map.walk(Direction::up);
        QCOMPARE(fixture.map.current(), fixture.node("Videos"));
    }

    void currentTileCanBeOpenedAndSelected()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.map.standOn(TreemapGeometry::tileOf(fixture.map.tiles(), fixture.node("Videos")).value());
        fixture.map.selectCurrent();
        QCOMPARE(fixture.model.navigation().selection(), fixture.snapshot("Videos"));
        fixture.map.activateCurrent();
        QCOMPARE(fixture.model.navigation().focus(), fixture.node("Videos"));

        fixture.map.walk(Direction::down);
        QCOMPARE(fixture.map.current(), fixture.node("Videos/film.mp4"));
        fixture.map.activateCurrent();
        QCOMPARE(fixture.model.navigation().selection(), fixture.snapshot("Videos/film.mp4"));
        QCOMPARE(fixture.model.navigation().focus(), fixture.node("Videos"));
    }

    void goingUpStandsOnTheFolderJustLeft()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.model.navigation().drillInto(fixture.node("Projects"));
        fixture.map.layoutIfNeeded();
        fixture.map.walk(Direction::down);
        QVERIFY(fixture.map.goUp());
        QCOMPARE(fixture.model.navigation().focus(), fixture.model.scans().rootNode());
        QCOMPARE(fixture.map.current(), fixture.node("Projects"));
    }

    void goingUpAtTheTopDoesNothing()
    {
        Fixture fixture;
        fixture.scanAndShow();
        QVERIFY(!fixture.map.goUp());
        QCOMPARE(fixture.model.navigation().focus(), fixture.model.scans().rootNode());
    }

    void scanEmptiesTheMapAndItsMarks()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.map.hoverAt(fixture.middle("lab.txt"));
        fixture.map.standOn(0);
        fixture.model.scans().scan({});
        fixture.map.layoutIfNeeded();
        QVERIFY(fixture.map.tiles().empty());
        QCOMPARE(fixture.map.hover(), FileTree::noNode);
        QCOMPARE(fixture.map.current(), FileTree::noNode);
        QVERIFY(!fixture.map.tooltipVisible());
        QTRY_COMPARE(fixture.model.scans().phase().kind, Phase::Kind::ready);
    }
};

QUILLBROOK_SUITE(TestMapState, QGuiApplication)
#include "tst_MapState.moc"
