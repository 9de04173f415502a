#include "Screens/Warden/WardenRows.h"
#include "Screens/Warden/WardenState.h"
#include "Support/HomeOnDisk.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using Kind = WardenLines::Kind;

namespace {

// A home folder with two findings that come back by themselves, one that costs something, one that is only
// shown.
struct Fixture : ScannedHome
{
    Fixture()
    {
        addPlace(".gradle/daemon", 30);
        addPlace(".npm/_cacache", 50);
        addPlace(".pub-cache", 70);
        addPlace("Downloads", 90);
    }

    /// The list's row of a finding, by its title.
    [[nodiscard]] int row(const QString &title) const
    {
        const auto &rows = warden.rows()->rows();
        for (int row = 0; row < rows.size(); ++row)
            if (rows.at(row).kind == Kind::Finding && rows.at(row).title == title)
                return row;
        return -1;
    }
    [[nodiscard]] const WardenRow &line(const QString &title) const
    {
        return warden.rows()->rows().at(row(title));
    }
    [[nodiscard]] QStringList chosenTitles() const
    {
        QStringList titles;
        for (const auto &finding : warden.chosenFindings())
            titles.append(finding.displayTitle());
        return titles;
    }

    mutable WardenState warden{ model };
    const QString logs = u"Android build logs"_s;
    const QString packages = u"Downloaded code packages"_s;
};

// Real files: packages that come back by themselves, and libraries that cost something.
struct DiskFixture : HomeOnDisk
{
    DiskFixture()
    {
        tree.file("home/.npm/_cacache/one", 8192);
        tree.file("home/.gradle/daemon/log", 4096);
        tree.file("home/.pub-cache/library", 4096);
        scan();
        warden.setShown(true);
    }

    /// The line of a banner, by its id.
    [[nodiscard]] int banner(QLatin1String id) const
    {
        const auto &rows = warden.rows()->rows();
        for (int row = 0; row < rows.size(); ++row)
            if (rows.at(row).id == id)
                return row;
        return -1;
    }

    mutable WardenState warden{ *model };
};

} // namespace

