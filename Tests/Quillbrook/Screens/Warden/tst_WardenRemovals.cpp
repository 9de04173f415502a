// What goes at the screen's word, what then lies in the Trash, and what is told of it, on real files.

#include "Screens/Warden/WardenRows.h"
#include "Screens/Warden/WardenState.h"
#include "Support/HomeOnDisk.h"
#include "Support/Suite.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using Kind = WardenLines::Kind;

namespace {

// Packages that come back by themselves, and libraries that cost something.
struct Fixture : HomeOnDisk
{
    Fixture()
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

    /// Clears after a person has ticked one thing more; another has come meanwhile.
    void reclaimWithOwnTicks()
    {
        tree.file("home/Library/Caches/pip/wheel", 4096);
        for (int row = 0; row < warden.rows()->rowCount(); ++row)
            if (warden.rows()->rows().at(row).path == "~/.pub-cache")
                warden.toggle(row);
        warden.askToReclaim();
        warden.reclaim(false);
        settled();
    }

    mutable WardenState warden{ *model };
};

} // namespace

class TestWardenRemovals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingTickedCannotBeReclaimed()
    {
        Fixture fixture;
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
        Fixture fixture;
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
        Fixture fixture;
        fixture.backups.backups = {};
        fixture.model->reclaims().refreshSafetyNet();
        QTRY_VERIFY(fixture.model->reclaims().safetyNet());
        QVERIFY(fixture.warden.confirmMessage().endsWith(
            u"finish the job. This Mac has no backup, so deleting permanently is final."_s));
    }

    void answerMovesWhatIsTickedAndUnticksIt()
    {
        Fixture fixture;
        const auto ticked = fixture.warden.chosen();
        fixture.warden.askToReclaim();
        fixture.warden.reclaim(false);
        // What goes stays ticked meanwhile.
        QVERIFY(fixture.model->removals().isBusy());
        QCOMPARE(fixture.warden.chosen(), ticked);
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
        Fixture fixture;
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
        Fixture fixture;
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
        Fixture fixture;
        fixture.tree.file("home/Library/Caches/pip/wheel", 4096);
        fixture.warden.askToReclaim();
        fixture.warden.reclaim(false);
        fixture.settled();
        QCOMPARE(fixture.warden.total(), u"4.0 KB selected"_s);
    }

    void touchedTicksStayEmptyAfterARemoval()
    {
        Fixture fixture;
        fixture.reclaimWithOwnTicks();
        QVERIFY(fixture.warden.touched());
        QCOMPARE(fixture.warden.counts(), u"0 of 1 reclaimable items"_s);
    }

    void pendingTrashIsToldAndFinished()
    {
        Fixture fixture;
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
        Fixture fixture;
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
        Fixture fixture;
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
        Fixture fixture;
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
        Fixture fixture;
        fixture.reclaimWithOwnTicks();
        QVERIFY(fixture.warden.touched());
        QVERIFY(fixture.banner(WardenRows::pendingTrashBanner) >= 0);
        std::filesystem::remove_all(fixture.trashFolder);
        fixture.model->scans().scan({});
        fixture.settled();
        QCOMPARE(fixture.banner(WardenRows::pendingTrashBanner), -1);
    }

    void dismissingTheVerificationLeavesThePendingTrash()
    {
        Fixture fixture;
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
        Fixture fixture;
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
        Fixture fixture;
        fixture.warden.askToReclaim();
        fixture.warden.reclaim(false);
        fixture.settled();
        QCOMPARE(fixture.warden.rows()->rows().last().kind, Kind::LogLine);
        QCOMPARE(fixture.warden.rows()->rows().last().title, u"✓ Android build logs — 4.0 KB to Trash"_s);
    }
};

QUILLBROOK_SUITE(TestWardenRemovals, QCoreApplication)
#include "tst_WardenRemovals.moc"
