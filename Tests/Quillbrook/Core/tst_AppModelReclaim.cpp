// What removes things and proves what it achieved, on real files in a temporary home folder.

#include "Catalogue/StorageItem.h"
#include "Support/HomeOnDisk.h"

#include <QSignalSpy>

#include <limits>

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

class AppModelReclaimTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findingsGoToTheTrashAndOntoTheLedger();
    void logNamesEachFindingAndItsFate();
    void permanentRemovalLeavesNothingAndOffersNothing();
    void claimIsHeldAgainstTheVolumeAfterTheRescan();
    void spaceThatComesBackIsMeasured();
    void cancelledRescanLeavesTheClaimForTheNext();
    void secondReclaimDuringAScanReplacesTheClaim();
    void reclaimOfNothingRescansAndOffersNothing();
    void failedFindingIsToldAndNotCounted();
    void partlyFailedFindingStaysUnknownToTheLedger();
    void linkAmongTheContentsGoesAsALink();
    void runningTotalSurvivesARestart();
    void damagedTotalIsTakenForWhatItCanBe();
    void ledgerSurvivesARestartAndTheLogsDoNot();
    void itemsGoToTheTrashOneByOne();
    void itemsOfShownFindingsStay();
    void blockedItemsChangeNothing();
    void vanishedItemIsToldAndTheRestGoes();
    void selectedFileGoesToTheTrash();
    void selectedFileGoesForGood();
    void refusedSelectionStaysAndSaysWhy();
    void vanishedSelectionIsTold();
    void withoutASelectionNothingIsRemoved();
    void oddNamesGoLikeAnyOther_data();
    void oddNamesGoLikeAnyOther();
    void linkGoesAsALink();
    void linesOfASelectionGoFirstAndOthersLast();
    void finishingRemovesOnlyWhatWeMoved();
    void finishingWithAnEmptyLedgerLogsNothingAndRescans();
    void offerStandsUntilItIsCleared();
    void removalsOfOthersAreTakenOver();
    void measuringTakesFoldersByScanAndFilesByLength();
    void safetyNetIsAskedOffTheMainThread();
};

void AppModelReclaimTest::findingsGoToTheTrashAndOntoTheLedger()
{
    const Fixture fixture;
    fixture.model->reclaim({ fixture.finding(packages) }, false);
    QVERIFY(fixture.has(packages));
    QVERIFY(!fixture.has(".npm/_cacache/one"));
    QVERIFY(fixture.isTrashed("one"));
    QVERIFY(fixture.isTrashed("two"));
    QVERIFY(fixture.has(".gradle/daemon/log"));
    QCOMPARE(fixture.model->ledger().items().size(), size_t(2));
    QCOMPARE(fixture.model->ledger().pending(), (TrashLedger::Pending{ .count = 2, .bytes = 12288 }));
    QCOMPARE(fixture.model->freeNowOffer(), std::optional<qint64>(12288));
    QCOMPARE(fixture.model->phase().kind, Phase::Kind::scanning);
    fixture.settled();
    QCOMPARE(fixture.model->report()->findings.size(), 1);
}

void AppModelReclaimTest::logNamesEachFindingAndItsFate()
{
    const Fixture fixture;
    fixture.model->reclaim({ fixture.finding(packages), fixture.finding(logs) }, false);
    QCOMPARE(fixture.model->reclaimLog(),
        QStringList({ u"✓ Downloaded code packages — 12.0 KB to Trash"_s,
            u"✓ Android build logs — 4.0 KB to Trash"_s }));
    fixture.settled();
}

void AppModelReclaimTest::permanentRemovalLeavesNothingAndOffersNothing()
{
    const Fixture fixture;
    fixture.model->reclaim({ fixture.finding(logs) }, true);
    QVERIFY(!fixture.has(".gradle/daemon/log"));
    QVERIFY(!fixture.isTrashed("log"));
    QVERIFY(fixture.model->ledger().items().empty());
    QVERIFY(!fixture.model->freeNowOffer());
    QCOMPARE(fixture.model->reclaimLog(), QStringList{ u"✓ Android build logs — 4.0 KB deleted"_s });
    fixture.settled();
}

