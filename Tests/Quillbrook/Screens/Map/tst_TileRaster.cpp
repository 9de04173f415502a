#include "Screens/Map/TileRaster.h"
#include "Support/Suite.h"

#include <QPainter>
#include <QTest>

using namespace Quillbrook;

namespace {

constexpr QColor ground(0x40, 0x80, 0xC0);
constexpr QColor line(0x20, 0x20, 0x20);

QImage paper(double scale = 1)
{
    QImage image(QSize(40, 30) * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::white);
    return image;
}

QImage drawn(const TileRaster::Shape &shape, double scale = 1)
{
    auto image = paper(scale);
    TileRaster::draw(image, shape);
    return image;
}

// What it should look like: painted much larger by the general painter and scaled down.
QImage painted(const TileRaster::Shape &shape, double scale = 1)
{
    constexpr int finer = 16;
    auto image = paper(scale * finer);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(shape.ground);
    painter.setPen(QPen(shape.line, shape.lineWidth));
    painter.drawRoundedRect(shape.rect, shape.radius, shape.radius);
    painter.end();
    return image.scaled(paper(scale).size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

int largestDifference(const QImage &a, const QImage &b)
{
    int largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const auto p = a.pixelColor(x, y);
            const auto q = b.pixelColor(x, y);
            largest = std::max({ largest, std::abs(p.red() - q.red()), std::abs(p.green() - q.green()),
                std::abs(p.blue() - q.blue()) });
        }
    }
    return largest;
}

} // namespace

Q_DECLARE_METATYPE(Quillbrook::TileRaster::Shape)

class TestTileRaster : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void looksLikeAFinelyPaintedRectangle_data()
    {
        QTest::addColumn<TileRaster::Shape>("shape");
        QTest::addColumn<double>("scale");
        const TileRaster::Shape onTheGrid{
            .rect = { 4, 5, 30, 20 }, .radius = 3, .ground = ground, .line = line, .lineWidth = 1
        };
        auto offTheGrid = onTheGrid;
        offTheGrid.rect = { 4.3, 5.6, 29.1, 19.7 };
        auto fine = offTheGrid;
        fine.lineWidth = 0.5;
        auto small = fine;
        small.rect = { 10.2, 10.4, 3.3, 4.1 };
        small.radius = 0.8;
        QTest::newRow("on the grid") << onTheGrid << 1.0;
        QTest::newRow("off the grid") << offTheGrid << 1.0;
        QTest::newRow("fine line") << fine << 1.0;
        QTest::newRow("small") << small << 1.0;
        QTest::newRow("at scale 2") << offTheGrid << 2.0;
        QTest::newRow("small at scale 1.5") << small << 1.5;
    }

    void looksLikeAFinelyPaintedRectangle()
    {
        QFETCH(TileRaster::Shape, shape);
        QFETCH(double, scale);
        // Thin lines around small corners part most, by up to a fifth of the full range at single pixels.
        const auto difference = largestDifference(drawn(shape, scale), painted(shape, scale));
        QVERIFY2(difference <= 51, qPrintable(QString::number(difference)));
    }

    void insideIsTheGroundAlone()
    {
        const auto image = drawn({ .rect = { 4.3, 5.6, 29.1, 19.7 },
            .radius = 3,
            .ground = ground,
            .line = line,
            .lineWidth = 1 });
        for (int y = 8; y < 23; ++y) {
            for (int x = 7; x < 31; ++x)
                QCOMPARE(image.pixelColor(x, y), ground);
        }
    }

    void translucentGroundLetsThroughWhatIsBelow()
    {
        auto half = QColor(Qt::black);
        half.setAlphaF(0.55F);
        const auto image = drawn({ .rect = { 4, 4, 30, 20 }, .ground = half, .line = Qt::transparent });
        QCOMPARE(image.pixelColor(20, 15), QColor(115, 115, 115));
    }

    void cornersAreLeftOut()
    {
        const auto image
            = drawn({ .rect = { 4, 4, 30, 20 }, .radius = 3, .ground = ground, .line = Qt::transparent });
        QCOMPARE(image.pixelColor(4, 4), QColor(Qt::white));
        QCOMPARE(image.pixelColor(33, 23), QColor(Qt::white));
        QCOMPARE(image.pixelColor(8, 4), ground);
        QCOMPARE(image.pixelColor(6, 6), ground);
    }

    void halfAPixelIsHalfCovered()
    {
        const auto image
            = drawn({ .rect = { 4.5, 4, 30, 20 }, .ground = Qt::black, .line = Qt::transparent });
        QCOMPARE(image.pixelColor(3, 15), QColor(Qt::white));
        QVERIFY(std::abs(image.pixelColor(4, 15).red() - 127) <= 1);
        QCOMPARE(image.pixelColor(5, 15), QColor(Qt::black));
    }

    void nothingIsDrawnOutsideThePicture_data()
    {
        QTest::addColumn<QRectF>("rect");
        QTest::newRow("over the left edge") << QRectF(-10, 5, 20, 10);
        QTest::newRow("over the bottom right corner") << QRectF(35, 25, 20, 20);
        QTest::newRow("larger than the picture") << QRectF(-20, -20, 100, 100);
        QTest::newRow("beside it") << QRectF(100, 5, 20, 10);
        QTest::newRow("above it") << QRectF(5, -50, 20, 10);
    }

    void nothingIsDrawnOutsideThePicture()
    {
        QFETCH(QRectF, rect);
        const TileRaster::Shape shape{
            .rect = rect, .radius = 3, .ground = ground, .line = line, .lineWidth = 1
        };
        QVERIFY(largestDifference(drawn(shape), painted(shape)) <= 51);
    }
};

QUILLBROOK_SUITE(TestTileRaster, QCoreApplication)
#include "tst_TileRaster.moc"
