#include "Screens/Map/TreemapPainter.h"
#include "Screens/Theme.h"
#include "Support/Suite.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <vector>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using TreemapPainter::Outline;

namespace {

Treemap::Tile file(const QRectF &rect, const QString &name = "a.txt")
{
    return { .id = 1, .rect = rect, .bytes = 1536, .name = name };
}

Treemap::Tile folder(const QRectF &rect, qint32 depth = 0)
{
    return { .id = 2, .rect = rect, .depth = depth, .bytes = 1536, .name = "folder", .isDirectory = true };
}

QImage page()
{
    QImage image(200, 120, QImage::Format_ARGB32_Premultiplied);
    image.fill(Theme::page());
    return image;
}

QImage painted(const std::vector<Treemap::Tile> &tiles)
{
    auto image = page();
    TreemapPainter::paintTiles(image, tiles);
    return image;
}

QColor blend(const QColor &below, const QColor &above, double opacity)
{
    const auto mix = [opacity](int a, int b) { return qRound(a + (b - a) * opacity); };
    return { mix(below.red(), above.red()), mix(below.green(), above.green()),
        mix(below.blue(), above.blue()) };
}

bool isNear(const QColor &a, const QColor &b)
{
    return std::abs(a.red() - b.red()) <= 2 && std::abs(a.green() - b.green()) <= 2
        && std::abs(a.blue() - b.blue()) <= 2;
}

// Whether anything but `ground` is in `area`.
bool hasInk(const QImage &image, const QRect &area, const QColor &ground)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (!isNear(image.pixelColor(x, y), ground))
                return true;
        }
    }
    return false;
}

} // namespace

Q_DECLARE_METATYPE(Quillbrook::TreemapPainter::Outline)