void AppModelReclaimTest::claimIsHeldAgainstTheVolumeAfterTheRescan()
{
    Fixture fixture;
    fixture.volumes.answer->available = 500'000;
    fixture.model->reclaim({ fixture.finding(packages) }, false);
    QVERIFY(!fixture.model->lastVerification());
    fixture.volumes.answer->available = 500'100;
    fixture.settled();
    QCOMPARE(fixture.model->lastVerification(),
        std::optional(Verification{ .claimedBytes = 12288, .freeBefore = 500'000, .freeAfter = 500'100 }));
    QVERIFY(!fixture.model->lastVerification()->isGood());
    fixture.model->dismissVerification();
    QVERIFY(!fixture.model->lastVerification());
}

void AppModelReclaimTest::spaceThatComesBackIsMeasured()
{
    Fixture fixture;
    fixture.model->reclaim({ fixture.finding(packages) }, true);
    fixture.volumes.answer->available = 1'012'288;
    fixture.settled();
    QVERIFY(fixture.model->lastVerification()->isGood());
    // A scan that nothing was claimed before measures nothing.
    const auto verified = fixture.model->lastVerification();
    fixture.volumes.answer->available = 1'012'293;
    fixture.scan();
    QCOMPARE(fixture.model->lastVerification(), verified);
}

void AppModelReclaimTest::cancelledRescanLeavesTheClaimForTheNext()
{
    const Fixture fixture;
    fixture.model->reclaim({ fixture.finding(logs) }, false);
    fixture.model->cancelScan();
    QVERIFY(!fixture.model->lastVerification());
    fixture.scan();
    QVERIFY(fixture.model->lastVerification());
    QCOMPARE(fixture.model->lastVerification()->claimedBytes, qint64(4096));
}

