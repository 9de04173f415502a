#include "Screens/Map/SelectionBarState.h"
#include "Support/HomeOnDisk.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

// Counts of a counter that waits to be let go, one call at a time. Shared with calls that outlive the test.
struct HeldCounter
{
    PathRemoval::ItemCount operator()(const std::string &path, qsizetype)
    {
        started.release();
        if (!goOn.tryAcquire(1, 10'000))
            return {};
        return { .count = path.ends_with("Projects") ? 11 : 22 };
    }

    QSemaphore started;
    QSemaphore goOn;
};

struct Fixture : ScannedHome
{
    void select(const std::string &name) { model.navigation().setSelection(snapshot(name)); }

    std::shared_ptr<HeldCounter> counter = std::make_shared<HeldCounter>();
    SelectionBarState bar{ model,
        [counter = counter](const std::string &path, qsizetype cap) { return (*counter)(path, cap); } };
};

// A count that is known at once.
struct CountedFixture : ScannedHome
{
    explicit CountedFixture(PathRemoval::ItemCount answer)
        : bar(model, [answer](const std::string &, qsizetype) { return answer; })
    {
    }

    SelectionBarState bar;
};

// Real files, a folder of three among them.
struct DiskFixture : HomeOnDisk
{
    DiskFixture()
    {
        tree.file("home/notes.txt", 4096);
        tree.file("home/project/one", 4096);
        tree.file("home/project/two", 4096);
        scan();
    }

    void select(const std::string &name)
    {
        model->navigation().setSelection(node(name));
        QTRY_VERIFY(bar.removable());
    }

    SelectionBarState bar{ *model };
};

} // namespace

Q_DECLARE_METATYPE(Quillbrook::PathRemoval::ItemCount)

class TestSelectionBarState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isAbsentWithoutASelection()
    {
        Fixture fixture;
        fixture.scan();
        QVERIFY(!fixture.bar.present());
        QVERIFY(!fixture.bar.canOpen());
        QCOMPARE(fixture.bar.name(), "");
        QCOMPARE(fixture.bar.size(), "");
        QCOMPARE(fixture.bar.path(), "");
        QCOMPARE(fixture.bar.items(), "");
    }

    void folderIsToldAsOne()
    {
        Fixture fixture;
        fixture.scan();
        fixture.select("Projects/renderer");
        QVERIFY(fixture.bar.present());
        QVERIFY(fixture.bar.canOpen());
        QCOMPARE(fixture.bar.symbol(), "folder.fill");
        QCOMPARE(fixture.bar.name(), "renderer");
        QCOMPARE(fixture.bar.size(), "100 MB");
        QCOMPARE(fixture.bar.path(), "~/Projects/renderer");
        fixture.counter->goOn.release();
    }

    void fileIsToldAsOne()
    {
        Fixture fixture;
        fixture.scan();
        fixture.select("lab.txt");
        QVERIFY(fixture.bar.present());
        QVERIFY(!fixture.bar.canOpen());
        QCOMPARE(fixture.bar.symbol(), "doc.fill");
        QCOMPARE(fixture.bar.name(), "lab.txt");
    }

    void itemCountIsWorded_data()
    {
        QTest::addColumn<PathRemoval::ItemCount>("count");
        QTest::addColumn<QString>("words");
        QTest::newRow("none") << PathRemoval::ItemCount{ .count = 0 } << "";
        QTest::newRow("one") << PathRemoval::ItemCount{ .count = 1 } << "";
        QTest::newRow("two") << PathRemoval::ItemCount{ .count = 2 } << "2 items";
        QTest::newRow("thousands") << PathRemoval::ItemCount{ .count = 4999 } << "4,999 items";
        QTest::newRow("capped") << PathRemoval::ItemCount{ .count = 5000, .capped = true }
                                << "over 5,000 items";
    }