class TestWardenState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutAReportThereIsNothing()
    {
        const Fixture fixture;
        QCOMPARE(fixture.warden.total(), u"0 B selected"_s);
        QCOMPARE(fixture.warden.counts(), u"0 of 0 reclaimable items"_s);
        QVERIFY(fixture.warden.chosenFindings().isEmpty());
        QVERIFY(!fixture.warden.canReclaim());
        for (const auto &row : fixture.warden.rows()->rows())
            QCOMPARE(row.kind, Kind::Banner);
    }

    void newFindingsArriveTicked()
    {
        Fixture fixture;
        fixture.scan();
        QCOMPARE(fixture.chosenTitles(), QStringList({ fixture.packages, fixture.logs }));
        QCOMPARE(fixture.warden.total(), u"80.0 MB selected"_s);
        QCOMPARE(fixture.warden.counts(), u"2 of 3 reclaimable items"_s);
        QVERIFY(fixture.line(fixture.packages).ticked);
    }

    void carefulOnesWaitForTheirTick()
    {
        Fixture fixture;
        fixture.scan();
        int careful = 0;
        for (int row = 0; row < fixture.warden.rows()->rowCount(); ++row) {
            const auto &line = fixture.warden.rows()->rows().at(row);
            if (line.kind != Kind::Finding || line.size != "70.0 MB")
                continue;
            ++careful;
            QVERIFY(line.selectable);
            QVERIFY(!line.ticked);
            fixture.warden.toggle(row);
            QCOMPARE(fixture.warden.total(), u"150 MB selected"_s);
            QCOMPARE(fixture.warden.counts(), u"3 of 3 reclaimable items"_s);
        }
        QCOMPARE(careful, 1);
    }

    void reportOnlyOnesNeverCount()
    {
        Fixture fixture;
        fixture.scan();
        const auto row = static_cast<int>(fixture.warden.rows()->rowCount() - 1);
        QCOMPARE(fixture.warden.rows()->rows().at(row).size, u"90.0 MB"_s);
        QVERIFY(!fixture.warden.rows()->rows().at(row).selectable);
        fixture.warden.toggle(row);
        QCOMPARE(fixture.warden.total(), u"80.0 MB selected"_s);
        QVERIFY(!fixture.warden.touched());
    }

    void tickingChangesTheSum()
    {
        Fixture fixture;
        fixture.scan();
        QSignalSpy changes(&fixture.warden, &WardenState::selectionChanged);
        fixture.warden.toggle(fixture.row(fixture.packages));
        QCOMPARE(changes.count(), 1);
        QVERIFY(fixture.warden.touched());
        QVERIFY(!fixture.line(fixture.packages).ticked);
        QCOMPARE(fixture.warden.total(), u"30.0 MB selected"_s);
        fixture.warden.toggle(fixture.row(fixture.packages));
        QVERIFY(fixture.line(fixture.packages).ticked);
        QCOMPARE(fixture.warden.total(), u"80.0 MB selected"_s);
    }

    void ticksOfThePersonsOwnStandThroughARescan()
    {
        Fixture fixture;
        fixture.scan();
        fixture.warden.toggle(fixture.row(fixture.packages));
        fixture.scan();
        QCOMPARE(fixture.chosenTitles(), QStringList{ fixture.logs });
    }

    void untouchedTicksFollowARescan()
    {
        Fixture fixture;
        fixture.scan();
        fixture.addPlace(".cache/none", 1);
        fixture.addPlace("Library/Caches/pip", 10);
        fixture.scan();
        QCOMPARE(fixture.warden.chosenFindings().size(), 3);
    }

    void appearingTicksTheDefaultsAgain()
    {
        Fixture fixture;
        fixture.scan();
        fixture.warden.toggle(fixture.row(fixture.packages));
        fixture.warden.setShown(false);
        fixture.warden.setShown(true);
        QCOMPARE(fixture.chosenTitles(), QStringList({ fixture.packages, fixture.logs }));
        QVERIFY(fixture.warden.touched());
    }

    void idsOfNothingAreIgnored()
    {
        Fixture fixture;
        fixture.scan();
        fixture.warden.toggle(fixture.row(fixture.packages));
        fixture.warden.toggle(fixture.row(fixture.packages));
        const auto ticked = fixture.warden.chosen();
        // What was ticked is gone from the disk.
        fixture.files.entries.erase(fixture.path(".npm/_cacache"));
        fixture.directories.folder(fixture.path(".npm/_cacache"), {});
        fixture.scan();
        QCOMPARE(fixture.warden.chosen(), ticked);
        QCOMPARE(fixture.chosenTitles(), QStringList{ fixture.logs });
        QCOMPARE(fixture.warden.counts(), u"1 of 2 reclaimable items"_s);
    }

    void placeIsShownOnDemand()
    {
        Fixture fixture;
        fixture.scan();
        const auto row = fixture.row(fixture.logs);
        QVERIFY(!fixture.line(fixture.logs).pathShown);
        QCOMPARE(fixture.line(fixture.logs).path, u"~/.gradle/daemon"_s);
        fixture.warden.togglePath(row);
        QVERIFY(fixture.line(fixture.logs).pathShown);
        QVERIFY(!fixture.warden.touched());
        fixture.warden.togglePath(row);
        QVERIFY(!fixture.line(fixture.logs).pathShown);
    }

    void revealShowsTheFolder()
    {
        Fixture fixture;
        fixture.scan();
        fixture.warden.reveal(fixture.row(fixture.logs));
        fixture.warden.reveal(static_cast<int>(fixture.warden.rows()->rowCount() - 1));
        QCOMPARE(fixture.desktop.revealer.revealed,
            (std::vector<std::string>{ fixture.path(".gradle/daemon"), fixture.path("Downloads") }));
    }

    void revealShowsTheRawPath()
    {
        Fixture fixture;
        fixture.directories.folder("/caf\xE9", { FakeDirectories::aFolder(".npm") });
        fixture.directories.folder("/caf\xE9/.npm", { FakeDirectories::aFolder("_cacache") });
        fixture.directories.folder("/caf\xE9/.npm/_cacache", { FakeDirectories::aFile("f", 8192) });
        fixture.model.scans().setScanRoot("/caf\xE9");
        fixture.scan();
        fixture.warden.reveal(fixture.row(fixture.packages));
        QCOMPARE(fixture.desktop.revealer.revealed, std::vector<std::string>{ "/caf\xE9/.npm/_cacache" });
    }

    void rowsOutsideDoNothing()
    {
        Fixture fixture;
        fixture.scan();
        for (const int row : { -1, 0, fixture.warden.rows()->rowCount() }) {
            fixture.warden.toggle(row);
            fixture.warden.togglePath(row);
            fixture.warden.reveal(row);
        }
        QVERIFY(!fixture.warden.touched());
        QVERIFY(fixture.desktop.revealer.revealed.empty());
    }

    void offerStandsAsLongAsTheScopeIsQuiet()
    {
        Fixture fixture;
        QCOMPARE(fixture.warden.rows()->rows().first().kind, Kind::Banner);
        fixture.scan(Scope::quiet);
        QCOMPARE(fixture.warden.rows()->rows().first().kind, Kind::Banner);
        fixture.scan(Scope::complete);
        QCOMPARE(fixture.warden.rows()->rows().first().kind, Kind::Heading);
    }

    void offerScansEverything()
    {
        Fixture fixture;
        fixture.scan(Scope::quiet);
        fixture.warden.act(0);
        QCOMPARE(fixture.model.scans().phase().kind, Phase::Kind::scanning);
        QCOMPARE(fixture.model.scans().scope(), Scope::complete);
        QTRY_COMPARE(fixture.model.scans().phase().kind, Phase::Kind::ready);
    }

    void emptyDiskSaysSo()
    {
        ScannedHome home;
        const WardenState warden(home.model);
        home.scan();
        QCOMPARE(warden.emptyMessage(), u"Nothing to clear was found."_s);
        home.addPlace(".npm/_cacache", 50);
        home.scan();
        QCOMPARE(warden.emptyMessage(), QString());
    }

    void nothingTickedCannotBeReclaimed()
    {
        DiskFixture fixture;
        QVERIFY(fixture.warden.canReclaim());
        QSignalSpy asked(&fixture.warden, &WardenState::reclaimAsked);
        for (int row = 0; row < fixture.warden.rows()->rowCount(); ++row)
            if (fixture.warden.rows()->rows().at(row).ticked)
                fixture.warden.toggle(row);
        QVERIFY(!fixture.warden.canReclaim());
        fixture.warden.askToReclaim();
        fixture.warden.reclaim(true);
        fixture.settled();
        QCOMPARE(asked.count(), 0);
        QVERIFY(fixture.has(".npm/_cacache/one"));
    }

    void questionNamesSumAndCount()
    {
        DiskFixture fixture;
        QSignalSpy asked(&fixture.warden, &WardenState::reclaimAsked);
        fixture.warden.askToReclaim();
        QCOMPARE(asked.count(), 1);
        QCOMPARE(fixture.warden.confirmTitle(), u"Move 12.0 KB to the Trash?"_s);
        QCOMPARE(fixture.warden.confirmAction(), u"Move 2 items to Trash"_s);
        QCOMPARE(fixture.warden.confirmMessage(),
            u"Moving to the Trash is undoable, but it does not free the space until the Trash is emptied — "
            "Quillbrook will offer to finish the job."_s);
        QVERIFY(fixture.has(".npm/_cacache/one"));
    }

    void questionSaysWhenThereIsNoBackup()
    {
        DiskFixture fixture;
        fixture.backups.backups = {};
        fixture.model->reclaims().refreshSafetyNet();
        QTRY_VERIFY(fixture.model->reclaims().safetyNet());
        QVERIFY(fixture.warden.confirmMessage().endsWith(
            u"finish the job. This Mac has no backup, so deleting permanently is final."_s));
    }

    void answerMovesWhatIsTickedAndUnticksIt()
    {
        DiskFixture fixture;
        fixture.warden.askToReclaim();
        fixture.warden.reclaim(false);
        fixture.settled();
        QVERIFY(fixture.isTrashed("one"));
        QVERIFY(fixture.isTrashed("log"));
        QVERIFY(fixture.has(".pub-cache/library"));
        QVERIFY(fixture.warden.chosen().isEmpty());
        // The same answer again is no answer.
        fixture.warden.reclaim(true);
        fixture.settled();
        QVERIFY(fixture.isTrashed("one"));
        fixture.settled();
    }

    void answerDeletesForGood()
    {
        DiskFixture fixture;
        fixture.warden.askToReclaim();
        fixture.warden.reclaim(true);
        fixture.settled();
        QVERIFY(!fixture.has(".npm/_cacache/one"));
        QVERIFY(!fixture.isTrashed("one"));
        QVERIFY(fixture.has(".pub-cache/library"));
        fixture.settled();
    }

    void answerIsAboutWhatWasTickedWhenItWasAsked()
    {
        DiskFixture fixture;
        fixture.warden.askToReclaim();
        for (int row = 0; row < fixture.warden.rows()->rowCount(); ++row)
            fixture.warden.toggle(row);
        fixture.tree.file("home/.gradle/daemon/more", 65536);
        fixture.scan();
        QCOMPARE(fixture.warden.confirmTitle(), u"Move 12.0 KB to the Trash?"_s);
        fixture.warden.reclaim(false);
        fixture.settled();
        QVERIFY(fixture.isTrashed("one"));
        QVERIFY(fixture.has(".pub-cache/library"));
        fixture.settled();
    }

    void untouchedTicksComeBackAfterTheRescan()
    {
        DiskFixture fixture;
        fixture.tree.file("home/Library/Caches/pip/wheel", 4096);
        fixture.warden.askToReclaim();
        fixture.warden.reclaim(false);
        fixture.settled();
        QCOMPARE(fixture.warden.total(), u"4.0 KB selected"_s);
    }

    void touchedTicksStayEmptyAfterARemoval()
    {
        DiskFixture fixture;
        fixture.tree.file("home/Library/Caches/pip/wheel", 4096);
        for (int row = 0; row < fixture.warden.rows()->rowCount(); ++row)
            if (fixture.warden.rows()->rows().at(row).path == "~/.pub-cache")
                fixture.warden.toggle(row);
        QVERIFY(fixture.warden.touched());
        fixture.warden.askToReclaim();
        fixture.warden.reclaim(false);
        fixture.settled();
        QCOMPARE(fixture.warden.counts(), u"0 of 1 reclaimable items"_s);
    }

    void pendingTrashIsToldAndFinished()
    {
        DiskFixture fixture;
        QCOMPARE(fixture.banner(WardenRows::pendingTrashBanner), -1);
        fixture.warden.askToReclaim();
        fixture.warden.reclaim(false);
        fixture.settled();
        QSignalSpy asked(&fixture.warden, &WardenState::finishAsked);
        fixture.warden.act(fixture.banner(WardenRows::pendingTrashBanner), 1);
        QCOMPARE(asked.count(), 1);
        QCOMPARE(fixture.warden.finishTitle(), u"Permanently remove 12.0 KB?"_s);
        QVERIFY(fixture.isTrashed("one"));
        fixture.warden.finishRemoving();
        fixture.settled();
        QVERIFY(!fixture.isTrashed("one"));
        QCOMPARE(fixture.banner(WardenRows::pendingTrashBanner), -1);
        fixture.settled();
    }

    // After the move itself there is nothing else to tell of; after another start all of it is.
    void questionBeforeTheTrashGoesListsWhatLayThereBefore()
    {
        HomeOnDisk home;
        home.tree.file("home/.npm/_cacache/one", 8192);
        home.tree.file("home/.gradle/daemon/log", 4096);
        home.scan();
        home.model->reclaims().reclaim(
            { home.finding(".npm/_cacache"), home.finding(".gradle/daemon") }, false);
        home.settled();
        QCOMPARE(WardenState(*home.model).earlier()->text(), QString());
        home.start();
        WardenState warden(*home.model);
        auto &earlier = *warden.earlier();
        QCOMPARE(earlier.text(), u"2 items (12.0 KB) that Quillbrook moved there before go."_s);
        earlier.toggleRows();
        QVERIFY(earlier.rowsShown());
        QCOMPARE(earlier.rows()->at(0)->title, u"Android build logs · log"_s);
        QVERIFY(earlier.rows()->at(1)->last);
        earlier.toggle(1);
        QCOMPARE(earlier.text(), u"1 item (4.0 KB) that Quillbrook moved there before goes."_s);
        QCOMPARE(warden.finishTitle(), u"Permanently remove 4.0 KB?"_s);
        QVERIFY(warden.canFinish());
        earlier.toggle(0);
        QVERIFY(!warden.canFinish());
        earlier.toggle(0);
        warden.finishRemoving();
        home.settled();
        QVERIFY(home.isTrashed("one"));
        QVERIFY(!home.isTrashed("log"));
    }

    void whatIsTickedInTheTrashIsPutBackOrDeleted()
    {
        DiskFixture fixture;
        fixture.warden.askToReclaim();
        fixture.warden.reclaim(false);
        fixture.settled();
        const auto trash = [&] { return fixture.banner(WardenRows::pendingTrashBanner); };
        const auto count = fixture.warden.rows()->rowCount();
        fixture.warden.togglePath(trash());
        QCOMPARE(fixture.warden.rows()->rowCount(), count + 2);
        const auto *first = fixture.warden.rows()->at(trash() + 1);
        QCOMPARE(first->kind, Kind::Held);
        // What went last stands first.
        QCOMPARE(first->title, u"Android build logs · log"_s);
        QCOMPARE(first->path, u"~/.gradle/daemon/log"_s);
        fixture.warden.toggle(trash() + 2);
        QCOMPARE(fixture.warden.finishTitle(), u"Permanently remove 4.0 KB?"_s);
        fixture.warden.act(trash());
        fixture.settled();
        QVERIFY(fixture.has(".gradle/daemon/log"));
        QVERIFY(fixture.isTrashed("one"));
        // Nothing is ticked any more, and so neither button has anything to do.
        QVERIFY(fixture.warden.rows()->at(trash())->actionWaits);
        QVERIFY(fixture.warden.rows()->at(trash())->otherActionWaits);
        fixture.warden.toggle(trash() + 1);
        fixture.warden.finishRemoving();
        fixture.settled();
        QVERIFY(!fixture.isTrashed("one"));
        QCOMPARE(trash(), -1);
    }

    void nothingCanBeTickedOrStartedWhileThingsGo()
    {
        DiskFixture fixture;
        fixture.warden.askToReclaim();
        fixture.warden.reclaim(false);
        fixture.settled();
        const auto chosen = fixture.warden.chosen();
        QSemaphore go;
        fixture.model->removals().enqueue({ .work = [&](const RemovalQueue::Watch &watch) {
            watch.progress({ .number = 3, .count = 5, .name = u"Saved web pages"_s, .bytes = 1024 });
            go.acquire();
        } });
        QVERIFY(!fixture.warden.canReclaim());
        for (int row = 0; row < fixture.warden.rows()->rowCount(); ++row)
            fixture.warden.toggle(row);
        QCOMPARE(fixture.warden.chosen(), chosen);
        QVERIFY(fixture.warden.rows()->at(fixture.banner(WardenRows::pendingTrashBanner))->otherActionWaits);
        QTRY_VERIFY(fixture.warden.removal()->shown());
        QCOMPARE(fixture.warden.removal()->title(), u"Moving 3 of 5"_s);
        QCOMPARE(fixture.warden.removal()->detail(), u"Saved web pages · 1.0 KB so far"_s);
        QCOMPARE(fixture.warden.removal()->share(), 0.4);
        QVERIFY(fixture.warden.removal()->canStop());
        fixture.warden.removal()->stop();
        QVERIFY(!fixture.warden.removal()->canStop());
        go.release();
        fixture.settled();
        QVERIFY(!fixture.warden.removal()->shown());
    }

    void pendingTrashGoesByItselfOnceEmptied()
    {
        DiskFixture fixture;
        fixture.warden.askToReclaim();
        fixture.warden.reclaim(false);
        fixture.settled();
        QVERIFY(fixture.banner(WardenRows::pendingTrashBanner) >= 0);
        std::filesystem::remove_all(fixture.trashFolder);
        fixture.warden.recheck();
        fixture.known();
        QCOMPARE(fixture.banner(WardenRows::pendingTrashBanner), -1);
    }

    // With ticks of the person's own, too, which a scan leaves alone.
    void pendingTrashIsLookedAtAfterEveryScan()
    {
        DiskFixture fixture;
        fixture.tree.file("home/Library/Caches/pip/wheel", 4096);
        for (int row = 0; row < fixture.warden.rows()->rowCount(); ++row)
            if (fixture.warden.rows()->rows().at(row).path == "~/.pub-cache")
                fixture.warden.toggle(row);
        QVERIFY(fixture.warden.touched());
        fixture.warden.askToReclaim();
        fixture.warden.reclaim(false);
        fixture.settled();
        QVERIFY(fixture.banner(WardenRows::pendingTrashBanner) >= 0);
        std::filesystem::remove_all(fixture.trashFolder);
        fixture.model->scans().scan({});
        fixture.settled();
        QCOMPARE(fixture.banner(WardenRows::pendingTrashBanner), -1);
    }

    void dismissingTheVerificationLeavesThePendingTrash()
    {
        DiskFixture fixture;
        fixture.warden.askToReclaim();
        fixture.warden.reclaim(false);
        fixture.settled();
        QVERIFY(fixture.banner(WardenRows::verificationBanner) >= 0);
        fixture.warden.act(fixture.banner(WardenRows::verificationBanner));
        QCOMPARE(fixture.banner(WardenRows::verificationBanner), -1);
        QVERIFY(fixture.banner(WardenRows::pendingTrashBanner) >= 0);
    }

    void missingBackupIsTold()
    {
        DiskFixture fixture;
        QCOMPARE(fixture.banner(WardenRows::safetyNetBanner), -1);
        fixture.backups.backups = {};
        fixture.model->reclaims().refreshSafetyNet();
        QTRY_COMPARE(fixture.banner(WardenRows::safetyNetBanner), 0);
        // It has no button, and nothing happens.
        fixture.warden.act(0);
        QCOMPARE(fixture.model->scans().phase().kind, Phase::Kind::ready);
    }

    void logIsListed()
    {
        DiskFixture fixture;
        fixture.warden.askToReclaim();
        fixture.warden.reclaim(false);
        fixture.settled();
        QCOMPARE(fixture.warden.rows()->rows().last().kind, Kind::LogLine);
        QCOMPARE(fixture.warden.rows()->rows().last().title, u"✓ Android build logs — 4.0 KB to Trash"_s);
    }

    void offerOfARuleIsTakenOrRefused_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<qsizetype>("rules");
        QTest::newRow("taken") << 0 << qsizetype{ 1 };
        QTest::newRow("refused") << 1 << qsizetype{ 0 };
    }
    void offerOfARuleIsTakenOrRefused()
    {
        QFETCH(int, button);
        Fixture fixture;
        fixture.scan();
        auto cleared = fixture.warden.chosenFindings().first();
        cleared.bytes = AutomationStore::worthAutomating;
        fixture.model.automation().offerAfter({ cleared });
        const auto &rows = fixture.warden.rows()->rows();
        const auto row = std::ranges::find(rows, WardenRows::automationOfferBanner, &WardenRow::id);
        QVERIFY(row != rows.end());
        fixture.warden.act(static_cast<int>(row - rows.begin()), button);
        QVERIFY(!fixture.model.automation().offer());
        QVERIFY(std::ranges::find(rows, WardenRows::automationOfferBanner, &WardenRow::id) == rows.end());
        QTEST(fixture.model.automation().store().rules().size(), "rules");
    }
};

QUILLBROOK_SUITE(TestWardenState, QCoreApplication)
#include "tst_WardenState.moc"
