#include "Catalogue/StorageCatalogue.h"
#include "Support/MadeUpHome.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

// A host that adds places to rows with one path and with several, and rules of its own.
HostCatalogue sampleHost()
{
    return { .locations
        = { { u"trash"_s, { { u"bin/files"_s, u"Files"_s }, { u"bin/expunged"_s, u"Expunged"_s } } },
            { u"browser.caches"_s, { { u"cache/firefox"_s, u"Firefox"_s } } },
            { u"host.one"_s, { { u"films"_s, u"films"_s } } } },
        .rules
        = { { .rule
                = { .id = u"host.one"_s, .title = u"One"_s, .safety = Safety::safe, .paths = { u"one"_s } },
                .locations = { { u"one"_s, u"First"_s } } },
            { .rule = { .id = u"host.two"_s,
                  .title = u"Two"_s,
                  .safety = Safety::safe,
                  .paths = { u"a/Cache"_s, u"b/Cache"_s } },
                .locations = { { u"a/Cache"_s, u"A"_s }, { u"b/Cache"_s, u"B"_s } } } } };
}

QStringList titles(const QList<Finding> &findings)
{
    QStringList result;
    for (const auto &finding : findings)
        result.append(finding.displayTitle());
    return result;
}

} // namespace

class TestHostCatalogue : public QObject
{
    Q_OBJECT

private:
    static ReclaimReport quick(MadeUpHome &home, QList<Finding> *seen = nullptr)
    {
        const auto host = sampleHost();
        return StorageCatalogue::quickScan(home.services(),
            { .places = { .homeDirectory = home.path(), .host = &host },
                .onFinding = [seen](const Finding &finding) {
                    if (seen)
                        seen->append(finding);
                } });
    }
    static ReclaimReport evaluate(MadeUpHome &home)
    {
        const auto host = sampleHost();
        const auto result = home.scan();
        return StorageCatalogue::evaluate(home.services(),
            { .tree = *result.tree,
                .root = result.root,
                .places = { .homeDirectory = home.path(), .host = &host } });
    }

private Q_SLOTS:
    void hostsPlacesFollowTheRulesOwnAndItsRulesComeLast()
    {
        MadeUpHome home;
        for (const auto *folder :
            { "one", "b/Cache", "a/Cache", "bin/files", "cache/firefox", ".Trash", "Downloads", "films" })
            home.fill(folder, 4096);
        const auto report = quick(home);
        QStringList paths;
        for (const auto &finding : report.findings)
            paths.append(finding.path.sliced(home.path().size() + 1));
        QCOMPARE(paths,
            QStringList({ u".Trash"_s, u"bin/files"_s, u"cache/firefox"_s, u"Downloads"_s, u"one"_s,
                u"films"_s, u"a/Cache"_s, u"b/Cache"_s }));
        QCOMPARE(evaluate(home), report);
    }

    void findingAtAHostsPlaceCarriesTheBuiltInRowUnchanged()
    {
        MadeUpHome home;
        home.fill("cache/firefox", 10);
        QCOMPARE(quick(home).findings.first().rule, StorageCatalogue::rules()[14]);
    }

    void withoutAHostItsPlacesAreNotLookedAt()
    {
        MadeUpHome home;
        home.fill("one", 10);
        home.fill("bin/files", 10);
        QVERIFY(StorageCatalogue::quickScan(home.services(), { .places = { .homeDirectory = home.path() } })
                    .findings.isEmpty());
    }

    void rowWithSeveralPathsShowsTheLabel()
    {
        MadeUpHome home;
        home.fill("cache/firefox", 10);
        home.fill("a/Cache", 10);
        QCOMPARE(titles(quick(home).findings),
            QStringList({ u"Saved web pages \u00B7 Firefox"_s, u"Two \u00B7 A"_s }));
    }

    void loneFindingOfARowWithOnePathKeepsTheBareTitle()
    {
        MadeUpHome home;
        home.fill("bin/files", 10);
        home.tree.folder("bin/expunged");
        home.fill("one", 10);
        QCOMPARE(titles(quick(home).findings), QStringList({ u"Trash"_s, u"One"_s }));
        QCOMPARE(titles(evaluate(home).findings), QStringList({ u"Trash"_s, u"One"_s }));
    }

