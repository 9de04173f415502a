#include "PanelPlacement.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;

namespace {

constexpr QSize panel(340, 470);
constexpr QRect screen(0, 0, 1920, 1080);
constexpr QRect withBarBelow(0, 0, 1920, 1040);
constexpr QRect withBarOnTop(0, 30, 1920, 1050);

} // namespace

class TestPanelPlacement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void standsBesideTheItem_data()
    {
        QTest::addColumn<QRect>("onScreen");
        QTest::addColumn<QRect>("available");
        QTest::addColumn<QPoint>("place");
        QTest::addColumn<QPoint>("expected");
        QTest::newRow("bar below") << screen << withBarBelow << QPoint(1500, 1060) << QPoint(1330, 562);
        QTest::newRow("bar below, at its right end")
            << screen << withBarBelow << QPoint(1910, 1060) << QPoint(1580, 562);
        QTest::newRow("bar on top") << screen << withBarOnTop << QPoint(1500, 15) << QPoint(1330, 38);
        QTest::newRow("bar on top, at its left end")
            << screen << withBarOnTop << QPoint(5, 15) << QPoint(0, 38);
        QTest::newRow("bar that takes no room, on top")
            << screen << screen << QPoint(1500, 15) << QPoint(1330, 23);
        QTest::newRow("bar on the left, low")
            << screen << QRect(40, 0, 1880, 1080) << QPoint(20, 1050) << QPoint(40, 572);
        QTest::newRow("bar on the right, high")
            << screen << QRect(0, 0, 1880, 1080) << QPoint(1900, 20) << QPoint(1540, 28);
        QTest::newRow("second screen") << QRect(1920, 200, 1280, 720) << QRect(1920, 200, 1280, 680)
                                       << QPoint(3100, 900) << QPoint(2860, 402);
        QTest::newRow("screen left of the first") << QRect(-1280, 0, 1280, 720) << QRect(-1280, 30, 1280, 690)
                                                  << QPoint(-1270, 10) << QPoint(-1280, 38);
        QTest::newRow("low screen, above would be cut")
            << QRect(0, 0, 800, 480) << QRect(0, 0, 800, 476) << QPoint(700, 478) << QPoint(460, 0);
    }

    void standsBesideTheItem()
    {
        QFETCH(QRect, onScreen);
        QFETCH(QRect, available);
        QFETCH(QPoint, place);
        QFETCH(QPoint, expected);
        const PanelPlacement placement{
            .panel = panel, .place = place, .screen = onScreen, .available = available
        };
        QCOMPARE(placement.position(), expected);
        QVERIFY(available.contains(QRect(placement.position(), panel)));
    }

    void takesTheTraysCornerWhenNoPlaceIsTold_data()
    {
        QTest::addColumn<QRect>("available");
        QTest::addColumn<QPoint>("expected");
        QTest::newRow("bar below") << withBarBelow << QPoint(1572, 562);
        QTest::newRow("bar on top") << withBarOnTop << QPoint(1572, 38);
        QTest::newRow("bars at both") << QRect(0, 30, 1920, 1010) << QPoint(1572, 38);
        QTest::newRow("no bar") << screen << QPoint(1572, 602);
        QTest::newRow("bar on the right") << QRect(0, 0, 1880, 1080) << QPoint(1532, 602);
    }

    void takesTheTraysCornerWhenNoPlaceIsTold()
    {
        QFETCH(QRect, available);
        QFETCH(QPoint, expected);
        const PanelPlacement placement{ .panel = panel, .screen = screen, .available = available };
        QCOMPARE(placement.position(), expected);
        QVERIFY(available.contains(QRect(placement.position(), panel)));
    }

    void keepsItsCornerWhenItIsTooLarge()
    {
        const QRect small(100, 50, 300, 400);
        for (const auto &place : { std::optional<QPoint>(), std::optional(QPoint(390, 440)) }) {
            const PanelPlacement placement{
                .panel = panel, .place = place, .screen = small, .available = small
            };
            QCOMPARE(placement.position(), small.topLeft());
        }
    }
};

QUILLBROOK_SUITE(TestPanelPlacement, QCoreApplication)
#include "tst_PanelPlacement.moc"
