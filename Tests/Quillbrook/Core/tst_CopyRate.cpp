#include "Core/CopyRate.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;

class TestCopyRate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRateIsOfTheLastThreeSeconds()
    {
        CopyRate rate;
        QCOMPARE(rate.bytesPerSecond(), std::nullopt);
        rate.add(0, 0);
        rate.add(499, 499);
        QCOMPARE(rate.bytesPerSecond(), std::nullopt);
        rate.add(1000, 1000);
        QCOMPARE(rate.bytesPerSecond(), 1000);
        // What was long ago counts no more.
        rate.add(4500, 1000);
        QCOMPARE(rate.bytesPerSecond(), std::nullopt);
        rate.add(5500, 3000);
        QCOMPARE(rate.bytesPerSecond(), 2000);
        // Fewer bytes are those of another copy.
        rate.add(6000, 10);
        QCOMPARE(rate.bytesPerSecond(), std::nullopt);
    }
};

QUILLBROOK_SUITE(TestCopyRate, NoApplication)
#include "tst_CopyRate.moc"
