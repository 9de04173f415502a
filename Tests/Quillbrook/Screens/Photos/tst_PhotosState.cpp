#include "Core/RemovalQueue.h"
#include "Screens/Photos/PhotosState.h"
#include "Support/FakeClock.h"
#include "Support/FakeFileRevealer.h"
#include "Support/FakePhotoLibrary.h"
#include "Support/Suite.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

struct Screen
{
    FakeClock clock;
    FakePhotoLibrary library;
    FakeFileRevealer revealer;
    PhotosState state{ { .library = library, .revealer = revealer, .clock = clock } };

    explicit Screen(PhotoAccess access = PhotoAccess::granted, qsizetype count = 4, qsizetype local = 4)
    {
        library.access = access;
        library.assets = MadeAssets::of(count, 1024, local);
        // The library may answer at once, but not before it was asked.
        QVERIFY(!state.asksForAccess());
        state.setShown(true);
        QTRY_VERIFY(state.asksForAccess() || state.isDeclined() || state.hasPicker());
        measure();
    }
    void measure()
    {
        state.measure();
        QTRY_VERIFY(state.canMeasure());
    }
};

} // namespace

class TestPhotosState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void accessDecidesWhatIsShown_data()
    {
        QTest::addColumn<PhotoAccess>("access");
        QTest::addColumn<QByteArray>("shown");
        QTest::newRow("not asked") << PhotoAccess::notAsked << QByteArray("ask");
        QTest::newRow("denied") << PhotoAccess::denied << QByteArray("declined");
        QTest::newRow("limited") << PhotoAccess::limited << QByteArray("picker result");
        QTest::newRow("granted") << PhotoAccess::granted << QByteArray("picker result delete");
    }

    void accessDecidesWhatIsShown()
    {
        QFETCH(PhotoAccess, access);
        const Screen screen(access);
        QByteArrayList shown;
        for (const auto &[isShown, name] : { std::pair(screen.state.asksForAccess(), "ask"),
                 std::pair(screen.state.isDeclined(), "declined"),
                 std::pair(screen.state.hasPicker(), "picker"), std::pair(screen.state.hasResult(), "result"),
                 std::pair(screen.state.canDelete(), "delete") })
            if (isShown)
                shown.append(name);
        QTEST(shown.join(' '), "shown");
    }

    void rangeWithNothingInItHasNoResult()
    {
        const Screen screen(PhotoAccess::granted, 0, 0);
        QVERIFY(screen.state.hasPicker());
        QVERIFY(!screen.state.hasResult());
    }

    void resultIsTold()
    {
        const Screen screen(PhotoAccess::granted, 4218, 4218);
        QCOMPARE(screen.state.resultTitle(), u"4,218 photos and videos"_s);
        QCOMPARE(screen.state.resultText(),
            u"roughly 4.1 MB — estimated from a sample of 200, not measured one by one"_s);
        QCOMPARE(screen.state.deleteText(), u"Delete these 4,218 items"_s);
        QCOMPARE(screen.state.confirmTitle(), u"Delete 4,218 photos and videos?"_s);
        QCOMPARE(screen.state.measureText(), u"See what is in this range"_s);
    }

    void warnsWhereMostLieElsewhere()
    {
        const Screen half(PhotoAccess::granted, 4, 2);
        QCOMPARE(half.state.elsewhereText(), QString());
        const Screen quarter(PhotoAccess::granted, 4, 1);
        QCOMPARE(quarter.state.elsewhereText(),
            u"Only 1 of 4 sampled items are stored here — the rest are in iCloud, with small previews on "
            u"disk. "
            "Deleting them would free very little space here while removing them from everywhere. This is "
            "almost certainly not what you want."_s);
    }

    void appearingMeasuresNothing()
    {
        FakeClock clock;
        FakePhotoLibrary library;
        FakeFileRevealer revealer;
        library.access = PhotoAccess::granted;
        library.assets = MadeAssets::of(3);
        PhotosState state({ .library = library, .revealer = revealer, .clock = clock });
        state.setShown(true);
        QTRY_VERIFY(state.hasPicker());
        state.setFrom(state.to());
        state.setIncludesVideos(false);
        QVERIFY(library.queries().empty());
        QVERIFY(!state.hasResult());
    }

    void accessIsAskedForOnceMoreWhenThePersonComesBack()
    {
        Screen screen(PhotoAccess::denied);
        screen.library.access = PhotoAccess::limited;
        screen.state.recheck();
        QTRY_VERIFY(screen.state.hasPicker());
        QVERIFY(!screen.state.canDelete());
    }

    void resultGoesWithTheAccess()
    {
        Screen screen;
        QVERIFY(screen.state.hasResult());
        const QSignalSpy changed(&screen.state, &PhotosState::resultChanged);
        screen.library.access = PhotoAccess::denied;
        screen.state.recheck();
        QTRY_VERIFY(screen.state.isDeclined());
        QVERIFY(!screen.state.hasResult());
        QCOMPARE(changed.count(), 1);
    }

    void libraryAsksForAccessThroughTheScreen_data()
    {
        QTest::addColumn<bool>("isAllowed");
        QTest::newRow("allowed") << true;
        QTest::newRow("refused") << false;
    }

    void libraryAsksForAccessThroughTheScreen()
    {
        QFETCH(bool, isAllowed);
        Screen screen(PhotoAccess::notAsked);
        screen.state.allow();
        QTRY_COMPARE(screen.state.questionTitle(), u"Let Quillbrook count your pictures?"_s);
        QVERIFY(screen.state.questionText().contains(u"/home/someone/Pictures"_s));
        QVERIFY(!screen.state.isAskedToDelete());
        screen.state.answer(isAllowed);
        QCOMPARE(screen.state.questionTitle(), QString());
        QTRY_VERIFY(!screen.state.asksForAccess());
        QCOMPARE(screen.state.hasPicker(), isAllowed);
        QCOMPARE(screen.state.isDeclined(), !isAllowed);
        screen.state.answer(isAllowed);
    }

    void libraryAsksBeforeItDeletes()
    {
        Screen screen;
        screen.library.assets = MadeAssets::of(1234);
        screen.state.deleteRange();
        QVERIFY(!screen.state.canDelete());
        QTRY_COMPARE(screen.state.questionTitle(), u"Move 1,234 photos and videos to the Trash?"_s);
        QVERIFY(screen.state.isAskedToDelete());
        // Leaving the screen and coming back loses no question.
        screen.state.setShown(false);
        screen.state.setShown(true);
        QVERIFY(screen.state.isAskedToDelete());
        QVERIFY(screen.library.deleted.empty());
        screen.state.answer(true);
        QTRY_VERIFY(screen.state.lastResult().startsWith(u"Moved 1234 items to Recently Deleted."_s));
    }

    void decliningKeepsTheFigures()
    {
        Screen screen;
        screen.state.deleteRange();
        QTRY_VERIFY(screen.state.isAskedToDelete());
        screen.state.answer(false);
        QTRY_COMPARE(screen.state.lastResult(), u"Nothing was deleted."_s);
        QCOMPARE(screen.state.resultTitle(), u"4 photos and videos"_s);
    }

    void questionEndsWithTheScreen()
    {
        FakeClock clock;
        FakePhotoLibrary library;
        FakeFileRevealer revealer;
        library.access = PhotoAccess::granted;
        library.assets = MadeAssets::of(3);
        {
            PhotosState state({ .library = library, .revealer = revealer, .clock = clock });
            state.setShown(true);
            QTRY_VERIFY(state.canDelete());
            state.deleteRange();
            QTRY_VERIFY(state.isAskedToDelete());
        }
        QVERIFY(library.deleted.empty());
    }

    void deletionWaitsItsTurnAmongOtherRemovals()
    {
        FakeClock clock;
        FakePhotoLibrary library;
        FakeFileRevealer revealer;
        RemovalQueue queue;
        library.access = PhotoAccess::granted;
        library.assets = MadeAssets::of(3);
        PhotosState state({ .library = library, .revealer = revealer, .clock = clock, .removals = &queue });
        state.setShown(true);
        QTRY_VERIFY(state.canDelete());
        state.deleteRange();
        QTRY_VERIFY(state.isAskedToDelete());
        QSemaphore released;
        queue.enqueue({ .work = [&](const RemovalQueue::Watch &) { released.acquire(); } });
        state.answer(true);
        QTest::qWait(20);
        QVERIFY(library.deleted.empty());
        released.release();
        QTRY_VERIFY(state.lastResult().startsWith(u"Moved 3 items"_s));
        QTRY_VERIFY(!queue.isBusy());
        // Nothing else starts while another removal runs.
        queue.enqueue({ .work = [&](const RemovalQueue::Watch &) { released.acquire(); } });
        QVERIFY(!state.canDelete());
        released.release();
        QTRY_VERIFY(state.canDelete());
        // A program that is about to end takes nothing more.
        library.assets = MadeAssets::of(5);
        queue.close();
        state.deleteRange();
        QTRY_VERIFY(state.isAskedToDelete());
        state.answer(true);
        QTRY_COMPARE(state.lastResult(), u"Nothing was deleted."_s);
    }

    void changesAreFollowedAndStoppedAsRemovals_data()
    {
        QTest::addColumn<bool>("isReturn");
        QTest::addColumn<RemovalQueue::Verb>("verb");
        QTest::addColumn<QString>("progress");
        QTest::addColumn<QString>("result");
        QTest::newRow("deletion") << false << RemovalQueue::Verb::moving << u"3 files moved so far."_s
                                  << u"Nothing was deleted."_s;
        QTest::newRow("return") << true << RemovalQueue::Verb::puttingBack << u"3 files put back so far."_s
                                << u"Put 0 files back."_s;
    }

    void changesAreFollowedAndStoppedAsRemovals()
    {
        QFETCH(bool, isReturn);
        FakeClock clock;
        FakePhotoLibrary library;
        FakeFileRevealer revealer;
        RemovalQueue queue;
        library.access = PhotoAccess::granted;
        library.assets = MadeAssets::of(9);
        library.heldFiles = 9;
        library.beforeChange = [](PhotoWork &work) {
            work.total = 10;
            for (int i = 0; i < 3; ++i)
                work.advance(5);
            for (int i = 0; i < 5000 && !work.isStopped; ++i)
                QThread::msleep(1);
        };
        PhotosState state({ .library = library, .revealer = revealer, .clock = clock, .removals = &queue });
        state.setShown(true);
        QTRY_VERIFY(state.canDelete() && state.canPutBack());
        if (isReturn) {
            state.putBack();
        } else {
            state.deleteRange();
            QTRY_VERIFY(state.isAskedToDelete());
            state.answer(true);
        }
        const RemovalQueue::Progress expected{
            .number = 4, .count = 10, .name = u"photos and videos"_s, .bytes = 15
        };
        QTRY_COMPARE(queue.progress(), std::optional(expected));
        QTEST(queue.verb(), "verb");
        QTEST(state.progress(), "progress");
        queue.stop();
        QTRY_COMPARE(state.progress(), QString());
        QTEST(state.lastResult(), "result");
    }

    void whatWentCanBeShownAndPutBack()
    {
        Screen screen;
        QVERIFY(!screen.state.canPutBack());
        screen.library.heldFiles = 2;
        screen.library.days = 30;
        screen.library.staying = { u"odd\nname.jpg is still in the Trash: why."_s };
        screen.state.recheck();
        QTRY_COMPARE(screen.state.putBackText(), u"Put 2 files back"_s);
        QCOMPARE(
            screen.state.emptyingText(), u"Your desktop deletes what has been in the Trash for 30 days."_s);
        screen.state.showInTrash();
        QCOMPARE(screen.revealer.revealed.back(), std::string("/trash/files/picture.jpg"));
        screen.state.putBack();
        QTRY_COMPARE(screen.state.putBackText(), u"Put 1 file back"_s);
        QCOMPARE(screen.state.lastResult(), u"Put 1 file back."_s);
        QVERIFY(!screen.state.furtherLines().contains(u'\n'));
    }
};

QUILLBROOK_SUITE(TestPhotosState, QCoreApplication)
#include "tst_PhotosState.moc"
