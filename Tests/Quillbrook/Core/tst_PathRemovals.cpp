// What removes a selection and what others propose, on real files in a temporary home folder.

#include "Support/HomeOnDisk.h"
#include "Support/Suite.h"

#include <QSemaphore>
#include <QSignalSpy>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

// One finding and a file beside it.
struct Fixture : HomeOnDisk
{
    Fixture()
    {
        tree.file("home/.gradle/daemon/log", 4096);
        tree.file("home/notes.txt", 4096);
        scan();
    }
};

constexpr auto logs = ".gradle/daemon";

} // namespace

class TestPathRemovals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
        QCOMPARE(fixture.model->books().reclaimedSoFar(), qint64(4096));
        QCOMPARE(fixture.model->books().ledger().pendingCount(), qsizetype(1));
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
        QVERIFY(fixture.model->books().ledger().items().empty());
        QCOMPARE(fixture.model->reclaims().reclaimLog(), QStringList{ u"✓ notes.txt — 4.0 KB removed"_s });
    }

    void refusedSelectionStaysAndSaysWhy()
    {
        const Fixture fixture;
        const auto home = fixture.model->scans().tree()->snapshot(fixture.model->scans().rootNode());
        fixture.model->navigation().setSelection(home);
        const auto refusal = fixture.model->pathRemovals().guardedPath(*home)();
        QVERIFY(refusal);
        for (const bool permanent : { false, true })
            fixture.removeSelected(permanent);
        QVERIFY(fixture.has("notes.txt"));
        QCOMPARE(fixture.model->navigation().selection(), home);
        QCOMPARE(fixture.model->reclaims().reclaimLog(), QStringList({ "✗ " + *refusal, "✗ " + *refusal }));
        QCOMPARE(fixture.model->books().reclaimedSoFar(), qint64(0));
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
        QVERIFY(fixture.model->books().ledger().items().empty());
    }

    void whatIsNotWhatWasPickedStays()
    {
        const Fixture fixture;
        fixture.model->navigation().setSelection(fixture.node("notes.txt"));
        fixture.model->pathRemovals().removeSelected(true, 1);
        fixture.removed();
        QVERIFY(fixture.has("notes.txt"));
        QCOMPARE(fixture.model->reclaims().reclaimLog(),
            QStringList{ u"✗ notes.txt is not what was measured any more. Scan again."_s });
    }

    void selectionOfMeanwhileStays()
    {
        const Fixture fixture;
        fixture.model->navigation().setSelection(fixture.node("notes.txt"));
        const auto inode = fixture.model->pathRemovals().inodeOf(*fixture.node("notes.txt"))();
        fixture.model->pathRemovals().removeSelected(false, inode);
        const auto other = fixture.node(".gradle/daemon/log");
        fixture.model->navigation().setSelection(other);
        fixture.removed();
        QVERIFY(!fixture.has("notes.txt"));
        QCOMPARE(fixture.model->navigation().selection(), other);
    }

    void selectionThatIsStoppedBeforeItGoesStays_data()
    {
        QTest::addColumn<bool>("permanent");
        QTest::newRow("to the Trash") << false;
        QTest::newRow("for good") << true;
    }
    void selectionThatIsStoppedBeforeItGoesStays()
    {
        QFETCH(bool, permanent);
        const Fixture fixture;
        const auto picked = fixture.node("notes.txt");
        fixture.model->navigation().setSelection(picked);
        const auto inode = fixture.model->pathRemovals().inodeOf(*picked)();
        QSemaphore go;
        static_cast<void>(fixture.model->removals().ask([&go] { go.acquire(); }));
        fixture.model->pathRemovals().removeSelected(permanent, inode);
        fixture.model->removals().stop();
        go.release();
        fixture.removed();
        QVERIFY(fixture.has("notes.txt"));
        QCOMPARE(fixture.model->navigation().selection(), picked);
        QVERIFY(fixture.model->reclaims().reclaimLog().isEmpty());
        QCOMPARE(fixture.model->books().reclaimedSoFar(), qint64(0));
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
        QCOMPARE(fixture.model->books().ledger().items().size(), size_t(1));
        QCOMPARE(fixture.model->books().ledger().items().front().originalPath, fixture.path("odd/" + raw));
        fixture.start();
        QCOMPARE(fixture.model->books().ledger().pendingCount(), qsizetype(1));
        fixture.model->reclaims().finishRemoving();
        fixture.removed();
        QCOMPARE(fixture.model->books().ledger().pendingCount(), qsizetype(0));
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

    void removalsOfOthersAreTakenOver()
    {
        const Fixture fixture;
        const TrashedItem row
            = TrashedItem::moved({ .label = "an app", .originalPath = "/a", .trashPath = "/b", .bytes = 7 });
        bool isDone = false;
        fixture.model->pathRemovals().removeBy(
            [&](const RemovalQueue::Watch &, RemovalJournal &) -> std::vector<PathRemoval::Removal> {
                return { { .path = "/a", .bytes = 2048, .trashed = row },
                    { .path = "/c", .error = u"It must stay."_s } };
            },
            u"Editor"_s, [&] { isDone = true; });
        fixture.removed();
        QVERIFY(isDone);
        QCOMPARE(fixture.model->pathRemovals().uninstallLog(),
            QStringList({ u"✓ Editor — 2.0 KB moved to the Trash. The space comes back when the Trash is "
                          "emptied."_s,
                u"✗ It must stay."_s }));
        QCOMPARE(fixture.model->books().ledger().items(), std::vector<TrashedItem>{ row });
        QCOMPARE(fixture.model->books().reclaimedSoFar(), qint64(2048));
        QVERIFY(!fixture.model->reclaims().freeNowOffer());
        QCOMPARE(fixture.model->scans().phase().kind, Phase::Kind::ready);
    }
};

QUILLBROOK_SUITE(TestPathRemovals, QCoreApplication)
#include "tst_PathRemovals.moc"
