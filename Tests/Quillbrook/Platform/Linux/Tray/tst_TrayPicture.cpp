#include "Platform/Linux/Tray/TrayPicture.h"
#include "Support/Suite.h"

#include <QTest>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr QRgb darkPanel = 0xff1e1e1e;
constexpr QRgb lightPanel = 0xfff6f5f4;

/// How bright a colour is to the eye, 0 to 1.
double luminance(const QColor &colour)
{
    const auto linear
        = [](double part) { return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor &one, const QColor &other)
{
    const std::pair<double, double> ends = std::minmax({ luminance(one), luminance(other) });
    const auto [low, high] = ends;
    return (high + 0.05) / (low + 0.05);
}

/// Pixels that are nearer to the tone of what is used than to the ground or to white.
int filled(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const auto pixel = image.pixelColor(x, y);
            count += pixel.alpha() > 127 && pixel.hslSaturation() > 100 && pixel.lightness() < 185;
        }
    return count;
}

/// Pixels of the warning tone.
int reddish(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const auto pixel = image.pixelColor(x, y);
            count += pixel.alpha() > 127 && pixel.red() > pixel.blue() + 40;
        }
    return count;
}

} // namespace

class TestTrayPicture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lookCountsInSteps_data()
    {
        QTest::addColumn<double>("share");
        QTest::addColumn<int>("step");
        QTest::newRow("empty") << 0.0 << 0;
        QTest::newRow("half") << 0.5 << 24;
        QTest::newRow("full") << 1.0 << 48;
        QTest::newRow("below") << -1.0 << 0;
        QTest::newRow("above") << 1.5 << 48;
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 0;
        QTest::newRow("a little more changes nothing") << 0.501 << 24;
    }

    void lookCountsInSteps()
    {
        QFETCH(double, share);
        QFETCH(int, step);
        QCOMPARE(TrayPicture::contentOf(share, false), (TrayPicture::Content{ .step = step }));
        QCOMPARE(
            TrayPicture::contentOf(share, true), (TrayPicture::Content{ .step = step, .isDanger = true }));
    }

    void hasAllSizes()
    {
        QList<int> widths;
        for (const auto &image : TrayPicture::drawAll({ .step = 12 })) {
            QCOMPARE(image.width(), image.height());
            QCOMPARE(image.format(), QImage::Format_ARGB32);
            widths.append(image.width());
        }
        QCOMPARE(widths, QList<int>({ 16, 22, 24, 32, 48 }));
    }

    void fullerDiskHasMoreFilledPixels_data() { sizeRows(); }

    void fullerDiskHasMoreFilledPixels()
    {
        QFETCH(int, size);
        // Every fourth step is at least a row of pixels in the smallest picture.
        auto before = -1;
        for (int step = 0; step <= TrayPicture::steps; step += 4) {
            const auto now = filled(TrayPicture::draw({ .step = step }, size));
            QVERIFY2(now > before, qPrintable(u"step %1: %2, %3"_s.arg(step).arg(now).arg(before)));
            before = now;
        }
    }

    void fillsFromTheBottom()
    {
        const auto image = TrayPicture::draw({ .step = TrayPicture::steps / 2 }, 16);
        const auto upper = filled(image.copy(3, 3, 10, 4));
        const auto lower = filled(image.copy(3, 9, 10, 4));
        QCOMPARE(upper, 0);
        QVERIFY(lower > 30);
    }

    void dangerHasItsOwnTone()
    {
        for (const auto size : TrayPicture::sizes) {
            const auto calm = TrayPicture::draw({ .step = 45 }, size);
            const auto danger = TrayPicture::draw({ .step = 45, .isDanger = true }, size);
            QCOMPARE(reddish(calm), 0);
            QVERIFY(reddish(danger) > size * size / 3);
        }
        QVERIFY(TrayPicture::tone(true) != TrayPicture::tone(false));
    }

    void cornersAreClear()
    {
        const auto image = TrayPicture::draw({ .step = TrayPicture::steps }, 22);
        for (const auto &corner : { QPoint(0, 0), QPoint(21, 0), QPoint(0, 21), QPoint(21, 21) })
            QCOMPARE(image.pixelColor(corner).alpha(), 0);
    }

    void standsOutFromPanels_data()
    {
        QTest::addColumn<bool>("isDanger");
        QTest::addColumn<QRgb>("panel");
        QTest::newRow("calm, dark panel") << false << darkPanel;
        QTest::newRow("calm, light panel") << false << lightPanel;
        QTest::newRow("danger, dark panel") << true << darkPanel;
        QTest::newRow("danger, light panel") << true << lightPanel;
    }

    void standsOutFromPanels()
    {
        QFETCH(bool, isDanger);
        QFETCH(QRgb, panel);
        // The rate that graphical marks need: the ring and the full disk have the tone.
        QVERIFY2(contrast(TrayPicture::tone(isDanger), QColor(panel)) >= 3,
            qPrintable(QString::number(contrast(TrayPicture::tone(isDanger), QColor(panel)))));
    }

private:
    static void sizeRows()
    {
        QTest::addColumn<int>("size");
        for (const auto size : TrayPicture::sizes)
            QTest::addRow("%d pixels", size) << size;
    }
};

QUILLBROOK_SUITE(TestTrayPicture, QGuiApplication)
#include "tst_TrayPicture.moc"
