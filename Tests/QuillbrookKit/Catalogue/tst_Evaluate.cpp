#include "Catalogue/StorageCatalogue.h"
#include "RawText.h"
#include "Support/MadeUpHome.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestEvaluate : public QObject
{
    Q_OBJECT

private:
    static ReclaimReport evaluate(MadeUpHome &home, const FileTree &tree, const QSet<QString> &skipping = {})
    {
        return StorageCatalogue::evaluate(home.services(),
            { .tree = tree, .root = 0, .places = { .homeDirectory = home.path(), .skipping = skipping } });
    }
    static ReclaimReport evaluate(MadeUpHome &home, const QSet<QString> &skipping = {})
    {
        return evaluate(home, *home.scan().tree, skipping);
    }

private Q_SLOTS:
    void emptyHomeGivesAnEmptyReport()
    {
        MadeUpHome home;
        QCOMPARE(evaluate(home), ReclaimReport());
    }

    void findsWhatTheQuickScanFound()
    {
        MadeUpHome home;
        home.volumes.answer = VolumeCapacity{ .available = 70, .total = 500 };
        for (const auto *folder :
            { ".pub-cache", "Downloads/a/b", ".npm/_cacache", ".android/avd", "Library/Caches/pip" })
            home.fill(folder, 4096);
        home.touch(".android/avd", home.clock.moment.addDays(-61));
        const auto quick
            = StorageCatalogue::quickScan(home.services(), { .places = { .homeDirectory = home.path() } });
        QCOMPARE(quick.findings.size(), 5);
        QCOMPARE(evaluate(home), quick);
    }

    void homeWhoseNameIsNotTextGivesTheSameToo()
    {
        MadeUpHome home;
        const auto raw = home.tree.path("jos\xE9");
        home.fill("jos\xE9/.android/avd", 4096);
        home.touch("jos\xE9/.android/avd", home.clock.moment.addDays(-61));
        const StorageCatalogue::Places places{ .homeDirectory = repairedText(raw), .rawHome = raw };
        const auto quick = StorageCatalogue::quickScan(home.services(), { .places = places });
        QCOMPARE(quick.findings.size(), 1);
        LinuxDirectoryReading directories;
        const auto scanned = FastScanner(directories).scan({ .rootPath = raw });
        QCOMPARE(StorageCatalogue::evaluate(
                     home.services(), { .tree = *scanned.tree, .root = scanned.root, .places = places }),
            quick);
    }

    void rawPathIsSpeltAsOnTheDisk()
    {
        MadeUpHome home;
        const std::string decomposed = "Bu\xCC\x88"
                                       "cher";
        home.fill(decomposed, 4096);
        const HostCatalogue host{ .rules = { { .rule = { .id = u"host.books"_s, .title = u"Books"_s },
                                      .locations = { { u"B\u00fccher"_s, u"Books"_s } } } } };
        const auto scanned = home.scan();
        const auto report = StorageCatalogue::evaluate(home.services(),
            { .tree = *scanned.tree,
                .root = scanned.root,
                .places = { .homeDirectory = home.path(), .host = &host } });
        QCOMPARE(report.findings.size(), 1);
        QCOMPARE(report.findings.first().rawPath, home.tree.path(decomposed));
        QVERIFY(report.findings.first().lastModified);
    }

    void sizeIsTheTreesEvenWhenTheDiskHasMovedOn()
    {
        MadeUpHome home;
        home.fill(".npm/_cacache", 4096);
        const auto result = home.scan();
        home.fill(".npm/_cacache/later", 40960);
        QCOMPARE(evaluate(home, *result.tree).findings.first().bytes,
            home.tree.allocated(".npm/_cacache/content"));
    }

    void stopEndsTheEvaluation()
    {
        MadeUpHome home;
        home.fill(".npm/_cacache", 4096);
        const auto scanned = home.scan();
        std::stop_source stop;
        stop.request_stop();
        const auto report = StorageCatalogue::evaluate(home.services(),
            { .tree = *scanned.tree,
                .root = scanned.root,
                .places = { .homeDirectory = home.path() },
                .stop = stop.get_token() });
        QVERIFY(report.findings.isEmpty());
    }

    void emptyLocationGivesNoFinding()
    {
        MadeUpHome home;
        home.tree.folder(".npm/_cacache/tmp");
        QVERIFY(evaluate(home).findings.isEmpty());
    }

    void linkThatTakesSpaceGivesAFindingMarkedAsRedirected()
    {
        MadeUpHome home;
        home.fill("elsewhere", 10);
        home.tree.link(".npm/_cacache", home.tree.path("elsewhere"));
        // A short link takes no block of its own on many file systems, so the tree is made by hand.
        FileTree tree(8);
        const auto root
            = tree.addNode(FileTree::noNode, home.path().toStdString(), 0, FileTree::Flags::directory);
        const auto npm = tree.addNode(root, ".npm", 0, FileTree::Flags::directory);
        tree.addNode(npm, "_cacache", 4096, FileTree::Flags::symlink);
        tree.rollUp();
        const auto report = evaluate(home, tree);
        QCOMPARE(report.findings.size(), 1);
        QVERIFY(report.findings.first().redirectedOffVolume);
        QCOMPARE(report.findings.first().bytes, 4096);
        QCOMPARE(report.actionableBytes(), 0);
    }

    void linkOfSizeZeroGivesNoFinding()
    {
        MadeUpHome home;
        home.tree.link(".npm/_cacache", "x");
        if (home.tree.allocated(".npm/_cacache") != 0)
            QSKIP("this file system gives short links a block");
        QVERIFY(evaluate(home).findings.isEmpty());
    }

    void locationThatIsGoneFromTheDiskIsStillFoundInTheTree()
    {
        MadeUpHome home;
        home.fill(".android/avd", 4096);
        home.fill(".npm/_cacache", 4096);
        const auto result = home.scan();
        QVERIFY(QDir(home.path(".android")).removeRecursively());
        QVERIFY(QDir(home.path(".npm")).removeRecursively());
        const auto report = evaluate(home, *result.tree);
        QCOMPARE(report.findings.size(), 2);
        for (const auto &finding : report.findings) {
            QVERIFY(!finding.redirectedOffVolume);
            QVERIFY(!finding.created);
            QVERIFY(!finding.lastModified);
        }
        // Without a date nothing ever counts as stale; without a number of days everything does.
        QCOMPARE(report.findings[0].rule.id, u"npm.cacache"_s);
        QVERIFY(report.findings[0].meetsStalenessForDeletion);
        QVERIFY(!report.findings[1].meetsStalenessForDeletion);
    }

    void skippedLocationIsPassedOver()
    {
        MadeUpHome home;
        home.fill(".npm/_cacache", 10);
        home.fill("Downloads", 10);
        QCOMPARE(evaluate(home, { home.path("Downloads") }).findings.size(), 1);
        QVERIFY(evaluate(home, { home.path() }).findings.isEmpty());
    }

    void looksOnlyBelowTheGivenNode()
    {
        MadeUpHome home;
        home.fill(".npm/_cacache", 10);
        home.fill("Downloads", 10);
        const auto result = home.scan();
        const auto npm = result.tree->find(home.path(".npm"), result.root);
        const auto report = StorageCatalogue::evaluate(home.services(),
            { .tree = *result.tree, .root = npm, .places = { .homeDirectory = home.path() } });
        QCOMPARE(report.findings.size(), 1);
        QCOMPARE(report.findings.first().rule.id, u"npm.cacache"_s);
    }

    void nodeThatDoesNotExistHoldsNothing_data()
    {
        QTest::addColumn<int>("root");
        QTest::newRow("none") << -1;
        QTest::newRow("past the end") << 1000000;
    }
    void nodeThatDoesNotExistHoldsNothing()
    {
        QFETCH(int, root);
        MadeUpHome home;
        home.fill(".npm/_cacache", 10);
        const auto result = home.scan();
        const auto report = StorageCatalogue::evaluate(home.services(),
            { .tree = *result.tree, .root = root, .places = { .homeDirectory = home.path() } });
        QVERIFY(report.findings.isEmpty());
    }

    void homeOfATreeScannedFromAboveIsFound()
    {
        MadeUpHome home;
        home.fill("ann/.npm/_cacache", 10);
        const auto result = home.scan();
        const auto report = StorageCatalogue::evaluate(home.services(),
            { .tree = *result.tree, .root = result.root, .places = { .homeDirectory = home.path("ann") } });
        QCOMPARE(report.findings.size(), 1);
    }

    void failingVolumeQueryLeavesTheFindings()
    {
        MadeUpHome home;
        home.fill(".npm/_cacache", 10);
        const auto report = evaluate(home);
        QCOMPARE(report.findings.size(), 1);
        QCOMPARE(report.volumeFreeBytes, 0);
        QCOMPARE(report.volumeTotalBytes, 0);
    }
};

QUILLBROOK_SUITE(TestEvaluate, NoApplication)
#include "tst_Evaluate.moc"