    void severalFindingsOfARowWithOnePathAreToldApart()
    {
        MadeUpHome home;
        for (const auto *folder : { ".Trash", "bin/files", "bin/expunged", "one", "films" })
            home.fill(folder, 4096);
        const QStringList expected{ u"Trash \u00B7 .Trash"_s, u"Trash \u00B7 Files"_s,
            u"Trash \u00B7 Expunged"_s, u"One \u00B7 First"_s, u"One \u00B7 films"_s };
        QCOMPARE(titles(quick(home).findings), expected);
        QCOMPARE(titles(evaluate(home).findings), expected);
    }

    void firstFindingOfSuchARowIsTitledBareUntilASecondComes()
    {
        MadeUpHome home;
        home.fill("bin/files", 4096);
        home.fill("bin/expunged", 4096);
        QList<Finding> seen;
        quick(home, &seen);
        QCOMPARE(titles(seen), QStringList({ u"Trash"_s, u"Trash \u00B7 Expunged"_s }));
    }

    void whatAnApplicationMayBeUsingIsSafeOnlyWhereItIsNotRunning_data()
    {
        QTest::addColumn<std::optional<bool>>("isRunning");
        QTest::addColumn<Safety>("safety");
        QTest::addColumn<Safety>("expected");
        QTest::newRow("not running") << std::optional(false) << Safety::safe << Safety::safe;
        QTest::newRow("running") << std::optional(true) << Safety::safe << Safety::careful;
        QTest::newRow("can't be told") << std::optional<bool>() << Safety::safe << Safety::careful;
        QTest::newRow("careful") << std::optional(false) << Safety::careful << Safety::careful;
        QTest::newRow("locked") << std::optional(true) << Safety::reportOnly << Safety::reportOnly;
    }
    void whatAnApplicationMayBeUsingIsSafeOnlyWhereItIsNotRunning()
    {
        QFETCH(std::optional<bool>, isRunning);
        QFETCH(Safety, safety);
        QFETCH(Safety, expected);
        MadeUpHome home;
        home.fill("app", 10);
        home.fill("other", 10);
        home.runningApps.answer = isRunning;
        const HostCatalogue host{ .locations
            = { { u"a.rule"_s, { { u"app"_s, u"App"_s, u"org.one.App"_s }, { u"other"_s, u"Other"_s } } } },
            .rules = { { .rule = { .id = u"a.rule"_s, .safety = safety } } } };
        const StorageCatalogue::Places places{ .homeDirectory = home.path(), .host = &host };
        const auto report = StorageCatalogue::quickScan(home.services(), { .places = places });
        QCOMPARE(report.findings.size(), 2);
        for (const auto &finding : report.findings) {
            const bool isApp = finding.path == home.path("app");
            QCOMPARE(finding.applicationId, isApp ? u"org.one.App"_s : QString());
            QCOMPARE(finding.rule.safety, isApp ? expected : safety);
        }
        const auto result = home.scan();
        QCOMPARE(StorageCatalogue::evaluate(
                     home.services(), { .tree = *result.tree, .root = result.root, .places = places }),
            report);
    }

    void skippingCoversTheHostsPlaces()
    {
        MadeUpHome home;
        home.fill("one", 10);
        home.fill("a/Cache", 10);
        const auto host = sampleHost();
        const auto report = StorageCatalogue::quickScan(home.services(),
            { .places = { .homeDirectory = home.path(), .skipping = { home.path("a") }, .host = &host } });
        QCOMPARE(titles(report.findings), QStringList(u"One"_s));
    }

    void linkAboveTheHomeFolderDoesNotMatter()
    {
        MadeUpHome home;
        home.fill("ann/one", 10);
        home.tree.link("way", "ann");
        const auto host = sampleHost();
        const auto report = StorageCatalogue::quickScan(
            home.services(), { .places = { .homeDirectory = home.path("way"), .host = &host } });
        QCOMPARE(report.findings.size(), 1);
    }

    void stepCountCountsTheHostsPlaces()
    {
        MadeUpHome home;
        for (const auto *folder : { "one", "bin/files", "bin/expunged", ".npm/_cacache" })
            home.tree.folder(folder);
        const auto host = sampleHost();
        QCOMPARE(StorageCatalogue::quickScanStepCount(
                     home.services(), { .homeDirectory = home.path(), .host = &host }),
            4);
        QCOMPARE(StorageCatalogue::quickScanStepCount(home.services(), { .homeDirectory = home.path() }), 1);
    }
};

QUILLBROOK_SUITE(TestHostCatalogue, NoApplication)
#include "tst_HostCatalogue.moc"