    void itemCountIsWorded()
    {
        QFETCH(PathRemoval::ItemCount, count);
        QFETCH(QString, words);
        CountedFixture fixture(count);
        fixture.scan();
        QSignalSpy changes(&fixture.bar, &SelectionBarState::itemsChanged);
        fixture.model.navigation().setSelection(fixture.snapshot("Projects"));
        QTRY_COMPARE(changes.count(), 1);
        QCOMPARE(fixture.bar.items(), words);
    }

    void fileIsNotCounted()
    {
        Fixture fixture;
        fixture.scan();
        fixture.select("lab.txt");
        QVERIFY(!fixture.counter->started.tryAcquire(1, 50));
    }

    void lateCountOfAnotherSelectionIsDropped()
    {
        Fixture fixture;
        fixture.scan();
        fixture.select("Projects");
        QVERIFY(fixture.counter->started.tryAcquire(1, 10'000));
        fixture.select("Videos");
        QVERIFY(fixture.counter->started.tryAcquire(1, 10'000));
        QSignalSpy changes(&fixture.bar, &SelectionBarState::itemsChanged);
        fixture.counter->goOn.release(2);
        QTRY_COMPARE(fixture.bar.items(), "22 items");
        QCoreApplication::processEvents();
        QCOMPARE(changes.count(), 1);

        // And one that comes when nothing is selected any more.
        fixture.select("Projects");
        QVERIFY(fixture.counter->started.tryAcquire(1, 10'000));
        fixture.bar.dismiss();
        changes.clear();
        fixture.counter->goOn.release();
        QTest::qWait(50);
        QCOMPARE(changes.count(), 0);
        QCOMPARE(fixture.bar.items(), "");
    }

    void newSelectionClearsTheCount()
    {
        Fixture fixture;
        fixture.scan();
        fixture.select("Projects");
        fixture.counter->goOn.release();
        QTRY_COMPARE(fixture.bar.items(), "11 items");
        fixture.select("lab.txt");
        QCOMPARE(fixture.bar.items(), "");
    }

    void goingWhileCountingIsHarmless()
    {
        const auto counter = std::make_shared<HeldCounter>();
        {
            ScannedHome home;
            home.scan();
            SelectionBarState bar(home.model,
                [counter](const std::string &path, qsizetype cap) { return (*counter)(path, cap); });
            home.model.navigation().setSelection(home.snapshot("Projects"));
            QVERIFY(counter->started.tryAcquire(1, 10'000));
        }
        counter->goOn.release();
        QTest::qWait(50);
    }

    void realFolderIsCounted_data()
    {
        QTest::addColumn<int>("files");
        QTest::addColumn<QString>("words");
        QTest::newRow("3") << 3 << "3 items";
        QTest::newRow("4999") << 4999 << "4,999 items";
        QTest::newRow("5000") << 5000 << "over 5,000 items";
    }

    void realFolderIsCounted()
    {
        QFETCH(int, files);
        QFETCH(QString, words);
        TempTree disk;
        disk.folder("many");
        for (int i = 0; i < files; ++i)
            disk.file("many/" + std::to_string(i));
        ScannedHome home;
        home.scan();
        SelectionBarState bar(home.model);
        home.model.navigation().setSelection(NodeSnapshot{
            .id = 1, .name = "many", .path = disk.text("many"), .bytes = 1, .isDirectory = true });
        QTRY_COMPARE_WITH_TIMEOUT(bar.items(), words, 10'000);
    }

    void openGoesIntoTheFolderAndShowsTheMap()
    {
        CountedFixture fixture({});
        fixture.scan();
        fixture.model.navigation().setSelection(fixture.snapshot("Projects"));
        fixture.bar.open();
        QCOMPARE(fixture.model.navigation().focus(), fixture.node("Projects"));
        QVERIFY(!fixture.model.navigation().selection());
        QCOMPARE(fixture.model.navigation().requestedPane(), std::optional(Pane::map));
    }

    void openOnAFileDoesNothing()
    {
        CountedFixture fixture({});
        fixture.scan();
        fixture.model.navigation().setSelection(fixture.snapshot("lab.txt"));
        fixture.bar.open();
        QCOMPARE(fixture.model.navigation().focus(), fixture.model.scans().rootNode());
        QCOMPARE(fixture.model.navigation().selection(), fixture.snapshot("lab.txt"));
    }

    void openOfAnOlderTreesFolderDoesNothing()
    {
        CountedFixture fixture({});
        fixture.scan();
        auto older = fixture.snapshot("Projects");
        older.path = "/home/someone/Elsewhere";
        fixture.model.navigation().setSelection(older);
        fixture.bar.open();
        QCOMPARE(fixture.model.navigation().focus(), fixture.model.scans().rootNode());
        QCOMPARE(fixture.model.navigation().selection(), older);
    }

    void revealShowsTheRawPath()
    {
        CountedFixture fixture({});
        fixture.addFile("odd\xFF.iso", 900);
        fixture.scan();
        fixture.model.navigation().setSelection(fixture.model.navigation().largestFiles(1).constFirst());
        fixture.bar.reveal();
        QCOMPARE(fixture.desktop.revealer.revealed, std::vector<std::string>{ fixture.path("odd\xFF.iso") });
    }

    void dismissClearsTheSelection()
    {
        CountedFixture fixture({});
        fixture.scan();
        fixture.model.navigation().setSelection(fixture.snapshot("Projects"));
        fixture.bar.dismiss();
        QVERIFY(!fixture.model.navigation().selection());
        QVERIFY(!fixture.bar.present());
    }

    void refusalStandsInPlaceOfTheRemoval()
    {
        DiskFixture fixture;
        fixture.model->navigation().setSelection(
            fixture.model->scans().tree()->snapshot(fixture.model->scans().rootNode()));
        QTRY_VERIFY(!fixture.bar.refusal().isEmpty());
        QVERIFY(!fixture.bar.removable());
        fixture.bar.askToRemove(true);
        fixture.bar.remove();
        QVERIFY(fixture.has("notes.txt"));
        QVERIFY(fixture.model->reclaims().reclaimLog().isEmpty());
        fixture.select("notes.txt");
        QCOMPARE(fixture.bar.refusal(), QString());
    }

    void whatMayGoIsKnownOnlyOnceTheGuardsHaveAnswered()
    {
        DiskFixture fixture;
        QSemaphore goOn;
        fixture.guards.guards.push_back(
            { .names = [&goOn](const GuardedPath &) -> std::optional<std::string> {
                (void)goOn.tryAcquire(1, 10'000);
                return std::nullopt;
            } });
        fixture.start();
        fixture.scan();
        SelectionBarState bar(*fixture.model);
        QVERIFY(!bar.removable());
        fixture.model->navigation().setSelection(fixture.node("notes.txt"));
        QTest::qWait(50);
        QVERIFY(!bar.removable());
        QCOMPARE(bar.refusal(), QString());
        goOn.release(100);
        QTRY_VERIFY(bar.removable());
        bar.dismiss();
        QVERIFY(!bar.removable());
    }

    void questionNamesWhatHowAndWhere_data()
    {
        QTest::addColumn<bool>("permanently");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("action");
        QTest::addColumn<QString>("fate");
        QTest::newRow("to the Trash")
            << false << "Move notes.txt to the Trash?"
            << "Move to Trash"
            << "It goes to the Trash and can be put back. The space comes back once the Trash is "
               "emptied.";
        QTest::newRow("for good") << true << "Delete notes.txt permanently?"
                                  << "Delete permanently"
                                  << "This cannot be undone.";
    }

    void questionNamesWhatHowAndWhere()
    {
        QFETCH(bool, permanently);
        QFETCH(QString, title);
        QFETCH(QString, action);
        QFETCH(QString, fate);
        DiskFixture fixture;
        fixture.select("notes.txt");
        QSignalSpy asked(&fixture.bar, &SelectionBarState::removeAsked);
        fixture.bar.askToRemove(permanently);
        QCOMPARE(asked.count(), 1);
        QCOMPARE(fixture.bar.confirmTitle(), title);
        QCOMPARE(fixture.bar.confirmAction(), action);
        QCOMPARE(fixture.bar.permanently(), permanently);
        QCOMPARE(fixture.bar.confirmMessage(),
            "4.0 KB at ~/notes.txt. " + fate
                + " Quillbrook did not suggest this item — you chose it off the map, so it has no idea what "
                  "is "
                  "inside.");
        QVERIFY(fixture.has("notes.txt"));
    }

    void questionAboutANameOfSeveralLinesIsOneLine()
    {
        DiskFixture fixture;
        fixture.tree.file("home/two\nlines", 4096);
        fixture.scan();
        fixture.select("two\nlines");
        fixture.bar.askToRemove(false);
        QCOMPARE(fixture.bar.confirmTitle(), u"Move two lines to the Trash?"_s);
        fixture.bar.remove();
        fixture.removed();
        QVERIFY(fixture.isTrashed("two\nlines"));
    }

    void questionTellsHowManyThingsGo()
    {
        DiskFixture fixture;
        fixture.select("project");
        QTRY_COMPARE(fixture.bar.items(), u"2 items"_s);
        fixture.bar.askToRemove(false);
        QVERIFY(fixture.bar.confirmMessage().startsWith(u"2 items, 8.0 KB, at ~/project. "_s));

        ScannedHome home;
        SelectionBarState bar(home.model, [](const std::string &, qsizetype cap) {
            return PathRemoval::ItemCount{ .count = cap, .capped = true };
        });
        home.scan();
        home.model.navigation().setSelection(home.snapshot("Projects"));
        QTRY_COMPARE(bar.items(), u"over 5,000 items"_s);
        QVERIFY(bar.confirmMessage().startsWith(u"Over 5,000 items, 120 MB, at ~/Projects. "_s));
    }

    void questionSaysThatThereIsNoOtherCopy()
    {
        DiskFixture fixture;
        const auto warning = u"This cannot be undone. This Mac has no backup, so there is no other copy. "_s;
        fixture.select("notes.txt");
        fixture.bar.askToRemove(true);
        QVERIFY(!fixture.bar.confirmMessage().contains(warning));
        fixture.backups.backups = {};
        fixture.model->reclaims().refreshSafetyNet();
        QTRY_VERIFY(fixture.model->reclaims().safetyNet());
        QVERIFY(fixture.bar.confirmMessage().contains(warning));
        fixture.bar.askToRemove(false);
        QVERIFY(!fixture.bar.confirmMessage().contains(u"no backup"_s));
    }

    void answerRemovesWhatWasAskedAbout()
    {
        DiskFixture fixture;
        fixture.select("notes.txt");
        fixture.bar.askToRemove(false);
        fixture.bar.remove();
        fixture.removed();
        QVERIFY(!fixture.has("notes.txt"));
        QVERIFY(fixture.isTrashed("notes.txt"));
        QVERIFY(!fixture.bar.present());
        fixture.select("project");
        fixture.bar.askToRemove(true);
        fixture.bar.remove();
        fixture.removed();
        QVERIFY(!fixture.has("project"));
        QVERIFY(!fixture.isTrashed("project"));
    }

    void answerAboutAnotherSelectionDoesNothing()
    {
        DiskFixture fixture;
        fixture.select("notes.txt");
        fixture.bar.askToRemove(true);
        fixture.select("project");
        fixture.bar.remove();
        QVERIFY(fixture.has("notes.txt"));
        QVERIFY(fixture.has("project"));
        // A rescan takes the selection away, and with it the question.
        fixture.bar.askToRemove(true);
        fixture.scan();
        fixture.bar.remove();
        QVERIFY(fixture.has("project"));
    }

    void answerWithoutAQuestionDoesNothing()
    {
        DiskFixture fixture;
        fixture.select("notes.txt");
        fixture.bar.remove();
        QVERIFY(fixture.has("notes.txt"));
    }
};

QUILLBROOK_SUITE(TestSelectionBarState, QCoreApplication)
#include "tst_SelectionBarState.moc"
