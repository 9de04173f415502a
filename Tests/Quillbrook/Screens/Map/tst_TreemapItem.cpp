#include "Screens/Map/TreemapItem.h"
#include "Screens/Theme.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QAccessible>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;

namespace {

struct Fixture : ScannedHome
{
    Fixture()
    {
        window.resize(800, 500);
        item.setParentItem(window.contentItem());
        item.setSize({ 780, 460 });
        item.setPosition({ 10, 20 });
        item.setMap(&map);
    }

    void show()
    {
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        window.requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }
    void scanAndShow()
    {
        scan();
        show();
        QTRY_VERIFY(!map.tiles().empty());
    }

    [[nodiscard]] size_t position(const std::string &name) const
    {
        return TreemapGeometry::tileOf(map.tiles(), node(name)).value();
    }
    [[nodiscard]] QRectF tile(const std::string &name) const { return map.tiles()[position(name)].rect; }
    [[nodiscard]] QPoint middle(const std::string &name) const
    {
        return item.mapToScene(tile(name).center()).toPoint();
    }
    [[nodiscard]] QPoint title(const std::string &name) const
    {
        return item.mapToScene(tile(name).topLeft() + QPointF(20, 8)).toPoint();
    }
    void click(QPoint point) { QTest::mouseClick(&window, Qt::LeftButton, {}, point); }
    /// From elsewhere: a pointer that is already there makes no event.
    void pointAt(QPoint point)
    {
        QTest::mouseMove(&window, { 1, 1 });
        QTest::mouseMove(&window, point);
    }
    void press(Qt::Key key) { QTest::keyClick(&window, key); }

    /// The colour of the window at a point of the map.
    [[nodiscard]] QColor colourAt(QPointF point)
    {
        const auto inWindow = item.mapToScene(point);
        return window.grabWindow().pixelColor(int(inWindow.x()), int(inWindow.y()));
    }

    MapState map{ model };
    QQuickWindow window;
    TreemapItem item;
};

QAccessibleInterface *childNamed(QAccessibleInterface *list, const QString &name)
{
    for (int i = 0; i < list->childCount(); ++i) {
        auto *child = list->child(i);
        if (child && child->text(QAccessible::Name) == name)
            return child;
    }
    return nullptr;
}

} // namespace

class TestTreemapItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void paintsTheTilesOfTheMap()
    {
        Fixture fixture;
        fixture.scanAndShow();
        QCOMPARE(fixture.colourAt(fixture.tile("Videos/film.mp4").center()).rgb(),
            Theme::tileColor("mp4", false).rgb());
        QCOMPARE(
            fixture.colourAt(fixture.tile("lab.txt").center()).rgb(), Theme::tileColor("txt", false).rgb());
    }

    void paintsTheNoticeOfAnEmptyMap()
    {
        Fixture fixture;
        fixture.show();
        const auto empty = fixture.window.grabWindow();
        fixture.scan();
        QTRY_VERIFY(!fixture.map.tiles().empty());
        bool hasInk = false;
        for (int x = 300; x < 500; ++x)
            hasInk = hasInk || empty.pixelColor(x, 250) != empty.pixelColor(1, 1);
        QVERIFY(hasInk);
    }

    void layoutFollowsTheItemsSize()
    {
        Fixture fixture;
        fixture.scanAndShow();
        QCOMPARE(fixture.map.layoutCount(), 1U);
        fixture.item.setSize({ 700, 400 });
        QTRY_COMPARE(fixture.map.layoutCount(), 2U);
        QCOMPARE(fixture.map.size(), QSizeF(700, 400));
        QCOMPARE(
            fixture.colourAt(fixture.tile("lab.txt").center()).rgb(), Theme::tileColor("txt", false).rgb());
    }

    void hoverAndSelectionRedrawWithoutALayout()
    {
        Fixture fixture;
        fixture.scanAndShow();
        const auto edge = QPointF(fixture.tile("lab.txt").left() + 0.5, fixture.tile("lab.txt").center().y());
        const auto plain = fixture.colourAt(edge);
        fixture.pointAt(fixture.middle("lab.txt"));
        QTRY_COMPARE(fixture.map.hover(), fixture.node("lab.txt"));
        const auto hovered = fixture.colourAt(edge);
        QVERIFY(hovered != plain);
        fixture.click(fixture.middle("lab.txt"));
        const auto selected = fixture.colourAt(edge);
        QVERIFY(selected != hovered);
        fixture.model.navigation().setSelection(std::nullopt);
        QTest::mouseMove(&fixture.window, { 1, 1 });
        fixture.item.setFocus(false);
        QTRY_COMPARE(fixture.colourAt(edge), plain);
        QCOMPARE(fixture.map.layoutCount(), 1U);
    }

    void pointerThatLeavesClearsTheHover()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.pointAt(fixture.middle("lab.txt"));
        QTRY_COMPARE(fixture.map.hover(), fixture.node("lab.txt"));
        QTest::mouseMove(&fixture.window, { 1, 1 });
        QTRY_COMPARE(fixture.map.hover(), FileTree::noNode);
    }

    void clickSelects()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.click(fixture.title("Projects"));
        QCOMPARE(fixture.model.navigation().selection(), fixture.snapshot("Projects"));
        QCOMPARE(fixture.model.navigation().focus(), fixture.model.scans().rootNode());
        QVERIFY(fixture.item.hasActiveFocus());
    }

    void doubleClickGoesIntoAFolder()
    {
        Fixture fixture;
        fixture.scanAndShow();
        QTest::mouseDClick(&fixture.window, Qt::LeftButton, {}, fixture.title("Projects"));
        QCOMPARE(fixture.model.navigation().focus(), fixture.node("Projects"));
        QVERIFY(!fixture.model.navigation().selection());
    }

    void doubleClickOnAFileKeepsItSelected()
    {
        Fixture fixture;
        fixture.scanAndShow();
        QTest::mouseDClick(&fixture.window, Qt::LeftButton, {}, fixture.middle("lab.txt"));
        QCOMPARE(fixture.model.navigation().selection(), fixture.snapshot("lab.txt"));
        QCOMPARE(fixture.model.navigation().focus(), fixture.model.scans().rootNode());
    }

    void releaseOutsideIsNoClick()
    {
        Fixture fixture;
        fixture.scanAndShow();
        QTest::mousePress(&fixture.window, Qt::LeftButton, {}, fixture.middle("lab.txt"));
        QTest::mouseRelease(&fixture.window, Qt::LeftButton, {}, { 2, 2 });
        QVERIFY(!fixture.model.navigation().selection());
    }

    void wheelIsLeftToWhatIsBelow()
    {
        Fixture fixture;
        fixture.scanAndShow();
        const QPointF point = fixture.middle("lab.txt");
        QWheelEvent wheel(point, fixture.window.mapToGlobal(point), {}, { 0, 120 }, {}, {}, {}, false);
        QCoreApplication::sendEvent(&fixture.window, &wheel);
        QVERIFY(!wheel.isAccepted());
        QCOMPARE(fixture.map.layoutCount(), 1U);
    }

    void tabEntersTheWalkAndShowsTheRing()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.press(Qt::Key_Tab);
        QVERIFY(fixture.item.hasActiveFocus());
        QCOMPARE(fixture.item.focusedTile(), std::optional<size_t>(0));
        const auto &tile = fixture.map.tiles().front().rect;
        QCOMPARE(fixture.colourAt({ tile.left() + 1, tile.center().y() }).rgb(), Theme::accent().rgb());
        fixture.item.setFocus(false);
        QVERIFY(!fixture.item.focusedTile());
    }

    void arrowsWalkAndEnterOpens()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.item.forceActiveFocus();
        fixture.map.standOn(fixture.position("Videos"));
        fixture.press(Qt::Key_Down);
        QCOMPARE(fixture.map.current(), fixture.node("Videos/film.mp4"));
        fixture.press(Qt::Key_Space);
        QCOMPARE(fixture.model.navigation().selection(), fixture.snapshot("Videos/film.mp4"));
        fixture.press(Qt::Key_Up);
        fixture.press(Qt::Key_Return);
        QCOMPARE(fixture.model.navigation().focus(), fixture.node("Videos"));
    }

    void escapeGoesUpOnlyBelowTheTop()
    {
        Fixture fixture;
        fixture.scanAndShow();
        fixture.item.forceActiveFocus();
        fixture.model.navigation().drillInto(fixture.node("Projects"));
        fixture.model.navigation().drillInto(fixture.node("Projects/renderer"));
        fixture.press(Qt::Key_Escape);
        QCOMPARE(fixture.model.navigation().focus(), fixture.node("Projects"));
        fixture.press(Qt::Key_Backspace);
        QCOMPARE(fixture.model.navigation().focus(), fixture.model.scans().rootNode());
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QCoreApplication::sendEvent(&fixture.item, &escape);
        QVERIFY(!escape.isAccepted());
    }

    void keysWithModifiersAreLeftAlone()
    {
        Fixture fixture;
        fixture.scanAndShow();
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Left, Qt::ControlModifier);
        QCoreApplication::sendEvent(&fixture.item, &key);
        QVERIFY(!key.isAccepted());
    }

    void emptyMapTakesNoTab()
    {
        Fixture fixture;
        fixture.show();
        QVERIFY(!fixture.item.activeFocusOnTab());
        fixture.scan();
        QTRY_VERIFY(fixture.item.activeFocusOnTab());
    }

    void tilesAreToldByNameAndSize()
    {
        Fixture fixture;
        fixture.scanAndShow();
        auto *list = QAccessible::queryAccessibleInterface(&fixture.item);
        QVERIFY(list != nullptr);
        QCOMPARE(list->role(), QAccessible::List);
        QCOMPARE(list->text(QAccessible::Name), "What's using space");
        QCOMPARE(list->childCount(), static_cast<int>(fixture.map.tiles().size()));
        QCOMPARE(list->parent(), QAccessible::queryAccessibleInterface(&fixture.window));
        auto *film = childNamed(list, "film.mp4, 80.0 MB");
        QVERIFY(film != nullptr);
        QCOMPARE(film->role(), QAccessible::ListItem);
        QCOMPARE(film->parent(), list);
        QCOMPARE(list->indexOfChild(film), static_cast<int>(fixture.position("Videos/film.mp4")));
        QVERIFY(childNamed(list, "Projects, 120 MB") != nullptr);
        QVERIFY(list->child(-1) == nullptr);
        QVERIFY(list->child(list->childCount()) == nullptr);
    }

    void tileToldHasItsPlaceOnTheScreen()
    {
        Fixture fixture;
        fixture.scanAndShow();
        auto *list = QAccessible::queryAccessibleInterface(&fixture.item);
        const auto *film = childNamed(list, "film.mp4, 80.0 MB");
        QVERIFY(film != nullptr);
        const auto expected = fixture.window.mapToGlobal(fixture.middle("Videos/film.mp4"));
        QVERIFY((film->rect().center() - expected).manhattanLength() <= 3);
        QVERIFY(list->rect().contains(film->rect().center()));
    }

    void tileToldIsFoundByItsPlace()
    {
        Fixture fixture;
        fixture.scanAndShow();
        auto *list = QAccessible::queryAccessibleInterface(&fixture.item);
        const auto point = fixture.window.mapToGlobal(fixture.middle("lab.txt"));
        const auto *found = list->childAt(point.x(), point.y());
        QVERIFY(found != nullptr);
        QCOMPARE(found->text(QAccessible::Name), "lab.txt, 10.0 MB");
    }

    void pressingATileOpensIt()
    {
        Fixture fixture;
        fixture.scanAndShow();
        auto *list = QAccessible::queryAccessibleInterface(&fixture.item);
        auto *lab = childNamed(list, "lab.txt, 10.0 MB");
        QVERIFY(lab != nullptr && lab->actionInterface() != nullptr);
        lab->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(fixture.model.navigation().selection(), fixture.snapshot("lab.txt"));
        auto *projects = childNamed(list, "Projects, 120 MB");
        QVERIFY(projects != nullptr);
        projects->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(fixture.model.navigation().focus(), fixture.node("Projects"));
    }

    void statesTellFocusAndSelection()
    {
        Fixture fixture;
        fixture.scanAndShow();
        auto *list = QAccessible::queryAccessibleInterface(&fixture.item);
        auto *lab = childNamed(list, "lab.txt, 10.0 MB");
        QVERIFY(lab != nullptr);
        QVERIFY(lab->state().focusable && lab->state().selectable);
        QVERIFY(!lab->state().focused && !lab->state().selected);
        QVERIFY(list->focusChild() == nullptr);
        lab->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
        QVERIFY(lab->state().focused);
        QCOMPARE(list->focusChild(), lab);
        fixture.press(Qt::Key_Space);
        QVERIFY(lab->state().selected);
    }

    void tilesOfAnOlderLayoutAreInvalid()
    {
        Fixture fixture;
        fixture.scanAndShow();
        auto *list = QAccessible::queryAccessibleInterface(&fixture.item);
        auto *projects = childNamed(list, "Projects, 120 MB");
        QVERIFY(projects != nullptr && projects->isValid());
        fixture.model.navigation().drillInto(fixture.node("Projects"));
        fixture.map.layoutIfNeeded();
        QVERIFY(!projects->isValid());
        QCOMPARE(projects->text(QAccessible::Name), "");
        projects->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(fixture.model.navigation().breadcrumb().size(), 2);
        QVERIFY(childNamed(list, "renderer, 100 MB") != nullptr);
    }

    void interfaceSurvivesItsItem()
    {
        ScannedHome home;
        home.scan();
        MapState map(home.model);
        map.setSize({ 500, 400 });
        auto *item = new TreemapItem;
        item->setMap(&map);
        item->setSize({ 500, 400 });
        map.layoutIfNeeded();
        auto *list = QAccessible::queryAccessibleInterface(item);
        const auto id = QAccessible::uniqueId(list);
        const auto child = QAccessible::uniqueId(list->child(0));
        delete item;
        QVERIFY(QAccessible::accessibleInterface(id) == nullptr);
        QVERIFY(QAccessible::accessibleInterface(child) == nullptr);
    }
};

QUILLBROOK_SUITE(TestTreemapItem, QGuiApplication)
#include "tst_TreemapItem.moc"
