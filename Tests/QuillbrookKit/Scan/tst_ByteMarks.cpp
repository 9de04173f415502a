#include "Scan/ByteMarks.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;

class TestByteMarks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsMarkedAtFirst()
    {
        const ByteMarks marks(1000);
        QVERIFY(marks.isEmpty());
        QVERIFY(!marks.holdsOneOf(0, 1000));
        QVERIFY(ByteMarks(0).isEmpty());
    }

    void markIsFoundInEveryRangeThatHoldsIt()
    {
        for (const size_t marked : { 0, 1, 63, 64, 127, 128, 199 }) {
            ByteMarks marks(200);
            marks.mark(marked);
            QVERIFY(!marks.isEmpty());
            for (size_t start = 0; start < 200; ++start) {
                for (size_t length = 1; start + length <= 200; ++length)
                    QCOMPARE(marks.holdsOneOf(start, length), start <= marked && marked < start + length);
            }
        }
    }

    void emptyRangeHoldsNothing()
    {
        ByteMarks marks(64);
        marks.mark(0);
        QVERIFY(!marks.holdsOneOf(0, 0));
    }
};

QUILLBROOK_SUITE(TestByteMarks, NoApplication)
#include "tst_ByteMarks.moc"
