#include "Catalogue/HostKnowledge.h"
#include "Catalogue/ScanFences.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const auto home = u"/home/someone"_s;

HostFacts someHost()
{
    return { .quietAllowlist = { { home, { u".cache"_s } }, { home + u"/.local"_s, { u"share"_s } } },
        .protectedPaths = { home + u"/Bilder"_s } };
}

} // namespace

class TestScanFences : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void completeScanKeepsOutOfWhatNoScanMeasures()
    {
        const auto fences = ScanFences::complete();
        QCOMPARE(fences.exclusions, FastScanner::defaultExclusions());
        QVERIFY(fences.skipping.isEmpty());
        QVERIFY(fences.allowlist.isEmpty());
    }

    void quietScanKeepsOutOfProtectedPathsToo()
    {
        const auto fences = ScanFences::quiet(home, someHost());
        const auto expected = FastScanner::tccProtectedPaths(home) + QSet<QString>{ home + u"/Bilder"_s };
        QCOMPARE(fences.skipping, expected);
        QCOMPARE(fences.exclusions, FastScanner::defaultExclusions() + expected);
    }

    void quietScanEntersWhatEitherTableNames()
    {
        const auto builtIn = FastScanner::quietAllowlist(home);
        const auto fences = ScanFences::quiet(home, someHost());
        QCOMPARE(fences.allowlist.value(home), builtIn.value(home) + QSet<QString>{ u".cache"_s });
        QVERIFY(fences.allowlist.value(home + u"/.local"_s).contains(u"share"_s));
        for (auto row = builtIn.cbegin(); row != builtIn.cend(); ++row)
            QVERIFY(fences.allowlist.value(row.key()).contains(row.value()));
    }

    void hostWithNothingToAddLeavesTheBuiltInTables()
    {
        const auto fences = ScanFences::quiet(home, {});
        QCOMPARE(fences.skipping, FastScanner::tccProtectedPaths(home));
        QCOMPARE(fences.allowlist, FastScanner::quietAllowlist(home));
    }
};

QUILLBROOK_SUITE(TestScanFences, QCoreApplication)
#include "tst_ScanFences.moc"