class TestTreemapPainter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void extensionIsWhatFollowsTheLastDot_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("extension");
        QTest::newRow("one") << "a.TXT"
                             << "TXT";
        QTest::newRow("two") << "a.tar.gz"
                             << "gz";
        QTest::newRow("none") << "Makefile"
                              << "";
        QTest::newRow("hidden") << ".bashrc"
                                << "";
        QTest::newRow("hidden with one") << ".config.json"
                                         << "json";
        QTest::newRow("trailing dot") << "a."
                                      << "";
        QTest::newRow("empty") << ""
                               << "";
    }

    void extensionIsWhatFollowsTheLastDot()
    {
        QFETCH(QString, name);
        QFETCH(QString, extension);
        QCOMPARE(TreemapPainter::pathExtension(name), extension);
    }

    void labelNeedsRoom_data()
    {
        QTest::addColumn<QSizeF>("size");
        QTest::addColumn<bool>("name");
        QTest::addColumn<bool>("bytes");
        QTest::newRow("52 wide") << QSizeF(52, 100) << false << false;
        QTest::newRow("53 wide") << QSizeF(53, 100) << true << true;
        QTest::newRow("17 high") << QSizeF(100, 17) << false << false;
        QTest::newRow("17.5 high") << QSizeF(100, 17.5) << true << false;
        QTest::newRow("32 high") << QSizeF(100, 32) << true << false;
        QTest::newRow("32.5 high") << QSizeF(100, 32.5) << true << true;
    }

    void labelNeedsRoom()
    {
        QFETCH(QSizeF, size);
        QFETCH(bool, name);
        QFETCH(bool, bytes);
        const auto tile = file({ QPointF(0, 0), size });
        QCOMPARE(TreemapPainter::showsName(tile), name);
        QCOMPARE(TreemapPainter::showsSize(tile), bytes);
    }

    void fileHasTheGroundOfItsExtension()
    {
        const auto image = painted({ file({ 10, 10, 40, 40 }, "a.TXT"), file({ 60, 10, 40, 40 }, "b.pdf") });
        QCOMPARE(image.pixelColor(30, 30).rgb(), Theme::tileColor("txt", false).rgb());
        QCOMPARE(image.pixelColor(80, 30).rgb(), Theme::tileColor("pdf", false).rgb());
    }

    void topFolderIsOpaqueAndNestedOneIsNot()
    {
        const auto image = painted({ folder({ 10, 10, 40, 40 }, 0), folder({ 60, 10, 40, 40 }, 1) });
        QCOMPARE(image.pixelColor(30, 30).rgb(), Theme::surface().rgb());
        QVERIFY(isNear(image.pixelColor(80, 30), blend(Theme::page(), Theme::surface(), 0.55)));
    }

    void neighboursAreKeptApartByAHairline()
    {
        const auto image = painted({ folder({ 10, 10, 40, 40 }), folder({ 50, 10, 40, 40 }) });
        // Each is inset by half a point, so that the two lines of one point meet at the shared edge.
        QVERIFY(isNear(image.pixelColor(49, 30), blend(Theme::surface(), Theme::hairline(), 0.85)));
        QVERIFY(isNear(image.pixelColor(50, 30), blend(Theme::surface(), Theme::hairline(), 0.85)));
        QCOMPARE(image.pixelColor(48, 30).rgb(), Theme::surface().rgb());
        QCOMPARE(image.pixelColor(51, 30).rgb(), Theme::surface().rgb());
    }

    void tileOfOnePointIsSkipped()
    {
        QCOMPARE(painted({ file({ 10, 10, 1.5, 40 }), file({ 20, 10, 40, 1 }) }), page());
        QVERIFY(painted({ file({ 10, 10, 1.6, 40 }) }) != page());
    }

    void labelOfATileFiftyTwoWideIsLeftOut_data()
    {
        QTest::addColumn<double>("width");
        QTest::addColumn<bool>("labelled");
        QTest::newRow("52") << 52.0 << false;
        QTest::newRow("53") << 53.0 << true;
    }

    void labelOfATileFiftyTwoWideIsLeftOut()
    {
        QFETCH(double, width);
        QFETCH(bool, labelled);
        const auto image = painted({ file({ 10, 10, width, 60 }) });
        QCOMPARE(hasInk(image, { 14, 14, 44, 50 }, Theme::tileColor("txt", false)), labelled);
    }

    void sizeStandsBelowTheName()
    {
        const auto ground = Theme::tileColor("txt", false);
        const auto both = painted({ file({ 10, 10, 100, 60 }) });
        const auto nameAlone = painted({ file({ 10, 10, 100, 30 }) });
        const QRect nameLine(16, 14, 80, 11);
        const QRect sizeLine(16, 29, 80, 9);
        QVERIFY(hasInk(both, nameLine, ground));
        QVERIFY(hasInk(both, sizeLine, ground));
        QVERIFY(hasInk(nameAlone, nameLine, ground));
        QVERIFY(!hasInk(nameAlone, sizeLine, ground));
        // Nothing but the margin stands before either.
        QVERIFY(!hasInk(both, { 13, 13, 3, 50 }, ground));
    }

    void longNameStaysInItsTile()
    {
        const auto name = QString(200, u'W') + ".txt";
        const auto image = painted({ file({ 10, 10, 80, 60 }, name) });
        QVERIFY(hasInk(image, { 16, 14, 60, 11 }, Theme::tileColor("txt", false)));
        QVERIFY(!hasInk(image, { 92, 0, 100, 119 }, Theme::page()));
    }

    void labelUnderAChildIsNotDrawn()
    {
        // The child leaves a gap at the right of the folder, where the folder's label would show.
        auto child = file({ 11.5, 11.5, 20, 97 });
        child.depth = 2;
        const auto image = painted({ folder({ 10, 10, 150, 100 }, 1), child });
        QVERIFY(!hasInk(image, { 34, 14, 120, 90 }, blend(Theme::page(), Theme::surface(), 0.55)));
    }

    void titleOfATopFolderIsDrawnAboveItsChildren()
    {
        auto child = file({ 11.5, 25.5, 147, 83 });
        child.depth = 1;
        const auto image = painted({ folder({ 10, 10, 150, 100 }), child });
        QVERIFY(hasInk(image, { 16, 14, 60, 11 }, Theme::surface()));
        QCOMPARE(image.pixelColor(100, 80).rgb(), Theme::tileColor("txt", false).rgb());
    }

    void outlineLiesOnTheEdge_data()
    {
        QTest::addColumn<Outline>("outline");
        QTest::addColumn<QColor>("edge");
        QTest::addColumn<int>("inside");
        QTest::newRow("hovered") << Outline::hovered << blend(Theme::page(), Theme::accent(), 0.65) << 10;
        QTest::newRow("selected") << Outline::selected << Theme::accent() << 10;
        QTest::newRow("focused") << Outline::focused << Theme::accent() << 11;
    }

    void outlineLiesOnTheEdge()
    {
        QFETCH(Outline, outline);
        QFETCH(QColor, edge);
        QFETCH(int, inside);
        auto image = page();
        {
            QPainter painter(&image);
            TreemapPainter::paintOutline(painter, { 10, 10, 100, 80 }, outline);
        }
        QVERIFY(isNear(image.pixelColor(inside, 50), edge));
        QVERIFY(isNear(image.pixelColor(50, 99 - inside), edge));
        QCOMPARE(image.pixelColor(60, 50).rgb(), Theme::page().rgb());
        QCOMPARE(image.pixelColor(6, 50).rgb(), Theme::page().rgb());
    }

    void ringDiffersFromTheSelection()
    {
        auto selected = page();
        auto focused = page();
        {
            QPainter painter(&selected);
            TreemapPainter::paintOutline(painter, { 10, 10, 100, 80 }, Outline::selected);
        }
        {
            QPainter painter(&focused);
            TreemapPainter::paintOutline(painter, { 10, 10, 100, 80 }, Outline::selected);
            TreemapPainter::paintOutline(painter, { 10, 10, 100, 80 }, Outline::focused);
        }
        QVERIFY(isNear(focused.pixelColor(13, 50), Theme::surface()));
        QVERIFY(!isNear(selected.pixelColor(13, 50), Theme::surface()));
    }

    void noticeStandsInTheMiddle()
    {
        auto image = page();
        {
            QPainter painter(&image);
            TreemapPainter::paintNotice(painter, image.rect(), u"Measuring…"_s);
        }
        QVERIFY(hasInk(image, { 60, 50, 80, 20 }, Theme::page()));
        QVERIFY(!hasInk(image, { 0, 0, 200, 40 }, Theme::page()));
        QVERIFY(!hasInk(image, { 0, 80, 200, 40 }, Theme::page()));
    }
};

QUILLBROOK_SUITE(TestTreemapPainter, QGuiApplication)
#include "tst_TreemapPainter.moc"
