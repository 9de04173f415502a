#include "Media/PhotoCleanup.h"
#include "Support/FakeClock.h"
#include "Support/FakePhotoLibrary.h"
#include "Support/Suite.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

/// Answers each question at once.
class Person final : public PhotoQuestions
{
public:
    bool isWilling = true;
    QList<qsizetype> asked;

    QFuture<bool> mayRead(const QStringList &) override { return said(); }
    QFuture<bool> mayDelete(qsizetype count) override
    {
        asked.append(count);
        return said();
    }

private:
    [[nodiscard]] QFuture<bool> said() const
    {
        QPromise<bool> promise;
        promise.start();
        promise.addResult(isWilling);
        promise.finish();
        return promise.future();
    }
};

struct Screen
{
    FakeClock clock;
    FakePhotoLibrary library;
    Person person;
    PhotoCleanup photos{ { .library = library, .questions = person, .clock = clock } };

    explicit Screen(PhotoAccess access = PhotoAccess::granted, qsizetype count = 4)
    {
        library.access = access;
        library.assets = MadeAssets::of(count, 10);
        photos.refreshAccess();
        settled();
    }
    void settled() const
    {
        QTRY_COMPARE(photos.access(), library.access);
        QTRY_VERIFY(!photos.working() && !photos.changing());
    }
    void measure()
    {
        photos.measure();
        settled();
    }
};

void waitUntilStopped(PhotoWork &work)
{
    for (int i = 0; i < 5000 && !work.isStopped; ++i)
        QThread::msleep(1);
}

const auto movedFour
    = u"Moved 4 items to Recently Deleted. They stay there for 30 days — the space comes back "
      "when that is emptied."_s;

} // namespace

