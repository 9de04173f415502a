#include "Platform/Linux/Tray/ScreenPoint.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;

class TestScreenPoint : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsAsTheProgramDoes_data()
    {
        QTest::addColumn<QPoint>("native");
        QTest::addColumn<QPoint>("expected");
        // A screen of 2560 by 1440 at twice the size, and one of 1920 by 1080 to its right.
        QTest::newRow("scaled screen") << QPoint(2400, 1430) << QPoint(1200, 715);
        QTest::newRow("its first pixel") << QPoint(0, 0) << QPoint(0, 0);
        QTest::newRow("plain screen") << QPoint(2600, 20) << QPoint(2600, 20);
        QTest::newRow("first pixel of the plain screen") << QPoint(2560, 0) << QPoint(2560, 0);
        QTest::newRow("nowhere") << QPoint(-5, 2000) << QPoint(-5, 2000);
    }

    void countsAsTheProgramDoes()
    {
        QFETCH(QPoint, native);
        QFETCH(QPoint, expected);
        const QList<ScreenPoint::Screen> screens{ { .geometry = QRect(0, 0, 1280, 720), .scale = 2 },
            { .geometry = QRect(2560, 0, 1920, 1080), .scale = 1 } };
        QCOMPARE(ScreenPoint::fromNative(native, screens), expected);
    }

    void screensAreThoseOfTheApplication()
    {
        const auto screens = ScreenPoint::screens();
        QCOMPARE(screens.size(), QGuiApplication::screens().size());
        QVERIFY(!screens.isEmpty());
        QVERIFY(!screens.first().geometry.isEmpty());
        QVERIFY(screens.first().scale > 0);
    }
};

QUILLBROOK_SUITE(TestScreenPoint, QGuiApplication)
#include "tst_ScreenPoint.moc"
