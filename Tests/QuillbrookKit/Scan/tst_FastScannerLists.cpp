#include "Platform/Processors.h"
#include "Scan/FastScanner.h"
#include "Support/Suite.h"

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

QSet<QString> texts(const QString &list, QChar separator = u' ')
{
    const auto found = list.split(separator);
    return { found.begin(), found.end() };
}

} // namespace

class TestFastScannerLists : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaultExclusionsAreTheSystemsVolumes()
    {
        QCOMPARE(FastScanner::defaultExclusions(),
            (QSet<QString>{ u"/System/Volumes/Data"_s, u"/System/Volumes/VM"_s, u"/System/Volumes/Preboot"_s,
                u"/System/Volumes/Update"_s, u"/System/Volumes/Recovery"_s, u"/dev"_s, u"/net"_s,
                u"/home"_s }));
    }

    void quietAllowlistHasThreeParents()
    {
        const FastScanner::Allowlist expected{
            { u"/h"_s,
                texts(
                    u"Library Applications development .gradle .npm .android .ollama .pub-cache .cache .nvm "
                    ".vscode .claude .codex .platformio .dartServer .local .cargo .rustup .m2 .docker .Trash "
                    "go sdk"_s) },
            { u"/h/Library"_s, { u"Developer"_s, u"Caches"_s, u"Logs"_s, u"Application Support"_s } },
            { u"/h/Library/Application Support"_s,
                texts(
                    u"Google Code Cursor Firefox discord Claude JetBrains Steam MobileSync Titan pip npm"_s) },
        };
        QCOMPARE(FastScanner::quietAllowlist(u"/h"_s), expected);
    }

    void protectedPathsLieBelowTheHome()
    {
        auto expected = texts(u"/h/Desktop /h/Documents /h/Downloads /h/Pictures /h/Music /h/Movies"_s);
        for (const auto &name :
            texts(u"Containers,Group Containers,Calendars,Safari,Mail,Messages,Cookies,HomeKit,"
                  "IdentityServices,Metadata/CoreSpotlight,PersonalizationPortrait,"
                  "Suggestions,Accounts,Sharing,CloudStorage"_s,
                u','))
            expected.insert(u"/h/Library/"_s + name);
        for (const auto &name :
            texts(u"AddressBook CallHistoryDB CallHistoryTransactions com.apple.TCC Knowledge "
                  "FileProvider"_s))
            expected.insert(u"/h/Library/Application Support/"_s + name);
        QCOMPARE(FastScanner::tccProtectedPaths(u"/h"_s), expected);
    }

    void defaultThreadCountPrefersPerformanceCores_data()
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

    void defaultThreadCountPrefersPerformanceCores()
    {
        QFETCH(int, performance);
        QFETCH(int, active);
        QFETCH(int, threads);
        FakeProcessors processors;
        processors.performance = performance < 0 ? std::nullopt : std::optional(performance);
        processors.active = active;
        QCOMPARE(FastScanner::defaultThreadCount(processors), threads);
    }
};

QUILLBROOK_SUITE(TestFastScannerLists, QCoreApplication)
#include "tst_FastScannerLists.moc"
