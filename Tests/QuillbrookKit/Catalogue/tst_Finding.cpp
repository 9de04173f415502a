#include "Catalogue/Finding.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestFinding : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void labelsOfTheSafetyClasses()
    {
        QCOMPARE(label(Safety::safe), u"Safe to remove"_s);
        QCOMPARE(label(Safety::careful), u"Worth a thought"_s);
        QCOMPARE(label(Safety::reportOnly), u"Never suggested"_s);
    }

    void safetyClassesAreOrderedByTheirRawValues()
    {
        QCOMPARE(static_cast<int>(Safety::safe), 0);
        QCOMPARE(static_cast<int>(Safety::careful), 1);
        QCOMPARE(static_cast<int>(Safety::reportOnly), 2);
        QVERIFY(Safety::safe < Safety::careful && Safety::careful < Safety::reportOnly);
    }

    void idIsRuleAndPath()
    {
        QCOMPARE(Finding::idFor(u"trash"_s, u"/home/ann/.Trash"_s), u"trash:/home/ann/.Trash"_s);
    }

    void titleOfARuleWithOnePathStandsAlone()
    {
        const Finding finding{ .rule = { .title = u"Leftovers"_s, .paths = { u"a/DerivedData"_s } },
            .path = u"/home/ann/a/DerivedData"_s };
        QCOMPARE(finding.displayTitle(), u"Leftovers"_s);
    }

    void titleOfARuleWithoutPathsStandsAlone()
    {
        QCOMPARE(
            (Finding{ .rule = { .title = u"Leftovers"_s }, .path = u"/x"_s }.displayTitle()), u"Leftovers"_s);
    }

    void titleOfARuleWithTwoPathsTellsThemApartByTheLastComponent()
    {
        const Finding finding{ .rule
            = { .title = u"Files copied from your iPhone"_s,
                .paths = { u"Xcode/iOS DeviceSupport"_s, u"Xcode/watchOS DeviceSupport"_s } },
            .path = u"/home/ann/Xcode/watchOS DeviceSupport"_s };
        QCOMPARE(finding.displayTitle(), u"Files copied from your iPhone \u00B7 watchOS DeviceSupport"_s);
    }

    void hostsLabelTakesThePlaceOfTheLastComponent()
    {
        const Finding finding{ .rule = { .title = u"Saved web pages"_s, .paths = { u"a"_s, u"b"_s } },
            .path = u"/home/ann/snap/firefox/common/.cache/mozilla/firefox"_s,
            .locationLabel = u"Firefox (Snap)"_s };
        QCOMPARE(finding.displayTitle(), u"Saved web pages \u00B7 Firefox (Snap)"_s);
    }

    void friendlyPath_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("friendly");
        QTest::newRow("below home") << u"/Users/ann/x"_s << u"~/x"_s;
        QTest::newRow("home itself") << u"/Users/ann"_s << u"~"_s;
        QTest::newRow("elsewhere") << u"/Users/bob/x"_s << u"/Users/bob/x"_s;
        QTest::newRow("a longer name is a prefix match too, kept on purpose")
            << u"/Users/anna/x"_s << u"~a/x"_s;
        QTest::newRow("home in the middle") << u"/mnt/Users/ann/x"_s << u"/mnt/Users/ann/x"_s;
    }
    void friendlyPath()
    {
        QFETCH(QString, path);
        QTEST((Finding{ .path = path }.friendlyPath(u"/Users/ann"_s)), "friendly");
    }

    void friendlyPathComparesByCanonicalEquivalence()
    {
        const Finding finding{ .path = u"/Users/Jose\u0301/x"_s };
        QCOMPARE(finding.friendlyPath(u"/Users/Jos\u00e9"_s), u"~/x"_s);
        QCOMPARE(finding.friendlyPath(u"/Users/Jose"_s), finding.path);
    }

    void daysSinceTouchedCountsCompleteDays()
    {
        const auto now = QDateTime(QDate(2024, 6, 15), QTime(12, 0), Qt::UTC);
        QCOMPARE(
            (Finding{ .lastModified = now.addSecs(-qint64{ 23 } * 3600) }.daysSinceTouched(now)), qint64(0));
        QCOMPARE(
            (Finding{ .lastModified = now.addSecs(-qint64{ 24 } * 3600) }.daysSinceTouched(now)), qint64(1));
        QCOMPARE((Finding{ .lastModified = now.addDays(-60) }.daysSinceTouched(now)), qint64(60));
    }

    void daysSinceTouchedIsAbsentWithoutADate()
    {
        QVERIFY(!Finding{}.daysSinceTouched(QDateTime::currentDateTimeUtc()));
    }
};

QUILLBROOK_SUITE(TestFinding, NoApplication)
#include "tst_Finding.moc"
