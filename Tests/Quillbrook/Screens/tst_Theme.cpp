#include "Screens/Theme.h"
#include "Support/Suite.h"

#include <QFontInfo>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

QColor tile(double red, double green, double blue)
{
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue));
}

} // namespace

class TestTheme : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void coloursAreTheOnesOfTheTable_data()
    {
        QTest::addColumn<QColor>("actual");
        QTest::addColumn<QString>("expected");
        QTest::newRow("page") << Theme::page() << "#e8e9ea";
        QTest::newRow("surface") << Theme::surface() << "#ffffff";
        QTest::newRow("surfaceSunken") << Theme::surfaceSunken() << "#f1f2f3";
        QTest::newRow("hairline") << Theme::hairline() << "#d2d5d8";
        QTest::newRow("body") << Theme::body() << "#43474c";
        QTest::newRow("label") << Theme::label() << "#5e6368";
        QTest::newRow("strong") << Theme::strong() << "#1c1f23";
        QTest::newRow("accent") << Theme::accent() << "#2a4fbf";
        QTest::newRow("safe") << Theme::safe() << "#1e7a4a";
        QTest::newRow("careful") << Theme::careful() << "#8a5a00";
        QTest::newRow("danger") << Theme::danger() << "#b3261e";
        QTest::newRow("shadow, but for its opacity") << Theme::shadow() << "#000000";
    }

    void coloursAreTheOnesOfTheTable()
    {
        QFETCH(QColor, actual);
        QFETCH(QString, expected);
        QCOMPARE(actual.name(), expected);
    }

    void fileTileDependsOnItsExtensionAlone_data()
    {
        QTest::addColumn<QString>("extension");
        QTest::addColumn<QColor>("expected");
        QTest::newRow("none: 5381 is 5 modulo 8") << "" << tile(0.8353, 0.9294, 0.9412);
        QTest::newRow("txt: 193507397 is 5 modulo 8") << "txt" << tile(0.8353, 0.9294, 0.9412);
        QTest::newRow("TXT counts as txt") << "TXT" << tile(0.8353, 0.9294, 0.9412);
        QTest::newRow("a: 177670 is 6 modulo 8") << "a" << tile(0.9059, 0.9137, 0.8314);
        QTest::newRow("b: 177671 is 7 modulo 8") << "b" << tile(0.9490, 0.8784, 0.9255);
        QTest::newRow("c: 177672 is 0 modulo 8") << "c" << tile(0.8392, 0.8863, 0.9686);
        QTest::newRow("two bytes of one letter: 5866508 is 4 modulo 8")
            << "ä" << tile(0.9843, 0.8667, 0.8510);
        QTest::newRow("hash with its top bit set: 16154688914928244925 is 5 modulo 8")
            << QString(12, QLatin1Char('z')) << tile(0.8353, 0.9294, 0.9412);
    }

    void fileTileDependsOnItsExtensionAlone()
    {
        QFETCH(QString, extension);
        QFETCH(QColor, expected);
        QCOMPARE(Theme::tileColor(extension, false).name(), expected.name());
    }

    void folderTileIsSurfaceWhateverItsName()
    {
        QCOMPARE(Theme::tileColor(u"app"_s, true), Theme::surface());
        QCOMPARE(Theme::tileColor({}, true), Theme::surface());
    }

    void fadingKeepsTheColour()
    {
        const auto faded = Theme::faded(Theme::strong(), 0.06);
        QCOMPARE(faded.name(), Theme::strong().name());
        QVERIFY(qAbs(faded.alphaF() - 0.06F) < 0.001F);
    }

    void fontsMeetFractionsOfAPixel()
    {
        const auto font = Theme::font(12.5, QFont::DemiBold);
        QVERIFY(qAbs(font.pointSizeF() / Theme::pointsPerPixel() - 12.5) < 0.01);
        QCOMPARE(font.weight(), QFont::DemiBold);
        // The pixel size that the font system made of it is the nearest whole one to what was asked.
        QVERIFY(qAbs(QFontInfo(font).pixelSize() - 12.5) <= 0.5);
    }
};

QUILLBROOK_SUITE(TestTheme, QGuiApplication)
#include "tst_Theme.moc"
