#include "Catalogue/ReclaimReport.h"
#include "Support/EndsProcess.h"
#include "Support/Suite.h"

#include <QTest>

#include <limits>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

Finding finding(const QString &id, Safety safety, qint64 bytes)
{
    return { .id = id, .rule = { .safety = safety }, .bytes = bytes, .meetsStalenessForDeletion = true };
}

} // namespace

class TestReclaimReport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportWithoutFindingsHasNothingToTake()
    {
        const ReclaimReport report;
        QVERIFY(report.deletable().isEmpty());
        QCOMPARE(report.actionableBytes(), 0);
    }

    void findingThatIsNotStaleIsShownAndNotCounted()
    {
        auto young = finding(u"young"_s, Safety::careful, 100);
        young.meetsStalenessForDeletion = false;
        const ReclaimReport report{ .findings = { young, finding(u"old"_s, Safety::careful, 7) } };
        QCOMPARE(report.findings.size(), 2);
        QCOMPARE(report.deletable(), QList{ report.findings[1] });
        QCOMPARE(report.bytes(Safety::careful), 7);
        QCOMPARE(report.actionableBytes(), 7);
    }

    void reportOnlyFindingIsDeletableButNeverActionable()
    {
        const ReclaimReport report{ .findings = { finding(u"downloads"_s, Safety::reportOnly, 50) } };
        QCOMPARE(report.deletable().size(), 1);
        QCOMPARE(report.bytes(Safety::reportOnly), 50);
        QCOMPARE(report.actionableBytes(), 0);
    }

    void linkNeverCountsWhateverItsClass_data()
    {
        QTest::addColumn<Safety>("safety");
        QTest::newRow("safe") << Safety::safe;
        QTest::newRow("careful") << Safety::careful;
        QTest::newRow("report only") << Safety::reportOnly;
    }
    void linkNeverCountsWhateverItsClass()
    {
        QFETCH(Safety, safety);
        auto link = finding(u"link"_s, safety, 1000);
        link.redirectedOffVolume = true;
        const ReclaimReport report{ .findings = { link, finding(u"folder"_s, safety, 3) } };
        QCOMPARE(report.deletable().size(), 2);
        QCOMPARE(report.bytes(safety), 3);
    }

    void actionableIsSafeAndCarefulTogether()
    {
        const ReclaimReport report{ .findings
            = { finding(u"a"_s, Safety::safe, 1), finding(u"b"_s, Safety::careful, 20),
                finding(u"c"_s, Safety::reportOnly, 300), finding(u"d"_s, Safety::safe, 4000) } };
        QCOMPARE(report.bytes(Safety::safe), 4001);
        QCOMPARE(report.actionableBytes(), 4021);
    }

    void deletableKeepsTheOrder()
    {
        const ReclaimReport report{ .findings
            = { finding(u"b"_s, Safety::safe, 9), finding(u"a"_s, Safety::careful, 9) } };
        QCOMPARE(report.deletable(), report.findings);
    }

    void overflowingSumEndsTheProcess()
    {
        const auto half = std::numeric_limits<qint64>::max() / 2 + 1;
        const ReclaimReport report{ .findings
            = { finding(u"a"_s, Safety::safe, half), finding(u"b"_s, Safety::safe, half) } };
        QVERIFY(endsProcess([&report] { static_cast<void>(report.bytes(Safety::safe)); }));
    }
};

QUILLBROOK_SUITE(TestReclaimReport, NoApplication)
#include "tst_ReclaimReport.moc"
