#include "Core/TreeStageEstimate.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;

class TestTreeStageEstimate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void estimates_data()
    {
        QTest::addColumn<qsizetype>("filesSeen");
        QTest::addColumn<qint64>("expectedFiles");
        QTest::addColumn<double>("secondsElapsed");
        QTest::addColumn<double>("fraction");
        const auto row
            = [](const char *name, qsizetype seen, qint64 expected, double seconds, double fraction) {
                  QTest::newRow(name) << seen << expected << seconds << fraction;
              };
        row("first scan begins at the quick stage's share", 0, 0, 0, 0.4);
        row("first scan creeps", 123456, 0, 15, 0.5475);
        row("first scan after 30 seconds", 0, 0, 30, 0.695);
        row("first scan stays there", 0, 0, 3000, 0.695);
        row("1000 says nothing", 1000, 1000, 15, 0.5475);
        row("1001 is expected", 1001, 2002, 15, 0.695);
        row("1001 of 1001 stops short of done", 1001, 1001, 15, 0.9841);
        row("count decides, not the time", 0, 1001, 3000, 0.4);
        row("half of many", 500'000, 1'000'000, 0, 0.695);
        row("more than expected stops short of done", 5'000'000, 1'000'000, 0, 0.9841);
        row("negative count says nothing", 1000, -5, 15, 0.5475);
    }

    void estimates()
    {
        QFETCH(qsizetype, filesSeen);
        QFETCH(qint64, expectedFiles);
        QFETCH(double, secondsElapsed);
        const auto fraction = TreeStageEstimate::fraction(
            { .filesSeen = filesSeen, .expectedFiles = expectedFiles, .secondsElapsed = secondsElapsed });
        QTEST(fraction, "fraction");
    }
};

QUILLBROOK_SUITE(TestTreeStageEstimate, NoApplication)
#include "tst_TreeStageEstimate.moc"
