#include "Screens/Scanning/ScanningState.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestScanningState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void titleIsTheDetailOrSaysThatMeasuringIsOn()
    {
        ScanProgress progress;
        const ScanningState scan(progress);
        QSignalSpy changes(&scan, &ScanningState::titleChanged);
        QCOMPARE(scan.title(), u"Measuring this Mac"_s);
        progress.setDetail(u"Downloaded code packages"_s);
        QCOMPARE(scan.title(), u"Downloaded code packages"_s);
        progress.reset();
        QCOMPARE(scan.title(), u"Measuring this Mac"_s);
        QCOMPARE(changes.count(), 2);
    }

    void findingsAreThoseOfTheProgress()
    {
        ScanProgress progress;
        ScanningState scan(progress);
        progress.setFindings({ { .id = "a", .rule = { .title = "Saved web pages" }, .bytes = 2048 } });
        QCOMPARE(scan.findings()->rowCount(), 1);
        QCOMPARE(scan.findings()->index(0).data(Qt::DisplayRole).toString(), u"Saved web pages"_s);
        progress.reset();
        QCOMPARE(scan.findings()->rowCount(), 0);
    }
};

QUILLBROOK_SUITE(TestScanningState, QCoreApplication)
#include "tst_ScanningState.moc"
