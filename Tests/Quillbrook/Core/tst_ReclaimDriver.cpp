// What removes things and proves what it achieved, on real files in a temporary home folder.

#include "Catalogue/StorageItem.h"
#include "Removal/Clearance.h"
#include "Support/HomeOnDisk.h"
#include "Support/Suite.h"

#include <QSemaphore>
#include <QSignalSpy>

#include <limits>
#include <utility>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr auto packages = ".npm/_cacache";
constexpr auto logs = ".gradle/daemon";
const auto packagesTitle = u"Downloaded code packages"_s;
const auto logsTitle = u"Android build logs"_s;

// Two findings: packages of two files, 12 KB in all, and logs of one.
struct Fixture : HomeOnDisk
{
    explicit Fixture(const std::string &data = "data")
        : HomeOnDisk(data)
    {
        tree.file("home/.npm/_cacache/one", 4096);
        tree.file("home/.npm/_cacache/two", 8192);
        tree.file("home/.gradle/daemon/log", 4096);
        tree.file("home/notes.txt", 4096);
        scan();
    }
};

} // namespace

class TestReclaimDriver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findingsGoToTheTrashAndOntoTheLedger()
    {
        const Fixture fixture;
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        fixture.removed();
        QVERIFY(fixture.has(packages));
        QVERIFY(!fixture.has(".npm/_cacache/one"));
        QVERIFY(fixture.isTrashed("one"));
        QVERIFY(fixture.isTrashed("two"));
        QVERIFY(fixture.has(".gradle/daemon/log"));
        QCOMPARE(fixture.model->reclaims().ledger().items().size(), size_t(2));
        QCOMPARE(fixture.model->reclaims().ledger().pending(),
            (TrashLedger::Pending{ .count = 2, .bytes = 12288 }));
        QCOMPARE(fixture.model->reclaims().freeNowOffer(), std::optional<qint64>(12288));
        QCOMPARE(fixture.scans(), 2);
        fixture.settled();
        QCOMPARE(fixture.model->scans().report()->findings.size(), 1);
    }

    void logNamesEachFindingAndItsFate()
    {
        const Fixture fixture;
        fixture.model->reclaims().reclaim({ fixture.finding(packages), fixture.finding(logs) }, false);
        fixture.removed();
        QCOMPARE(fixture.model->reclaims().reclaimLog(),
            QStringList({ u"✓ Downloaded code packages — 12.0 KB to Trash"_s,
                u"✓ Android build logs — 4.0 KB to Trash"_s }));
        fixture.settled();
    }

    void permanentRemovalLeavesNothingAndOffersNothing()
    {
        const Fixture fixture;
        fixture.model->reclaims().reclaim({ fixture.finding(logs) }, true);
        fixture.removed();
        QVERIFY(!fixture.has(".gradle/daemon/log"));
        QVERIFY(!fixture.isTrashed("log"));
        QVERIFY(fixture.model->reclaims().ledger().items().empty());
        QVERIFY(!fixture.model->reclaims().freeNowOffer());
        QCOMPARE(fixture.model->reclaims().reclaimLog(),
            QStringList{ u"✓ Android build logs — 4.0 KB deleted"_s });
        fixture.settled();
    }

    void claimIsHeldAgainstTheVolumeAfterTheRescan()
    {
        Fixture fixture;
        fixture.volumes.answer->available = 500'000;
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        QVERIFY(!fixture.model->reclaims().lastVerification());
        fixture.volumes.answer->available = 500'100;
        fixture.settled();
        QCOMPARE(fixture.model->reclaims().lastVerification(),
            std::optional(
                Verification{ .claimedBytes = 12288, .freeBefore = 500'000, .freeAfter = 500'100 }));
        QVERIFY(!fixture.model->reclaims().lastVerification()->isGood());
        fixture.model->reclaims().dismissVerification();
        QVERIFY(!fixture.model->reclaims().lastVerification());
    }

    void spaceThatComesBackIsMeasured()
    {
        Fixture fixture;
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, true);
        fixture.volumes.answer->available = 1'012'288;
        fixture.settled();
        QVERIFY(fixture.model->reclaims().lastVerification()->isGood());
        // A scan that nothing was claimed before measures nothing.
        const auto verified = fixture.model->reclaims().lastVerification();
        fixture.volumes.answer->available = 1'012'293;
        fixture.scan();
        QCOMPARE(fixture.model->reclaims().lastVerification(), verified);
    }

    void cancelledRescanLeavesTheClaimForTheNext()
    {
        const Fixture fixture;
        const auto begun = connect(
            &fixture.model->scans(), &ScanDriver::started, &fixture.model->scans(), &ScanDriver::cancelScan);
        fixture.model->reclaims().reclaim({ fixture.finding(logs) }, false);
        fixture.removed();
        QCOMPARE(fixture.scans(), 2);
        disconnect(begun);
        QVERIFY(!fixture.model->reclaims().lastVerification());
        fixture.scan();
        QVERIFY(fixture.model->reclaims().lastVerification());
        QCOMPARE(fixture.model->reclaims().lastVerification()->claimedBytes, qint64(4096));
    }

    void secondReclaimDuringAScanReplacesTheClaim()
    {
        Fixture fixture;
        const auto second = fixture.finding(logs);
        fixture.volumes.answer->available = 500'000;
        connect(&fixture.model->scans(), &ScanDriver::started, this, [&, isFirst = true]() mutable {
            fixture.volumes.answer->available = 600'000;
            if (std::exchange(isFirst, false))
                fixture.model->reclaims().reclaim({ second }, false);
        });
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        fixture.removed();
        fixture.settled();
        QTRY_COMPARE(fixture.model->reclaims().lastVerification()->claimedBytes, qint64(4096));
        QCOMPARE(fixture.model->reclaims().lastVerification()->freeBefore, qint64(600'000));
    }

    void reclaimOfNothingRescansAndOffersNothing()
    {
        const Fixture fixture;
        fixture.model->reclaims().reclaim({}, false);
        fixture.removed();
        QVERIFY(!fixture.model->reclaims().freeNowOffer());
        QVERIFY(fixture.model->reclaims().reclaimLog().isEmpty());
        QCOMPARE(fixture.scans(), 2);
        fixture.settled();
        QCOMPARE(fixture.model->reclaims().lastVerification()->claimedBytes, qint64(0));
    }

    void failedFindingIsToldAndNotCounted()
    {
        const Fixture fixture;
        auto shown = fixture.finding(logs);
        shown.rule.safety = Safety::reportOnly;
        fixture.model->reclaims().reclaim({ shown, fixture.finding(packages) }, false);
        fixture.removed();
        QVERIFY(fixture.has(".gradle/daemon/log"));
        QCOMPARE(fixture.model->reclaims().reclaimLog().size(), 2);
        QVERIFY(fixture.model->reclaims().reclaimLog().first().startsWith(u"✗ Android build logs: "_s));
        QCOMPARE(fixture.model->reclaims().reclaimedSoFar(), qint64(12288));
        QCOMPARE(fixture.model->reclaims().freeNowOffer(), std::optional<qint64>(12288));
        fixture.settled();
    }

    void partlyFailedFindingStaysUnknownToTheLedger()
    {
        // The Trash itself lies among the packages, and a folder that holds it never goes into it.
        const Fixture fixture("home/.npm/_cacache/data");
        std::filesystem::create_directories(fixture.trashFolder + "/files");
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        fixture.removed();
        QVERIFY(!fixture.has(".npm/_cacache/one"));
        QVERIFY(fixture.isTrashed("one"));
        QCOMPARE(fixture.model->reclaims().reclaimLog().size(), 1);
        QVERIFY(fixture.model->reclaims().reclaimLog().first().startsWith(u"✗ Downloaded code packages: "_s));
        QVERIFY(fixture.model->reclaims().ledger().items().empty());
        QCOMPARE(fixture.model->reclaims().reclaimedSoFar(), qint64(0));
        QVERIFY(!fixture.model->reclaims().freeNowOffer());
        fixture.settled();
        QCOMPARE(fixture.model->reclaims().lastVerification()->claimedBytes, qint64(0));
    }

    void linkAmongTheContentsGoesAsALink()
    {
        Fixture fixture;
        fixture.tree.link("home/.npm/_cacache/link", fixture.path("notes.txt"));
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, true);
        fixture.removed();
        QVERIFY(!fixture.has(".npm/_cacache/link"));
        QVERIFY(fixture.has("notes.txt"));
        fixture.settled();
    }

    void runningTotalSurvivesARestart()
    {
        Fixture fixture;
        QSignalSpy totals(&fixture.model->reclaims(), &ReclaimDriver::reclaimedSoFarChanged);
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        fixture.removed();
        QCOMPARE(totals.count(), 1);
        fixture.settled();
        QCOMPARE(fixture.defaults.integer(u"Quillbrook.reclaimedBytes"_s), std::optional<qint64>(12288));
        fixture.start();
        QCOMPARE(fixture.model->reclaims().reclaimedSoFar(), qint64(12288));
    }

    void damagedTotalIsTakenForWhatItCanBe()
    {
        const auto key = u"Quillbrook.reclaimedBytes"_s;
        constexpr auto most = std::numeric_limits<qint64>::max();
        Fixture fixture;
        fixture.defaults.setInteger(key, most - 1);
        fixture.start();
        fixture.scan();
        fixture.model->reclaims().reclaim({ fixture.finding(logs) }, false);
        fixture.removed();
        QCOMPARE(fixture.model->reclaims().reclaimedSoFar(), most);
        fixture.settled();
        fixture.defaults.setInteger(key, -5);
        fixture.start();
        QCOMPARE(fixture.model->reclaims().reclaimedSoFar(), qint64(0));
    }

    void ledgerSurvivesARestartAndTheLogsDoNot()
    {
        Fixture fixture;
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        fixture.settled();
        fixture.start();
        QCOMPARE(fixture.model->reclaims().ledger().pendingCount(), qsizetype(2));
        QVERIFY(fixture.model->reclaims().reclaimLog().isEmpty());
        QVERIFY(!fixture.model->reclaims().lastVerification());
        fixture.scan();
        fixture.model->reclaims().finishRemoving();
        fixture.removed();
        QVERIFY(!fixture.isTrashed("one"));
        fixture.settled();
    }

    void itemsGoToTheTrashOneByOne()
    {
        const Fixture fixture;
        const QList<StorageItem> items{
            { .name = "one", .bytes = 4096, .rawPath = fixture.path(".npm/_cacache/one") },
            { .name = "two", .bytes = 8192, .rawPath = fixture.path(".npm/_cacache/two") }
        };
        fixture.model->reclaims().removeItems(items, fixture.finding(packages));
        fixture.removed();
        QVERIFY(fixture.isTrashed("one"));
        QVERIFY(fixture.isTrashed("two"));
        QCOMPARE(fixture.model->reclaims().reclaimLog(),
            QStringList({ u"✓ one — 4.0 KB to Trash"_s, u"✓ two — 8.0 KB to Trash"_s }));
        const auto &rows = fixture.model->reclaims().ledger().items();
        QCOMPARE(rows.size(), size_t(2));
        QCOMPARE(rows.front().label, u"one"_s);
        QCOMPARE(rows.front().originalPath, fixture.path(".npm/_cacache/one"));
        QVERIFY(!rows.front().byRule);
        QCOMPARE(fixture.model->reclaims().freeNowOffer(), std::optional<qint64>(12288));
        QCOMPARE(fixture.scans(), 2);
        fixture.settled();
        QVERIFY(!fixture.model->reclaims().lastVerification());
    }

    void itemsOfShownFindingsStay()
    {
        const Fixture fixture;
        auto shown = fixture.finding(packages);
        shown.rule.safety = Safety::reportOnly;
        fixture.model->reclaims().removeItems(
            { { .name = "one", .bytes = 1, .rawPath = fixture.path(".npm/_cacache/one") } }, shown);
        fixture.removed();
        QVERIFY(fixture.has(".npm/_cacache/one"));
        QVERIFY(fixture.model->reclaims().reclaimLog().isEmpty());
        QCOMPARE(fixture.model->scans().phase().kind, Phase::Kind::ready);
    }

    void blockedItemsChangeNothing()
    {
        const Fixture fixture;
        fixture.model->reclaims().removeItems({ { .name = "one",
                                                  .bytes = 1,
                                                  .removable = false,
                                                  .blockedReason = "It runs.",
                                                  .rawPath = fixture.path(".npm/_cacache/one") } },
            fixture.finding(packages));
        fixture.removed();
        QVERIFY(fixture.has(".npm/_cacache/one"));
        QVERIFY(fixture.model->reclaims().reclaimLog().isEmpty());
        QVERIFY(!fixture.model->reclaims().freeNowOffer());
        QCOMPARE(fixture.model->scans().phase().kind, Phase::Kind::ready);
    }

    void vanishedItemIsToldAndTheRestGoes()
    {
        const Fixture fixture;
        fixture.model->reclaims().removeItems(
            { { .name = "gone", .bytes = 1, .rawPath = fixture.path(".npm/_cacache/gone") },
                { .name = "one", .bytes = 4096, .rawPath = fixture.path(".npm/_cacache/one") } },
            fixture.finding(packages));
        fixture.removed();
        QCOMPARE(fixture.model->reclaims().reclaimLog().size(), 2);
        QVERIFY(fixture.model->reclaims().reclaimLog().first().startsWith(u"✗ gone: "_s));
        QVERIFY(fixture.isTrashed("one"));
        QCOMPARE(fixture.model->reclaims().freeNowOffer(), std::optional<qint64>(4096));
        fixture.settled();
    }

    void selectedFileGoesToTheTrash()
    {
        const Fixture fixture;
        fixture.model->navigation().setSelection(fixture.node("notes.txt"));
        fixture.removeSelected(false);
        QVERIFY(!fixture.has("notes.txt"));
        QVERIFY(fixture.isTrashed("notes.txt"));
        QVERIFY(!fixture.model->navigation().selection());
        QCOMPARE(fixture.model->reclaims().reclaimLog(),
            QStringList{ u"✓ notes.txt — 4.0 KB moved to the Trash"_s });
        QCOMPARE(fixture.model->reclaims().reclaimedSoFar(), qint64(4096));
        QCOMPARE(fixture.model->reclaims().ledger().pendingCount(), qsizetype(1));
        // No rescan: the tree shows it until the next one.
        QCOMPARE(fixture.model->scans().phase().kind, Phase::Kind::ready);
        QVERIFY(fixture.node("notes.txt"));
        QVERIFY(!fixture.model->reclaims().freeNowOffer());
    }

    void selectedFileGoesForGood()
    {
        const Fixture fixture;
        fixture.model->navigation().setSelection(fixture.node("notes.txt"));
        fixture.removeSelected(true);
        QVERIFY(!fixture.has("notes.txt"));
        QVERIFY(!fixture.isTrashed("notes.txt"));
        QVERIFY(fixture.model->reclaims().ledger().items().empty());
        QCOMPARE(fixture.model->reclaims().reclaimLog(), QStringList{ u"✓ notes.txt — 4.0 KB removed"_s });
    }

    void refusedSelectionStaysAndSaysWhy()
    {
        const Fixture fixture;
        const auto home = fixture.model->scans().tree()->snapshot(fixture.model->scans().rootNode());
        fixture.model->navigation().setSelection(home);
        const auto refusal = fixture.model->reclaims().guardedPath(*home)();
        QVERIFY(refusal);
        for (const bool permanent : { false, true })
            fixture.removeSelected(permanent);
        QVERIFY(fixture.has("notes.txt"));
        QCOMPARE(fixture.model->navigation().selection(), home);
        QCOMPARE(fixture.model->reclaims().reclaimLog(), QStringList({ "✗ " + *refusal, "✗ " + *refusal }));
        QCOMPARE(fixture.model->reclaims().reclaimedSoFar(), qint64(0));
    }

    void vanishedSelectionIsTold()
    {
        const Fixture fixture;
        fixture.model->navigation().setSelection(fixture.node("notes.txt"));
        std::filesystem::remove(fixture.path("notes.txt"));
        fixture.removeSelected(false);
        QCOMPARE(fixture.model->reclaims().reclaimLog().size(), 1);
        QVERIFY(fixture.model->reclaims().reclaimLog().first().startsWith(u"✗ "_s));
        QVERIFY(fixture.model->navigation().selection());
        QVERIFY(fixture.model->reclaims().ledger().items().empty());
    }

    void whatIsNotWhatWasPickedStays()
    {
        const Fixture fixture;
        fixture.model->navigation().setSelection(fixture.node("notes.txt"));
        fixture.model->reclaims().removeSelected(true, 1);
        fixture.removed();
        QVERIFY(fixture.has("notes.txt"));
        QCOMPARE(fixture.model->reclaims().reclaimLog(),
            QStringList{ u"✗ notes.txt is not what was measured any more. Scan again."_s });
    }

    void selectionOfMeanwhileStays()
    {
        const Fixture fixture;
        fixture.model->navigation().setSelection(fixture.node("notes.txt"));
        const auto inode = fixture.model->reclaims().inodeOf(*fixture.node("notes.txt"))();
        fixture.model->reclaims().removeSelected(false, inode);
        const auto other = fixture.node(".gradle/daemon/log");
        fixture.model->navigation().setSelection(other);
        fixture.removed();
        QVERIFY(!fixture.has("notes.txt"));
        QCOMPARE(fixture.model->navigation().selection(), other);
    }

    void nothingIsRemovedBeforeTheEventLoopHasItsTurn()
    {
        const Fixture fixture;
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        QVERIFY(fixture.model->removals().isBusy());
        QVERIFY(fixture.model->reclaims().reclaimLog().isEmpty());
        fixture.model->scans().scan({});
        QCOMPARE(fixture.scans(), 1);
        fixture.settled();
        // What was asked for meanwhile and what follows a removal are one scan.
        QCOMPARE(fixture.scans(), 2);
    }

    void whatWasStoppedBeforeItBeganStays()
    {
        Fixture fixture;
        // The figures are read when its turn has come, right before anything goes.
        fixture.volumes.answer->available = 123;
        connect(&fixture.model->volume(), &VolumeFigures::volumeChanged, &fixture.model->removals(),
            &RemovalQueue::stop);
        fixture.model->reclaims().reclaim({ fixture.finding(packages), fixture.finding(logs) }, false);
        fixture.settled();
        QVERIFY(fixture.model->reclaims().reclaimLog().isEmpty());
        QVERIFY(fixture.has(".npm/_cacache/one"));
        QVERIFY(fixture.has(".gradle/daemon/log"));
        QCOMPARE(fixture.model->reclaims().reclaimedSoFar(), qint64(0));
    }

    void whatAKillLeftIsTakenUp()
    {
        Fixture fixture;
        const auto clear = [&](const Finding &finding) {
            RemovalJournal journal(fixture.disk.reading, fixture.disk.writing,
                RemovalJournal::besideLedger(TrashLedger::standardStore(fixture.dataFolder)));
            const RemovalServices removal{ .trash = fixture.disk.trash,
                .removal = fixture.disk.removal,
                .files = fixture.disk.files,
                .clock = fixture.clock };
            Clearance clearance(removal, journal, fixture.home.home);
            return clearance.clear({ .findings = { finding } }, {});
        };
        QCOMPARE(clear(fixture.finding(packages)).size(), size_t(1));
        fixture.start();
        QCOMPARE(fixture.model->reclaims().pending(), (TrashLedger::Pending{ .count = 2, .bytes = 12288 }));
        QCOMPARE(fixture.model->reclaims().reclaimedSoFar(), qint64(12288));
        fixture.start();
        QCOMPARE(fixture.model->reclaims().reclaimedSoFar(), qint64(12288));
    }

    void thingsArePutBackAndOthersStay()
    {
        const Fixture fixture;
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        fixture.settled();
        const auto held = fixture.model->reclaims().held();
        QCOMPARE(held.size(), size_t(2));
        // Nothing is replaced.
        fixture.tree.file("home/.npm/_cacache/two", 1);
        const auto isFirst = held.front().item.originalPath.ends_with("one");
        const auto &one = held.at(isFirst ? 0 : 1).item;
        fixture.model->reclaims().putBack({ held.front().item.id, held.back().item.id });
        fixture.settled();
        QVERIFY(fixture.has(".npm/_cacache/one"));
        QVERIFY(fixture.isTrashed("two"));
        QCOMPARE(std::filesystem::file_size(fixture.path(".npm/_cacache/two")), size_t(1));
        QCOMPARE(fixture.model->reclaims().pending().count, qsizetype(1));
        const auto &log = fixture.model->reclaims().reclaimLog();
        QCOMPARE(log.size(), 3);
        QVERIFY(log.contains(u"✓ Downloaded code packages · one — 6.0 KB put back"_s));
        QVERIFY(one.originalPath.ends_with("one"));
    }

    void whatWasKeptBackStaysInTheTrash()
    {
        const Fixture fixture;
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        fixture.settled();
        const auto kept = fixture.model->reclaims().held().front().item;
        fixture.model->reclaims().finishRemoving({ kept.id });
        fixture.settled();
        QCOMPARE(fixture.model->reclaims().ledger().items(), std::vector<TrashedItem>{ kept });
        QVERIFY(std::filesystem::exists(kept.trashPath));
    }

    void whatFailedInPartCanBePutBackAndNothingElse()
    {
        const Fixture fixture("home/.npm/_cacache/data");
        std::filesystem::create_directories(fixture.trashFolder + "/files");
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        fixture.settled();
        QCOMPARE(fixture.model->reclaims().pending(), TrashLedger::Pending());
        const auto held = fixture.model->reclaims().held();
        QVERIFY(!held.empty());
        QSet<QString> ids;
        for (const auto &each : held) {
            QVERIFY(each.isOnlyInJournal);
            ids.insert(each.item.id);
        }
        fixture.model->reclaims().finishRemoving();
        fixture.settled();
        QVERIFY(fixture.isTrashed("one"));
        fixture.model->reclaims().putBack(ids);
        fixture.settled();
        QVERIFY(fixture.has(".npm/_cacache/one"));
        QVERIFY(fixture.model->reclaims().held().empty());
    }

    void rulesMoveIsMarkedAlsoWhereItFailedInPart()
    {
        const Fixture fixture("home/.npm/_cacache/data");
        std::filesystem::create_directories(fixture.trashFolder + "/files");
        std::optional<QString> error;
        fixture.model->reclaims().clearForRules(
            { fixture.finding(packages) }, [&](const auto &outcomes) { error = outcomes.front().error; });
        fixture.removed();
        QVERIFY(error);
        QVERIFY(fixture.model->reclaims().reclaimLog().isEmpty());
        QVERIFY(!fixture.model->reclaims().ledger().items().empty());
        for (const auto &row : fixture.model->reclaims().ledger().items())
            QCOMPARE(row.byRule, std::optional(true));
        // Each is known once.
        QCOMPARE(fixture.model->reclaims().held().size(), fixture.model->reclaims().ledger().items().size());
        QCOMPARE(fixture.model->reclaims().reclaimedSoFar(), qint64(0));
    }

    void nothingFreeIsAFigure()
    {
        Fixture fixture;
        fixture.volumes.answer->available = 0;
        fixture.model->reclaims().reclaim({ fixture.finding(logs) }, false);
        fixture.settled();
        QCOMPARE(fixture.model->reclaims().lastVerification()->freeBefore, qint64(0));
    }

    void whySpaceStayedIsTold()
    {
        Fixture fixture;
        fixture.model->reclaims().reclaim({ fixture.finding(logs) }, false);
        fixture.settled();
        QTRY_COMPARE(fixture.model->reclaims().stayedReasons(),
            QStringList{ u"It is in the Trash, which is on the same disk."_s });
        fixture.tree.file("home/.npm/_cacache/large", 4'194'304);
        fixture.scan();
        fixture.spaceHolders.open = { { .program = u"player"_s, .bytes = 4096 } };
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, true);
        fixture.settled();
        QTRY_COMPARE(
            fixture.model->reclaims().stayedReasons(), QStringList{ u"player still has some of it open."_s });
    }

    void withoutASelectionNothingIsRemoved()
    {
        const Fixture fixture;
        fixture.removeSelected(true);
        QVERIFY(fixture.has("notes.txt"));
        QVERIFY(fixture.model->reclaims().reclaimLog().isEmpty());
    }

    void oddNamesGoLikeAnyOther_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("not UTF-8") << QByteArray("caf\xe9 100%.bin");
        QTest::newRow("a line feed") << QByteArray("two\nlines");
        QTest::newRow("as long as names get") << QByteArray(255, 'x');
    }

    void oddNamesGoLikeAnyOther()
    {
        QFETCH(QByteArray, name);
        Fixture fixture;
        const auto raw = name.toStdString();
        fixture.tree.file("home/odd/" + raw, 4096);
        fixture.tree.file("home/odd/other", 8192);
        fixture.scan();
        const auto folder = fixture.model->scans().tree()->find(
            QString::fromStdString(fixture.path("odd")), fixture.model->scans().rootNode());
        for (const auto node : fixture.model->scans().tree()->children(folder))
            if (fixture.model->scans().tree()->rawPath(node) == fixture.path("odd/" + raw))
                fixture.model->navigation().setSelection(fixture.model->scans().tree()->snapshot(node));
        QVERIFY(fixture.model->navigation().selection());
        fixture.removeSelected(false);
        QVERIFY(!fixture.has("odd/" + raw));
        QVERIFY(fixture.has("odd/other"));
        QCOMPARE(fixture.model->reclaims().ledger().items().size(), size_t(1));
        QCOMPARE(fixture.model->reclaims().ledger().items().front().originalPath, fixture.path("odd/" + raw));
        fixture.start();
        QCOMPARE(fixture.model->reclaims().ledger().pendingCount(), qsizetype(1));
        fixture.model->reclaims().finishRemoving();
        fixture.removed();
        QCOMPARE(fixture.model->reclaims().ledger().pendingCount(), qsizetype(0));
        QVERIFY(!std::filesystem::exists(fixture.trashFolder + "/files")
            || std::filesystem::is_empty(fixture.trashFolder + "/files"));
        fixture.settled();
    }

    void linkGoesAsALink()
    {
        Fixture fixture;
        fixture.tree.link("home/to-notes", fixture.path("notes.txt"));
        fixture.scan();
        fixture.model->navigation().setSelection(fixture.node("to-notes"));
        QVERIFY(fixture.model->navigation().selection());
        fixture.removeSelected(true);
        QVERIFY(!fixture.has("to-notes"));
        QVERIFY(fixture.has("notes.txt"));
    }

    void linesOfASelectionGoFirstAndOthersLast()
    {
        const Fixture fixture;
        fixture.model->reclaims().reclaim({ fixture.finding(logs) }, false);
        fixture.settled();
        fixture.model->navigation().setSelection(fixture.node("notes.txt"));
        fixture.removeSelected(false);
        fixture.model->reclaims().finishRemoving();
        fixture.settled();
        QCOMPARE(fixture.model->reclaims().reclaimLog(),
            QStringList(
                { u"✓ notes.txt — 4.0 KB moved to the Trash"_s, u"✓ Android build logs — 4.0 KB to Trash"_s,
                    u"✓ permanently removed 2 items · 8.0 KB actually freed"_s }));
    }

    void finishingRemovesOnlyWhatWeMoved()
    {
        Fixture fixture;
        QVERIFY(fixture.disk.trash.move(fixture.path("notes.txt")).has_value());
        fixture.model->reclaims().reclaim({ fixture.finding(logs) }, false);
        fixture.settled();
        const auto verified = fixture.model->reclaims().lastVerification();
        fixture.model->reclaims().finishRemoving();
        fixture.removed();
        QVERIFY(fixture.isTrashed("notes.txt"));
        QVERIFY(!fixture.isTrashed("log"));
        QVERIFY(fixture.model->reclaims().ledger().items().empty());
        QCOMPARE(fixture.model->reclaims().reclaimLog().last(),
            u"✓ permanently removed 1 items · 4.0 KB actually freed"_s);
        fixture.settled();
        QCOMPARE(fixture.model->reclaims().lastVerification(), verified);
    }

    void finishingWithAnEmptyLedgerLogsNothingAndRescans()
    {
        const Fixture fixture;
        fixture.model->reclaims().finishRemoving();
        fixture.removed();
        QVERIFY(fixture.model->reclaims().reclaimLog().isEmpty());
        QCOMPARE(fixture.scans(), 2);
        fixture.settled();
    }

    void offerStandsUntilItIsCleared()
    {
        const Fixture fixture;
        QSignalSpy offers(&fixture.model->reclaims(), &ReclaimDriver::freeNowOfferChanged);
        fixture.model->reclaims().reclaim({ fixture.finding(logs) }, false);
        fixture.settled();
        QVERIFY(fixture.model->reclaims().freeNowOffer());
        fixture.model->reclaims().clearFreeNowOffer();
        fixture.model->reclaims().clearFreeNowOffer();
        QVERIFY(!fixture.model->reclaims().freeNowOffer());
        QCOMPARE(offers.count(), 2);
    }

    void removalsOfOthersAreTakenOver()
    {
        const Fixture fixture;
        const TrashedItem row
            = TrashedItem::moved({ .label = "an app", .originalPath = "/a", .trashPath = "/b", .bytes = 7 });
        bool isDone = false;
        fixture.model->reclaims().removeBy(
            [&](const RemovalQueue::Watch &, RemovalJournal &) -> std::vector<PathRemoval::Removal> {
                return { { .path = "/a", .bytes = 2048, .trashed = row },
                    { .path = "/c", .error = u"It must stay."_s } };
            },
            u"Editor"_s, false, [&] { isDone = true; });
        fixture.removed();
        QVERIFY(isDone);
        QCOMPARE(fixture.model->reclaims().uninstallLog(),
            QStringList({ u"✓ Editor — 2.0 KB moved to the Trash. The space comes back when the Trash is "
                          "emptied."_s,
                u"✗ It must stay."_s }));
        QCOMPARE(fixture.model->reclaims().ledger().items(), std::vector<TrashedItem>{ row });
        QCOMPARE(fixture.model->reclaims().reclaimedSoFar(), qint64(2048));
        QVERIFY(!fixture.model->reclaims().freeNowOffer());
        QCOMPARE(fixture.model->scans().phase().kind, Phase::Kind::ready);
    }

    void measuringTakesFoldersByScanAndFilesByLength()
    {
        Fixture fixture;
        fixture.tree.file("home/odd-length", 1234);
        fixture.tree.file("home/caf\xE9/file", 8192);
        QCOMPARE(fixture.model->reclaims().measure(fixture.path("odd-length")), qint64(1234));
        QCOMPARE(fixture.model->reclaims().measure(fixture.path(packages)), qint64(12288));
        QCOMPARE(fixture.model->reclaims().measure(fixture.path("caf\xE9")), qint64(8192));
        QCOMPARE(fixture.model->reclaims().measure(fixture.path("nothing")), qint64(0));
    }

    void safetyNetIsAskedOffTheMainThread()
    {
        Fixture fixture;
        fixture.backups.backups = { .localSnapshots = 3 };
        QSignalSpy nets(&fixture.model->reclaims(), &ReclaimDriver::safetyNetChanged);
        QVERIFY(!fixture.model->reclaims().safetyNet());
        fixture.model->reclaims().refreshSafetyNet();
        QVERIFY(!fixture.model->reclaims().safetyNet());
        QTRY_COMPARE(nets.count(), 1);
        QCOMPARE(fixture.model->reclaims().safetyNet(), std::optional(SafetyNet{ .localSnapshotCount = 3 }));
    }
};

QUILLBROOK_SUITE(TestReclaimDriver, QCoreApplication)
#include "tst_ReclaimDriver.moc"
