#include "Catalogue/Linux/LinuxHostKnowledge.h"
#include "Catalogue/Linux/LinuxQuietScope.h"
#include "Catalogue/StorageCatalogue.h"
#include "Support/MadeUpHome.h"
#include "Support/RuleListing.h"
#include "Support/Suite.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTest>

#include <filesystem>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

struct Expected
{
    QString rule;
    QString path;
    bool stale;
};

// The home folder that the end-to-end tests use, made by the same script.
class FixtureHome : public MadeUpHome
{
public:
    FixtureHome()
    {
        tree.folder("home");
        QProcess script;
        script.setProcessChannelMode(QProcess::ForwardedChannels);
        script.start(u"/usr/bin/python3"_s,
            { QStringLiteral(FIXTURE_SCRIPT), home(), u"--now"_s,
                QString::number(clock.moment.toSecsSinceEpoch()), u"--manifest"_s,
                tree.text("manifest.json") });
        if (!script.waitForFinished(60'000) || script.exitCode() != 0)
            qFatal("the fixture home can't be made");
        QFile manifest(tree.text("manifest.json"));
        if (!manifest.open(QIODevice::ReadOnly))
            qFatal("the fixture home has no manifest");
        for (const auto &row : QJsonDocument::fromJson(manifest.readAll()).array())
            expected.push_back({ row[u"rule"].toString(), row[u"path"].toString(), row[u"stale"].toBool() });
        host = LinuxHostKnowledge(LinuxFileReading(), {}).about(tree.path("home")).catalogue;
    }

    [[nodiscard]] QString home() const { return tree.text("home"); }
    [[nodiscard]] FastScanner::Result scanHome(
        const FastScanner::Allowlist &allowlist = {}, const QSet<QString> &exclusions = {}) const
    {
        LinuxDirectoryReading directories;
        return FastScanner(directories)
            .scan({ .rootPath = home().toStdString(),
                .threads = 2,
                .exclusions = exclusions,
                .allowlist = allowlist });
    }

    std::vector<Expected> expected;
    HostCatalogue host;
};

// Bytes on disk of all files below a folder, asked of each.
qint64 allocatedBelow(const TempTree &tree, const QString &folder)
{
    qint64 sum = 0;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder.toStdString()))
        if (!entry.is_directory() || entry.is_symlink())
            sum += tree.allocated(entry.path().lexically_relative(tree.path()).string());
    return sum;
}

} // namespace

class TestFixtureHome : public QObject
{
    Q_OBJECT

private:
    FixtureHome m_home;
    ReclaimReport m_quick;

    StorageCatalogue::Places places(const QSet<QString> &skipping = {}) const
    {
        return { .homeDirectory = m_home.home(), .skipping = skipping, .host = &m_home.host };
    }
    ReclaimReport evaluate(const FastScanner::Result &result, const QSet<QString> &skipping = {})
    {
        return StorageCatalogue::evaluate(
            m_home.services(), { .tree = *result.tree, .root = result.root, .places = places(skipping) });
    }

private Q_SLOTS:
    void initTestCase() { m_quick = StorageCatalogue::quickScan(m_home.services(), { .places = places() }); }

    void homeHoldsAtLeastFortyKinds()
    {
        QSet<QString> kinds;
        for (const auto &row : m_home.expected)
            kinds.insert(row.rule);
        QVERIFY2(kinds.size() >= 40, qPrintable(QString::number(kinds.size())));
    }

    void everyKindThatLinuxKnowsIsThere()
    {
        QSet<QString> kinds;
        for (const auto &row : m_home.expected)
            kinds.insert(row.rule);
        for (const auto &row : m_home.host.rules)
            QVERIFY2(kinds.contains(row.rule.id), qPrintable(row.rule.id));
        for (const auto &row : m_home.host.locations)
            QVERIFY2(kinds.contains(row.ruleId), qPrintable(row.ruleId));
    }

    void quickScanFindsExactlyWhatIsThere()
    {
        QStringList actual;
        for (const auto &finding : m_quick.findings)
            actual.append(finding.id);
        QStringList expected;
        for (const auto &row : m_home.expected)
            expected.append(Finding::idFor(row.rule, m_home.home() + u'/' + row.path));
        actual.sort();
        expected.sort();
        QCOMPARE(actual, expected);
    }

    void everyFindingIsClassedAndWordedAsListed()
    {
        auto listed = readRuleListing(QStringLiteral(RULE_LISTING));
        for (const auto &rule : readRuleListing(QStringLiteral(HOST_RULE_LISTING)))
            listed.push_back(rule);
        QCOMPARE(listed.size(), 30 + size_t(m_home.host.rules.size()));
        for (const auto &finding : m_quick.findings) {
            const auto row = std::ranges::find(listed, finding.rule.id, &ReclaimRule::id);
            QVERIFY2(row != listed.end(), qPrintable(finding.id));
            QVERIFY2(finding.rule == *row, qPrintable(finding.id));
        }
    }

    void everySizeIsThatOfTheFilesThere()
    {
        for (const auto &finding : m_quick.findings)
            QVERIFY2(finding.bytes == allocatedBelow(m_home.tree, finding.path), qPrintable(finding.id));
    }

    void agesAreJudgedAsMade()
    {
        for (const auto &row : m_home.expected)
            for (const auto &finding : m_quick.findings)
                if (finding.path == m_home.home() + u'/' + row.path)
                    QVERIFY2(finding.meetsStalenessForDeletion == row.stale, qPrintable(finding.id));
    }

    void noTwoFindingsAreTitledAlike()
    {
        QSet<QString> titles;
        for (const auto &finding : m_quick.findings)
            titles.insert(finding.displayTitle());
        QCOMPARE(titles.size(), m_quick.findings.size());
    }

    void evaluationOfTheWholeHomeFindsTheSame() { QCOMPARE(evaluate(m_home.scanHome()), m_quick); }

    void quietScopeFindsAllButTheUsersOwnFoldersAndTheCompleteScanAddsThem()
    {
        auto allowlist = FastScanner::quietAllowlist(m_home.home());
        allowlist[m_home.home()].unite(LinuxQuietScope::allowlist(m_home.home()).value(m_home.home()));
        const auto closed = FastScanner::tccProtectedPaths(m_home.home())
            + LinuxQuietScope::protectedPaths(m_home.home(), {});
        const auto quick = StorageCatalogue::quickScan(m_home.services(), { .places = places(closed) });
        QCOMPARE(evaluate(m_home.scanHome(allowlist, closed), closed), quick);

        QSet<QString> leftOut;
        for (const auto &finding : m_quick.findings)
            if (!quick.findings.contains(finding))
                leftOut.insert(finding.rule.id);
        QCOMPARE(leftOut,
            QSet<QString>({ u"downloads.folder"_s, u"photos.library"_s, u"research.library"_s,
                u"cloud.folders"_s, u"videos.folder"_s }));
        QCOMPARE(quick.findings.size(), m_quick.findings.size() - 5);
    }

    void stepsAreNeverFewerThanFindings()
    {
        const auto steps = StorageCatalogue::quickScanStepCount(m_home.services(), places());
        QVERIFY(steps > m_quick.findings.size());
    }
};

QUILLBROOK_SUITE(TestFixtureHome, QCoreApplication)
#include "tst_FixtureHome.moc"