void AppModelReclaimTest::secondReclaimDuringAScanReplacesTheClaim()
{
    Fixture fixture;
    const auto second = fixture.finding(logs);
    fixture.volumes.answer->available = 500'000;
    fixture.model->reclaim({ fixture.finding(packages) }, false);
    QCOMPARE(fixture.model->phase().kind, Phase::Kind::scanning);
    fixture.volumes.answer->available = 600'000;
    fixture.model->reclaim({ second }, false);
    fixture.settled();
    QCOMPARE(fixture.model->lastVerification()->claimedBytes, qint64(4096));
    QCOMPARE(fixture.model->lastVerification()->freeBefore, qint64(600'000));
}

void AppModelReclaimTest::reclaimOfNothingRescansAndOffersNothing()
{
    const Fixture fixture;
    fixture.model->reclaim({}, false);
    QVERIFY(!fixture.model->freeNowOffer());
    QVERIFY(fixture.model->reclaimLog().isEmpty());
    QCOMPARE(fixture.model->phase().kind, Phase::Kind::scanning);
    fixture.settled();
    QCOMPARE(fixture.model->lastVerification()->claimedBytes, qint64(0));
}

void AppModelReclaimTest::failedFindingIsToldAndNotCounted()
{
    const Fixture fixture;
    auto shown = fixture.finding(logs);
    shown.rule.safety = Safety::reportOnly;
    fixture.model->reclaim({ shown, fixture.finding(packages) }, false);
    QVERIFY(fixture.has(".gradle/daemon/log"));
    QCOMPARE(fixture.model->reclaimLog().size(), 2);
    QVERIFY(fixture.model->reclaimLog().first().startsWith(u"✗ Android build logs: "_s));
    QCOMPARE(fixture.model->reclaimedSoFar(), qint64(12288));
    QCOMPARE(fixture.model->freeNowOffer(), std::optional<qint64>(12288));
    fixture.settled();
}

void AppModelReclaimTest::partlyFailedFindingStaysUnknownToTheLedger()
{
    // The Trash itself lies among the packages, and a folder that holds it never goes into it.
    const Fixture fixture("home/.npm/_cacache/data");
    std::filesystem::create_directories(fixture.trashFolder + "/files");
    fixture.model->reclaim({ fixture.finding(packages) }, false);
    QVERIFY(!fixture.has(".npm/_cacache/one"));
    QVERIFY(fixture.isTrashed("one"));
    QCOMPARE(fixture.model->reclaimLog().size(), 1);
    QVERIFY(fixture.model->reclaimLog().first().startsWith(u"✗ Downloaded code packages: "_s));
    QVERIFY(fixture.model->ledger().items().empty());
    QCOMPARE(fixture.model->reclaimedSoFar(), qint64(0));
    QVERIFY(!fixture.model->freeNowOffer());
    fixture.settled();
    QCOMPARE(fixture.model->lastVerification()->claimedBytes, qint64(0));
}

void AppModelReclaimTest::linkAmongTheContentsGoesAsALink()
{
    Fixture fixture;
    fixture.tree.link("home/.npm/_cacache/link", fixture.path("notes.txt"));
    fixture.model->reclaim({ fixture.finding(packages) }, true);
    QVERIFY(!fixture.has(".npm/_cacache/link"));
    QVERIFY(fixture.has("notes.txt"));
    fixture.settled();
}

void AppModelReclaimTest::runningTotalSurvivesARestart()
{
    Fixture fixture;
    QSignalSpy totals(fixture.model.get(), &AppModel::reclaimedSoFarChanged);
    fixture.model->reclaim({ fixture.finding(packages) }, false);
    QCOMPARE(totals.count(), 1);
    fixture.settled();
    QCOMPARE(fixture.defaults.integer(u"Quillbrook.reclaimedBytes"_s), std::optional<qint64>(12288));
    fixture.start();
    QCOMPARE(fixture.model->reclaimedSoFar(), qint64(12288));
}

void AppModelReclaimTest::damagedTotalIsTakenForWhatItCanBe()
{
    const auto key = u"Quillbrook.reclaimedBytes"_s;
    constexpr auto most = std::numeric_limits<qint64>::max();
    Fixture fixture;
    fixture.defaults.setInteger(key, most - 1);
    fixture.start();
    fixture.scan();
    fixture.model->reclaim({ fixture.finding(logs) }, false);
    QCOMPARE(fixture.model->reclaimedSoFar(), most);
    fixture.settled();
    fixture.defaults.setInteger(key, -5);
    fixture.start();
    QCOMPARE(fixture.model->reclaimedSoFar(), qint64(0));
}

void AppModelReclaimTest::ledgerSurvivesARestartAndTheLogsDoNot()
{
    Fixture fixture;
    fixture.model->reclaim({ fixture.finding(packages) }, false);
    fixture.settled();
    fixture.start();
    QCOMPARE(fixture.model->ledger().pendingCount(), qsizetype(2));
    QVERIFY(fixture.model->reclaimLog().isEmpty());
    QVERIFY(!fixture.model->lastVerification());
    fixture.scan();
    fixture.model->finishRemoving();
    QVERIFY(!fixture.isTrashed("one"));
    fixture.settled();
}

void AppModelReclaimTest::itemsGoToTheTrashOneByOne()
{
    const Fixture fixture;
    const QList<StorageItem> items{
        { .name = "one", .bytes = 4096, .rawPath = fixture.path(".npm/_cacache/one") },
        { .name = "two", .bytes = 8192, .rawPath = fixture.path(".npm/_cacache/two") }
    };
    fixture.model->removeItems(items, fixture.finding(packages));
    QVERIFY(fixture.isTrashed("one"));
    QVERIFY(fixture.isTrashed("two"));
    QCOMPARE(fixture.model->reclaimLog(),
        QStringList({ u"✓ one — 4.0 KB to Trash"_s, u"✓ two — 8.0 KB to Trash"_s }));
    const auto &rows = fixture.model->ledger().items();
    QCOMPARE(rows.size(), size_t(2));
    QCOMPARE(rows.front().label, u"one"_s);
    QCOMPARE(rows.front().originalPath, fixture.path(".npm/_cacache/one"));
    QVERIFY(!rows.front().byRule);
    QCOMPARE(fixture.model->freeNowOffer(), std::optional<qint64>(12288));
    QCOMPARE(fixture.model->phase().kind, Phase::Kind::scanning);
    fixture.settled();
    QVERIFY(!fixture.model->lastVerification());
}

void AppModelReclaimTest::itemsOfShownFindingsStay()
{
    const Fixture fixture;
    auto shown = fixture.finding(packages);
    shown.rule.safety = Safety::reportOnly;
    fixture.model->removeItems(
        { { .name = "one", .bytes = 1, .rawPath = fixture.path(".npm/_cacache/one") } }, shown);
    QVERIFY(fixture.has(".npm/_cacache/one"));
    QVERIFY(fixture.model->reclaimLog().isEmpty());
    QCOMPARE(fixture.model->phase().kind, Phase::Kind::ready);
}

void AppModelReclaimTest::blockedItemsChangeNothing()
{
    const Fixture fixture;
    fixture.model->removeItems({ { .name = "one",
                                   .bytes = 1,
                                   .removable = false,
                                   .blockedReason = "It runs.",
                                   .rawPath = fixture.path(".npm/_cacache/one") } },
        fixture.finding(packages));
    QVERIFY(fixture.has(".npm/_cacache/one"));
    QVERIFY(fixture.model->reclaimLog().isEmpty());
    QVERIFY(!fixture.model->freeNowOffer());
    QCOMPARE(fixture.model->phase().kind, Phase::Kind::ready);
}

void AppModelReclaimTest::vanishedItemIsToldAndTheRestGoes()
{
    const Fixture fixture;
    fixture.model->removeItems(
        { { .name = "gone", .bytes = 1, .rawPath = fixture.path(".npm/_cacache/gone") },
            { .name = "one", .bytes = 4096, .rawPath = fixture.path(".npm/_cacache/one") } },
        fixture.finding(packages));
    QCOMPARE(fixture.model->reclaimLog().size(), 2);
    QVERIFY(fixture.model->reclaimLog().first().startsWith(u"✗ gone: "_s));
    QVERIFY(fixture.isTrashed("one"));
    QCOMPARE(fixture.model->freeNowOffer(), std::optional<qint64>(4096));
    fixture.settled();
}

void AppModelReclaimTest::selectedFileGoesToTheTrash()
{
    const Fixture fixture;
    fixture.model->setSelection(fixture.node("notes.txt"));
    fixture.model->removeSelected(false);
    QVERIFY(!fixture.has("notes.txt"));
    QVERIFY(fixture.isTrashed("notes.txt"));
    QVERIFY(!fixture.model->selection());
    QCOMPARE(fixture.model->reclaimLog(), QStringList{ u"✓ notes.txt — 4.0 KB moved to the Trash"_s });
    QCOMPARE(fixture.model->reclaimedSoFar(), qint64(4096));
    QCOMPARE(fixture.model->ledger().pendingCount(), qsizetype(1));
    // No rescan: the tree shows it until the next one.
    QCOMPARE(fixture.model->phase().kind, Phase::Kind::ready);
    QVERIFY(fixture.node("notes.txt"));
    QVERIFY(!fixture.model->freeNowOffer());
}

void AppModelReclaimTest::selectedFileGoesForGood()
{
    const Fixture fixture;
    fixture.model->setSelection(fixture.node("notes.txt"));
    fixture.model->removeSelected(true);
    QVERIFY(!fixture.has("notes.txt"));
    QVERIFY(!fixture.isTrashed("notes.txt"));
    QVERIFY(fixture.model->ledger().items().empty());
    QCOMPARE(fixture.model->reclaimLog(), QStringList{ u"✓ notes.txt — 4.0 KB removed"_s });
}

void AppModelReclaimTest::refusedSelectionStaysAndSaysWhy()
{
    const Fixture fixture;
    const auto home = fixture.model->tree()->snapshot(fixture.model->rootNode());
    fixture.model->setSelection(home);
    const auto refusal = fixture.model->guardedPath(*home)();
    QVERIFY(refusal);
    for (const bool permanent : { false, true })
        fixture.model->removeSelected(permanent);
    QVERIFY(fixture.has("notes.txt"));
    QCOMPARE(fixture.model->selection(), home);
    QCOMPARE(fixture.model->reclaimLog(), QStringList({ "✗ " + *refusal, "✗ " + *refusal }));
    QCOMPARE(fixture.model->reclaimedSoFar(), qint64(0));
}

void AppModelReclaimTest::vanishedSelectionIsTold()
{
    const Fixture fixture;
    fixture.model->setSelection(fixture.node("notes.txt"));
    std::filesystem::remove(fixture.path("notes.txt"));
    fixture.model->removeSelected(false);
    QCOMPARE(fixture.model->reclaimLog().size(), 1);
    QVERIFY(fixture.model->reclaimLog().first().startsWith(u"✗ "_s));
    QVERIFY(fixture.model->selection());
    QVERIFY(fixture.model->ledger().items().empty());
}

void AppModelReclaimTest::withoutASelectionNothingIsRemoved()
{
    const Fixture fixture;
    fixture.model->removeSelected(true);
    QVERIFY(fixture.has("notes.txt"));
    QVERIFY(fixture.model->reclaimLog().isEmpty());
}

void AppModelReclaimTest::oddNamesGoLikeAnyOther_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("not UTF-8") << QByteArray("caf\xe9 100%.bin");
    QTest::newRow("a line feed") << QByteArray("two\nlines");
    QTest::newRow("as long as names get") << QByteArray(255, 'x');
}

void AppModelReclaimTest::oddNamesGoLikeAnyOther()
{
    QFETCH(QByteArray, name);
    Fixture fixture;
    const auto raw = name.toStdString();
    fixture.tree.file("home/odd/" + raw, 4096);
    fixture.tree.file("home/odd/other", 8192);
    fixture.scan();
    const auto folder
        = fixture.model->tree()->find(QString::fromStdString(fixture.path("odd")), fixture.model->rootNode());
    for (const auto node : fixture.model->tree()->children(folder))
        if (fixture.model->tree()->rawPath(node) == fixture.path("odd/" + raw))
            fixture.model->setSelection(fixture.model->tree()->snapshot(node));
    QVERIFY(fixture.model->selection());
    fixture.model->removeSelected(false);
    QVERIFY(!fixture.has("odd/" + raw));
    QVERIFY(fixture.has("odd/other"));
    QCOMPARE(fixture.model->ledger().items().size(), size_t(1));
    QCOMPARE(fixture.model->ledger().items().front().originalPath, fixture.path("odd/" + raw));
    fixture.start();
    QCOMPARE(fixture.model->ledger().pendingCount(), qsizetype(1));
    fixture.model->finishRemoving();
    QCOMPARE(fixture.model->ledger().pendingCount(), qsizetype(0));
    QVERIFY(!std::filesystem::exists(fixture.trashFolder + "/files")
        || std::filesystem::is_empty(fixture.trashFolder + "/files"));
    fixture.settled();
}

void AppModelReclaimTest::linkGoesAsALink()
{
    Fixture fixture;
    fixture.tree.link("home/to-notes", fixture.path("notes.txt"));
    fixture.scan();
    fixture.model->setSelection(fixture.node("to-notes"));
    QVERIFY(fixture.model->selection());
    fixture.model->removeSelected(true);
    QVERIFY(!fixture.has("to-notes"));
    QVERIFY(fixture.has("notes.txt"));
}

void AppModelReclaimTest::linesOfASelectionGoFirstAndOthersLast()
{
    const Fixture fixture;
    fixture.model->reclaim({ fixture.finding(logs) }, false);
    fixture.settled();
    fixture.model->setSelection(fixture.node("notes.txt"));
    fixture.model->removeSelected(false);
    fixture.model->finishRemoving();
    fixture.settled();
    QCOMPARE(fixture.model->reclaimLog(),
        QStringList(
            { u"✓ notes.txt — 4.0 KB moved to the Trash"_s, u"✓ Android build logs — 4.0 KB to Trash"_s,
                u"✓ permanently removed 2 items · 8.0 KB actually freed"_s }));
}

void AppModelReclaimTest::finishingRemovesOnlyWhatWeMoved()
{
    Fixture fixture;
    QVERIFY(fixture.disk.trash.move(fixture.path("notes.txt")).has_value());
    fixture.model->reclaim({ fixture.finding(logs) }, false);
    fixture.settled();
    const auto verified = fixture.model->lastVerification();
    fixture.model->finishRemoving();
    QVERIFY(fixture.isTrashed("notes.txt"));
    QVERIFY(!fixture.isTrashed("log"));
    QVERIFY(fixture.model->ledger().items().empty());
    QCOMPARE(fixture.model->reclaimLog().last(), u"✓ permanently removed 1 items · 4.0 KB actually freed"_s);
    fixture.settled();
    QCOMPARE(fixture.model->lastVerification(), verified);
}

void AppModelReclaimTest::finishingWithAnEmptyLedgerLogsNothingAndRescans()
{
    const Fixture fixture;
    fixture.model->finishRemoving();
    QVERIFY(fixture.model->reclaimLog().isEmpty());
    QCOMPARE(fixture.model->phase().kind, Phase::Kind::scanning);
    fixture.settled();
}

void AppModelReclaimTest::offerStandsUntilItIsCleared()
{
    const Fixture fixture;
    QSignalSpy offers(fixture.model.get(), &AppModel::freeNowOfferChanged);
    fixture.model->reclaim({ fixture.finding(logs) }, false);
    fixture.settled();
    QVERIFY(fixture.model->freeNowOffer());
    fixture.model->clearFreeNowOffer();
    fixture.model->clearFreeNowOffer();
    QVERIFY(!fixture.model->freeNowOffer());
    QCOMPARE(offers.count(), 2);
}

void AppModelReclaimTest::removalsOfOthersAreTakenOver()
{
    const Fixture fixture;
    const TrashedItem row
        = TrashedItem::moved({ .label = "an app", .originalPath = "/a", .trashPath = "/b", .bytes = 7 });
    fixture.model->absorb(
        { { .path = "/a", .bytes = 2048, .trashed = row }, { .path = "/c", .error = u"It must stay."_s } },
        u"Editor"_s);
    QCOMPARE(fixture.model->uninstallLog(),
        QStringList({ u"✓ Editor — 2.0 KB moved to the Trash. The space comes back when the Trash is "
                      "emptied."_s,
            u"✗ It must stay."_s }));
    QCOMPARE(fixture.model->ledger().items(), std::vector<TrashedItem>{ row });
    QCOMPARE(fixture.model->reclaimedSoFar(), qint64(2048));
    QVERIFY(!fixture.model->freeNowOffer());
    QCOMPARE(fixture.model->phase().kind, Phase::Kind::ready);
}

void AppModelReclaimTest::measuringTakesFoldersByScanAndFilesByLength()
{
    Fixture fixture;
    fixture.tree.file("home/odd-length", 1234);
    fixture.tree.file("home/caf\xE9/file", 8192);
    QCOMPARE(fixture.model->measure(fixture.path("odd-length")), qint64(1234));
    QCOMPARE(fixture.model->measure(fixture.path(packages)), qint64(12288));
    QCOMPARE(fixture.model->measure(fixture.path("caf\xE9")), qint64(8192));
    QCOMPARE(fixture.model->measure(fixture.path("nothing")), qint64(0));
}

void AppModelReclaimTest::safetyNetIsAskedOffTheMainThread()
{
    Fixture fixture;
    fixture.backups.backups = { .localSnapshots = 3 };
    QSignalSpy nets(fixture.model.get(), &AppModel::safetyNetChanged);
    QVERIFY(!fixture.model->safetyNet());
    fixture.model->refreshSafetyNet();
    QVERIFY(!fixture.model->safetyNet());
    QTRY_COMPARE(nets.count(), 1);
    QCOMPARE(fixture.model->safetyNet(), std::optional(SafetyNet{ .localSnapshotCount = 3 }));
}

QTEST_GUILESS_MAIN(AppModelReclaimTest)
#include "tst_AppModelReclaim.moc"
