// What removes things and proves what it achieved, on real files in a temporary home folder.

#include "Catalogue/StorageItem.h"
#include "Support/HomeOnDisk.h"
#include "Support/Suite.h"

#include <QSemaphore>
#include <QSignalSpy>

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
        QCOMPARE(fixture.model->books().ledger().items().size(), size_t(2));
        QCOMPARE(
            fixture.model->books().ledger().pending(), (TrashLedger::Pending{ .count = 2, .bytes = 12288 }));
        QCOMPARE(fixture.model->reclaims().freeNowOffer(), std::optional<qint64>(12288));
        QCOMPARE(fixture.scans(), 2);
        fixture.settled();
        QCOMPARE(fixture.model->scans().report()->findings.size(), 1);
    }

    void logNamesEachFindingAndItsFate()
    {
        const Fixture fixture;
        // A screen makes all of its list anew each time that it hears of the log.
        const QSignalSpy changes(&fixture.model->reclaims(), &ReclaimDriver::reclaimLogChanged);
        fixture.model->reclaims().reclaim({ fixture.finding(packages), fixture.finding(logs) }, false);
        fixture.removed();
        QCOMPARE(changes.count(), 1);
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
        QVERIFY(fixture.model->books().ledger().items().empty());
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
        QCOMPARE(fixture.model->books().reclaimedSoFar(), qint64(12288));
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
        QVERIFY(fixture.model->books().ledger().items().empty());
        QCOMPARE(fixture.model->books().reclaimedSoFar(), qint64(0));
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

    void ledgerSurvivesARestartAndTheLogsDoNot()
    {
        Fixture fixture;
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        fixture.settled();
        fixture.start();
        QCOMPARE(fixture.model->books().ledger().pendingCount(), qsizetype(2));
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
        const QSignalSpy changes(&fixture.model->reclaims(), &ReclaimDriver::reclaimLogChanged);
        fixture.model->reclaims().removeItems(items, fixture.finding(packages));
        fixture.removed();
        QCOMPARE(changes.count(), 1);
        QVERIFY(fixture.isTrashed("one"));
        QVERIFY(fixture.isTrashed("two"));
        QCOMPARE(fixture.model->reclaims().reclaimLog(),
            QStringList({ u"✓ one — 4.0 KB to Trash"_s, u"✓ two — 8.0 KB to Trash"_s }));
        const auto &rows = fixture.model->books().ledger().items();
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
        QCOMPARE(fixture.model->books().reclaimedSoFar(), qint64(0));
    }

    void thingsArePutBackAndOthersStay()
    {
        const Fixture fixture;
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        fixture.settled();
        const auto held = fixture.model->books().held();
        QCOMPARE(held.size(), size_t(2));
        // Nothing is replaced.
        fixture.tree.file("home/.npm/_cacache/two", 1);
        const auto isFirst = held.front().item.originalPath.ends_with("one");
        const auto &one = held.at(isFirst ? 0 : 1).item;
        const QSignalSpy changes(&fixture.model->reclaims(), &ReclaimDriver::reclaimLogChanged);
        fixture.model->reclaims().putBack();
        fixture.settled();
        QCOMPARE(changes.count(), 1);
        QVERIFY(fixture.has(".npm/_cacache/one"));
        QVERIFY(fixture.isTrashed("two"));
        QCOMPARE(std::filesystem::file_size(fixture.path(".npm/_cacache/two")), size_t(1));
        QCOMPARE(fixture.model->books().pending().count, qsizetype(1));
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
        const auto kept = fixture.model->books().held().front().item;
        fixture.model->books().toggleKept(kept.id);
        fixture.model->reclaims().finishRemoving();
        fixture.settled();
        QCOMPARE(fixture.model->books().ledger().items(), std::vector<TrashedItem>{ kept });
        QVERIFY(std::filesystem::exists(kept.trashPath));
    }

    void whatFailedInPartCanBePutBackAndNothingElse()
    {
        const Fixture fixture("home/.npm/_cacache/data");
        std::filesystem::create_directories(fixture.trashFolder + "/files");
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        fixture.settled();
        QCOMPARE(fixture.model->books().pending(), TrashLedger::Pending());
        const auto held = fixture.model->books().held();
        QVERIFY(!held.empty());
        for (const auto &each : held)
            QVERIFY(each.isOnlyInJournal);
        fixture.model->reclaims().finishRemoving();
        fixture.settled();
        QVERIFY(fixture.isTrashed("one"));
        fixture.model->reclaims().putBack();
        fixture.settled();
        QVERIFY(fixture.has(".npm/_cacache/one"));
        QVERIFY(fixture.model->books().held().empty());
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
        QVERIFY(!fixture.model->books().ledger().items().empty());
        for (const auto &row : fixture.model->books().ledger().items())
            QCOMPARE(row.byRule, std::optional(true));
        // Each is known once.
        QCOMPARE(fixture.model->books().held().size(), fixture.model->books().ledger().items().size());
        QCOMPARE(fixture.model->books().reclaimedSoFar(), qint64(0));
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
        QVERIFY(fixture.model->books().ledger().items().empty());
        QCOMPARE(fixture.model->reclaims().reclaimLog().last(),
            u"✓ permanently removed 1 items · 4.0 KB actually freed"_s);
        fixture.settled();
        QCOMPARE(fixture.model->reclaims().lastVerification(), verified);
    }

    // A row whose thing has left the Trash stays, one whose name was given to something else is forgotten.
    void finishingForgetsRowsOfExchangedThings()
    {
        const Fixture fixture;
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        fixture.settled();
        std::filesystem::remove(fixture.trashed("one"));
        std::filesystem::rename(fixture.trashed("two"), fixture.path("two"));
        fixture.tree.file("data/Trash/files/two", 1);
        fixture.model->reclaims().finishRemoving();
        fixture.settled();
        QVERIFY(fixture.isTrashed("two"));
        const auto &rows = fixture.model->books().ledger().items();
        QCOMPARE(rows.size(), size_t(1));
        QVERIFY(rows.front().originalPath.ends_with("one"));
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