class TestPhotoCleanup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rangeIsAYearlongOneSomeYearsAgo()
    {
        FakeClock clock;
        clock.moment = QDateTime(QDate(2024, 2, 29), QTime(9, 30), Qt::UTC);
        FakePhotoLibrary library;
        Person person;
        const PhotoCleanup photos({ .library = library, .questions = person, .clock = clock });
        QCOMPARE(photos.from(), QDateTime(QDate(2019, 2, 28), QTime(9, 30), Qt::UTC));
        QCOMPARE(photos.to(), QDateTime(QDate(2021, 2, 28), QTime(9, 30), Qt::UTC));
        QVERIFY(photos.includeVideos());
        QCOMPARE(photos.access(), PhotoAccess::notAsked);
        QCOMPARE(photos.summary(), PhotoSummary{});
        QVERIFY(!photos.working() && !photos.lastResult());
    }

    void questionHasTheRangeAndTheKinds()
    {
        Screen screen;
        screen.measure();
        screen.photos.setIncludeVideos(false);
        screen.photos.setFrom(QDateTime(QDate(2001, 1, 1), QTime(), Qt::UTC));
        screen.measure();
        const auto queries = screen.library.queries();
        QCOMPARE(queries.front(),
            (PhotoQuery{ .kinds = { PhotoKind::image, PhotoKind::video },
                .from = queries.front().from,
                .to = screen.photos.to() }));
        QCOMPARE(queries.back(),
            (PhotoQuery{
                .kinds = { PhotoKind::image }, .from = screen.photos.from(), .to = screen.photos.to() }));
    }

    void accessDecidesWhatIsDone_data()
    {
        QTest::addColumn<PhotoAccess>("access");
        QTest::addColumn<bool>("isMeasured");
        QTest::addColumn<bool>("isDeleted");
        QTest::newRow("not asked") << PhotoAccess::notAsked << false << false;
        QTest::newRow("denied") << PhotoAccess::denied << false << false;
        QTest::newRow("limited") << PhotoAccess::limited << true << false;
        QTest::newRow("granted") << PhotoAccess::granted << true << true;
    }

    void accessDecidesWhatIsDone()
    {
        QFETCH(PhotoAccess, access);
        QFETCH(bool, isMeasured);
        QFETCH(bool, isDeleted);
        Screen screen(access);
        screen.measure();
        QCOMPARE(screen.photos.summary().count, qsizetype(isMeasured ? 4 : 0));
        screen.photos.deleteRange();
        screen.settled();
        QCOMPARE(screen.library.deleted.size(), size_t(isDeleted ? 1 : 0));
        QCOMPARE(screen.photos.lastResult().has_value(), isDeleted);
    }

    void askingForAccessMeasuresNothing()
    {
        Screen screen(PhotoAccess::notAsked);
        screen.photos.requestAccess();
        QTRY_COMPARE(screen.photos.access(), PhotoAccess::granted);
        QVERIFY(screen.library.queries().empty());
    }

    void summaryStaysUntilTheNextMeasure()
    {
        Screen screen;
        screen.measure();
        const PhotoSummary expected{ .count = 4, .bytes = 40, .sampled = 4 };
        QCOMPARE(screen.photos.summary(), expected);
        screen.library.assets = MadeAssets::of(0);
        screen.photos.setTo(screen.photos.from());
        screen.photos.setIncludeVideos(false);
        QCOMPARE(screen.photos.summary(), expected);
        screen.measure();
        QCOMPARE(screen.photos.summary(), PhotoSummary{});
    }

    void measureCanBeStoppedAndLeavesTheSummary()
    {
        Screen screen;
        screen.measure();
        QSemaphore entered;
        QSemaphore released;
        screen.library.before = [&](const PhotoQuery &, PhotoWork &work) {
            work.done = 7;
            entered.release();
            released.acquire();
        };
        screen.library.assets = MadeAssets::of(9);
        screen.photos.measure();
        QVERIFY(entered.tryAcquire(1, 5000));
        QVERIFY(screen.photos.working());
        QCOMPARE(screen.photos.done(), qsizetype(7));
        screen.photos.stop();
        released.release();
        screen.settled();
        QCOMPARE(screen.photos.summary().count, qsizetype(4));
    }

    void laterFinisherOfTwoMeasuresWins()
    {
        Screen screen;
        QSemaphore released;
        std::atomic<int> count = 0;
        screen.library.before = [&](const PhotoQuery &, PhotoWork &) {
            if (count++ == 0)
                released.acquire();
        };
        screen.photos.measure();
        QTRY_COMPARE(count.load(), 1);
        screen.library.assets = MadeAssets::of(2);
        screen.photos.measure();
        QTRY_COMPARE(screen.photos.summary().count, qsizetype(2));
        QVERIFY(screen.photos.working());
        screen.library.assets = MadeAssets::of(3);
        released.release();
        screen.settled();
        QCOMPARE(screen.photos.summary().count, qsizetype(3));
    }

    void deletionTakesWhatIsThereNowAndMeasuresAgain()
    {
        Screen screen(PhotoAccess::granted, 9);
        screen.measure();
        screen.library.assets = MadeAssets::of(4);
        screen.photos.deleteRange();
        QVERIFY(!screen.photos.working());
        screen.settled();
        QTRY_COMPARE(screen.photos.summary(), PhotoSummary{});
        QCOMPARE(screen.person.asked, QList<qsizetype>{ 4 });
        QCOMPARE(screen.library.deleted, std::vector<qsizetype>{ 4 });
        QCOMPARE(screen.photos.lastResult(), movedFour);
    }

    void emptyRangeIsNoWordWorth()
    {
        Screen screen(PhotoAccess::granted, 0);
        screen.photos.deleteRange();
        screen.settled();
        QVERIFY(!screen.photos.lastResult());
        QVERIFY(screen.person.asked.isEmpty());
    }

    void failureLeavesTheSummary_data()
    {
        QTest::addColumn<bool>("isWilling");
        QTest::addColumn<QStringList>("stranded");
        QTest::newRow("declined") << false << QStringList();
        QTest::newRow("could not") << true << QStringList(u"a.jpg is still in the Trash: why."_s);
    }

    void failureLeavesTheSummary()
    {
        QFETCH(bool, isWilling);
        QFETCH(QStringList, stranded);
        Screen screen;
        screen.measure();
        screen.person.isWilling = isWilling;
        screen.library.isAbleToDelete = false;
        screen.library.stranded = { u"a.jpg is still in the Trash: why."_s };
        screen.library.assets = MadeAssets::of(2);
        screen.photos.deleteRange();
        screen.settled();
        QCOMPARE(screen.photos.lastResult(), u"Nothing was deleted."_s);
        QCOMPARE(screen.photos.furtherLines(), stranded);
        QCOMPARE(screen.photos.summary().count, qsizetype(4));
    }

    void twoDeletionsDoNotMeet()
    {
        Screen screen;
        screen.photos.deleteRange();
        screen.photos.deleteRange();
        screen.photos.putBack();
        screen.settled();
        QCOMPARE(screen.library.deleted.size(), size_t(1));
        QCOMPARE(screen.library.returns, 0);
    }

    void whatWentCanBePutBack()
    {
        Screen screen;
        screen.library.heldFiles = 3;
        screen.library.staying = { u"b.jpg is still in the Trash: why."_s };
        screen.photos.refreshAccess();
        QTRY_COMPARE(screen.photos.held().count, qsizetype(3));
        screen.photos.putBack();
        QTRY_COMPARE(screen.photos.held().count, qsizetype(1));
        QCOMPARE(screen.photos.lastResult(), u"Put 2 files back."_s);
        QCOMPARE(screen.photos.furtherLines(), screen.library.staying);
    }

    void searchOfADeletionCanBeStopped()
    {
        Screen screen;
        screen.library.before = [](const PhotoQuery &, PhotoWork &work) { waitUntilStopped(work); };
        screen.photos.deleteRange();
        QCOMPARE(screen.photos.task(), PhotoCleanup::Task::counting);
        screen.photos.stop();
        screen.settled();
        QCOMPARE(screen.photos.lastResult(), u"Nothing was deleted."_s);
        QVERIFY(screen.person.asked.isEmpty());
        QVERIFY(screen.library.deleted.empty());
    }

    void deletionAndReturnCanBeStopped()
    {
        Screen screen;
        screen.library.heldFiles = 3;
        screen.library.beforeChange = waitUntilStopped;
        screen.photos.deleteRange();
        QTRY_COMPARE(screen.photos.task(), PhotoCleanup::Task::moving);
        screen.photos.stop();
        screen.settled();
        QCOMPARE(screen.photos.lastResult(), u"Nothing was deleted."_s);
        screen.photos.putBack();
        QCOMPARE(screen.photos.task(), PhotoCleanup::Task::puttingBack);
        screen.photos.stop();
        screen.settled();
        QCOMPARE(screen.library.returns, 0);
        QTRY_COMPARE(screen.photos.held().count, qsizetype(3));
    }

    // A change may take minutes, in which the person comes back to the window many times.
    void accessIsAskedForDuringAChangeAndNothingElse()
    {
        Screen screen;
        QTRY_COMPARE(screen.library.heldAsked.load(), 1);
        screen.library.beforeChange = waitUntilStopped;
        screen.photos.deleteRange();
        QTRY_COMPARE(screen.photos.task(), PhotoCleanup::Task::moving);
        screen.library.access = PhotoAccess::limited;
        for (int i = 0; i < 10; ++i)
            screen.photos.refreshAccess();
        QTRY_COMPARE(screen.photos.access(), PhotoAccess::limited);
        QCOMPARE(screen.library.heldAsked.load(), 1);
        screen.photos.stop();
        QTRY_COMPARE(screen.library.heldAsked.load(), 2);
    }

    void goingAwayEndsWhatRuns_data()
    {
        QTest::addColumn<bool>("isDeletion");
        QTest::newRow("a measure") << false;
        QTest::newRow("the search of a deletion") << true;
    }

    void goingAwayEndsWhatRuns()
    {
        QFETCH(bool, isDeletion);
        FakePhotoLibrary library;
        library.access = PhotoAccess::granted;
        std::atomic<bool> isStopped = false;
        QSemaphore entered;
        library.before = [&](const PhotoQuery &, PhotoWork &work) {
            entered.release();
            waitUntilStopped(work);
            isStopped = work.isStopped.load();
        };
        {
            FakeClock clock;
            Person person;
            PhotoCleanup photos({ .library = library, .questions = person, .clock = clock });
            photos.refreshAccess();
            QTRY_COMPARE(photos.access(), PhotoAccess::granted);
            if (isDeletion)
                photos.deleteRange();
            else
                photos.measure();
            QVERIFY(entered.tryAcquire(1, 5000));
        }
        QVERIFY(isStopped);
    }
};

QUILLBROOK_SUITE(TestPhotoCleanup, QCoreApplication)
#include "tst_PhotoCleanup.moc"
