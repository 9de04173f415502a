#include "Platform/Processors.h"
#include "Scan/FastScanner.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

struct FakeProcessors final : Processors
{
    [[nodiscard]] std::optional<int> performanceCores() const override { return performance; }
    [[nodiscard]] int activeProcessors() const override { return active; }

    std::optional<int> performance{};
    int active = 1;
};

} // namespace

class TestFastScannerLists : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaultExclusionsAreTheSystemsVolumes();
    void quietAllowlistHasThreeParents();
    void protectedPathsLieBelowTheHome();
    void defaultThreadCountPrefersPerformanceCores_data();
    void defaultThreadCountPrefersPerformanceCores();
};

void TestFastScannerLists::defaultExclusionsAreTheSystemsVolumes()
{
    QCOMPARE(FastScanner::defaultExclusions(),
        (QSet<QString>{ u"/System/Volumes/Data"_s, u"/System/Volumes/VM"_s, u"/System/Volumes/Preboot"_s,
            u"/System/Volumes/Update"_s, u"/System/Volumes/Recovery"_s, u"/dev"_s, u"/net"_s, u"/home"_s }));
}

void TestFastScannerLists::quietAllowlistHasThreeParents()
{
    const auto list = FastScanner::quietAllowlist(u"/h"_s);
    QCOMPARE(list.size(), 3);
    QCOMPARE(list[u"/h"_s].size(), 23);
    QVERIFY(list[u"/h"_s].contains(u".cache"_s));
    QVERIFY(list[u"/h"_s].contains(u".dartServer"_s));
    QVERIFY(!list[u"/h"_s].contains(u"Documents"_s));
    QCOMPARE(list[u"/h/Library"_s],
        (QSet<QString>{ u"Developer"_s, u"Caches"_s, u"Logs"_s, u"Application Support"_s }));
    QCOMPARE(list[u"/h/Library/Application Support"_s].size(), 12);
    QVERIFY(list[u"/h/Library/Application Support"_s].contains(u"MobileSync"_s));
}

void TestFastScannerLists::protectedPathsLieBelowTheHome()
{
    const auto paths = FastScanner::tccProtectedPaths(u"/h"_s);
    QCOMPARE(paths.size(), 27);
    QVERIFY(paths.contains(u"/h/Desktop"_s));
    QVERIFY(paths.contains(u"/h/Library/Metadata/CoreSpotlight"_s));
    QVERIFY(paths.contains(u"/h/Library/CloudStorage"_s));
    for (const auto &path : paths)
        QVERIFY2(path.startsWith(u"/h/"), qPrintable(path));
}

void TestFastScannerLists::defaultThreadCountPrefersPerformanceCores_data()
{
    QTest::addColumn<int>("performance");
    QTest::addColumn<int>("active");
    QTest::addColumn<int>("threads");
    QTest::newRow("told") << 6 << 10 << 6;
    QTest::newRow("one") << 1 << 10 << 1;
    QTest::newRow("not told") << -1 << 10 << 5;
    QTest::newRow("not told, odd") << -1 << 7 << 3;
    QTest::newRow("not told, one processor") << -1 << 1 << 1;
    QTest::newRow("told as none") << 0 << 8 << 4;
}

void TestFastScannerLists::defaultThreadCountPrefersPerformanceCores()
{
    QFETCH(int, performance);
    QFETCH(int, active);
    QFETCH(int, threads);
    FakeProcessors processors;
    processors.performance = performance < 0 ? std::nullopt : std::optional(performance);
    processors.active = active;
    QCOMPARE(FastScanner::defaultThreadCount(processors), threads);
}

QTEST_GUILESS_MAIN(TestFastScannerLists)
#include "tst_FastScannerLists.moc"
