// What the reclaimer asks of the machine, and what it says. The real disk is in tst_ReclaimerOnDisk.cpp.

#include "Removal/Reclaimer.h"
#include "Support/FakeClock.h"
#include "Support/FakeTrash.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using Disposal = Reclaimer::Disposal;
using Asked = std::vector<std::string>;

Q_DECLARE_METATYPE(Reclaimer::Disposal)

namespace {

// A home folder with one finding in it, whose folder is real and whose fate is made up.
struct Machine
{
    Machine()
    {
        trash.folder = tree.path("trash");
        tree.folder("home/cache");
    }

    [[nodiscard]] Reclaimer reclaimer()
    {
        return { .services = { .trash = trash, .removal = trash, .files = trash, .clock = clock },
            .home = tree.path("home") };
    }

    [[nodiscard]] Finding finding(const QString &path, qint64 bytes = 1000) const
    {
        return { .id = Finding::idFor(u"a.rule"_s, path),
            .rule = { .id = u"a.rule"_s, .title = u"Some Caches"_s, .safety = Safety::safe },
            .path = path,
            .rawPath = path.toStdString(),
            .bytes = bytes };
    }
    [[nodiscard]] Finding caches(qint64 bytes = 1000) const
    {
        return finding(tree.text("home/cache"), bytes);
    }

    void file(const std::string &name)
    {
        tree.file("home/cache/" + name);
        trash.things.insert(tree.path("home/cache/" + name));
    }

    TempTree tree;
    FakeTrash trash;
    FakeClock clock;
};

} // namespace

class TestReclaimer : public QObject
{
    Q_OBJECT

    static void bothDisposals()
    {
        QTest::addColumn<Disposal>("disposal");
        QTest::newRow("to the Trash") << Disposal::toTrash;
        QTest::newRow("for good") << Disposal::permanent;
    }

private Q_SLOTS:
    void reportOnlyIsLeftAlone_data() { bothDisposals(); }
    void reportOnlyIsLeftAlone()
    {
        QFETCH(Disposal, disposal);
        Machine machine;
        machine.file("a");
        auto finding = machine.caches();
        finding.rule.safety = Safety::reportOnly;
        const auto outcome = machine.reclaimer().reclaim(finding, disposal);
        const Reclaimer::Outcome expected{ .finding = finding,
            .permanent = disposal == Disposal::permanent,
            .error = u"\"Some Caches\" is report-only and cannot be removed by Quillbrook."_s };
        QVERIFY(outcome == expected);
        QVERIFY(machine.trash.asked.empty());
    }

    void outsideTheHomeFolderNothingIsTouched_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("home itself") << u"HOME"_s;
        QTest::newRow("home with a slash") << u"HOME/"_s;
        QTest::newRow("home by way of something in it") << u"HOME/cache/.."_s;
        QTest::newRow("above it by way of something in it") << u"HOME/cache/../../other"_s;
        QTest::newRow("a folder that begins like it") << u"HOMEBASE/cache"_s;
        QTest::newRow("somewhere else") << u"/var/cache"_s;
        QTest::newRow("relative") << u"cache"_s;
        QTest::newRow("empty") << u""_s;
    }
    void outsideTheHomeFolderNothingIsTouched()
    {
        QFETCH(QString, path);
        Machine machine;
        machine.tree.file("other/a");
        machine.tree.file("homeBASE/cache/a");
        path.replace(u"HOME"_s, machine.tree.text("home"));
        for (const auto disposal : { Disposal::toTrash, Disposal::permanent }) {
            const auto outcome = machine.reclaimer().reclaim(machine.finding(path), disposal);
            QCOMPARE(outcome.error, u"Refusing to touch %1: outside the home directory."_s.arg(path));
            QCOMPARE(outcome.bytesMoved, 0);
        }
        QVERIFY(machine.trash.asked.empty());
    }

    void withoutAHomeFolderNothingIsTouched_data()
    {
        QTest::addColumn<QString>("home");
        QTest::newRow("empty") << u""_s;
        QTest::newRow("the whole disk") << u"/"_s;
        QTest::newRow("relative") << u"home"_s;
    }
    void withoutAHomeFolderNothingIsTouched()
    {
        QFETCH(QString, home);
        Machine machine;
        machine.file("a");
        auto reclaimer = machine.reclaimer();
        reclaimer.home = home.toStdString();
        QVERIFY(reclaimer.reclaim(machine.caches(), Disposal::permanent).error);
        QVERIFY(machine.trash.asked.empty());
    }

    void redirectedFindingIsLeftAlone_data() { bothDisposals(); }
    void redirectedFindingIsLeftAlone()
    {
        QFETCH(Disposal, disposal);
        Machine machine;
        machine.file("a");
        auto finding = machine.caches();
        finding.redirectedOffVolume = true;
        const auto outcome = machine.reclaimer().reclaim(finding, disposal);
        QCOMPARE(outcome.error, u"Symlinked to another volume \u2014 removing it would free nothing here."_s);
        QCOMPARE(outcome.bytesMoved, 0);
        QVERIFY(machine.trash.asked.empty());
    }

    void theFirstReasonIsTheOneThatIsTold()
    {
        Machine machine;
        auto finding = machine.finding(u"/var/cache"_s);
        finding.redirectedOffVolume = true;
        QVERIFY(machine.reclaimer().reclaim(finding, Disposal::toTrash).error->startsWith(u"Refusing"_s));
        finding.rule.safety = Safety::reportOnly;
        QVERIFY(machine.reclaimer().reclaim(finding, Disposal::toTrash).error->contains(u"report-only"_s));
    }

    void eachThingGetsARowWithItsShare()
    {
        Machine machine;
        machine.file("a");
        machine.file(".hidden");
        machine.file("c");
        const auto finding = machine.caches(10);
        const auto outcome = machine.reclaimer().reclaim(finding, Disposal::toTrash);
        QCOMPARE(outcome.bytesMoved, 10);
        QVERIFY(!outcome.error);
        QVERIFY(!outcome.permanent);
        QVERIFY(outcome.finding == finding);
        QCOMPARE(outcome.trashed.size(), size_t{ 3 });
        QSet<QString> ids;
        for (const auto &item : outcome.trashed) {
            QCOMPARE(item.bytes, 3);
            QCOMPARE(item.movedAt, machine.clock.moment);
            QVERIFY(!item.byRule);
            ids.insert(item.id);
        }
        QCOMPARE(ids.size(), 3);
        QCOMPARE(outcome.trashed[0].label, u"Some Caches \u00B7 .hidden"_s);
        QCOMPARE(outcome.trashed[0].originalPath, machine.tree.path("home/cache/.hidden"));
        QCOMPARE(outcome.trashed[0].trashPath, machine.tree.path("trash/files/.hidden"));
        QCOMPARE(outcome.trashed[2].label, u"Some Caches \u00B7 c"_s);
    }

    void forGoodNothingGoesThroughTheTrash()
    {
        Machine machine;
        machine.file("a");
        machine.file("b");
        const auto outcome = machine.reclaimer().reclaim(machine.caches(), Disposal::permanent);
        QCOMPARE(outcome.bytesMoved, 1000);
        QVERIFY(outcome.permanent);
        QVERIFY(outcome.trashed.empty());
        const Asked expected{ "remove " + machine.tree.path("home/cache/a"),
            "remove " + machine.tree.path("home/cache/b") };
        QCOMPARE(machine.trash.asked, expected);
    }

    void oneThatStaysIsToldAndAllCountsAsGone()
    {
        Machine machine;
        for (const auto *name : { "a", "b", "c" })
            machine.file(name);
        machine.trash.stuck[machine.tree.path("home/cache/b")] = u"Permission denied."_s;
        const auto outcome = machine.reclaimer().reclaim(machine.caches(10), Disposal::toTrash);
        QCOMPARE(outcome.bytesMoved, 10);
        QCOMPARE(outcome.error, u"Could not reclaim b: Permission denied."_s);
        QCOMPARE(outcome.trashed.size(), size_t{ 2 });
        QCOMPARE(outcome.trashed[0].bytes, 5);
        QCOMPARE(outcome.trashed[1].bytes, 5);
    }

    void theLastFailureIsTheOneThatIsTold()
    {
        Machine machine;
        for (const auto *name : { "a", "b", "c" })
            machine.file(name);
        machine.trash.stuck[machine.tree.path("home/cache/a")] = u"The first."_s;
        machine.trash.stuck[machine.tree.path("home/cache/b")] = u"The second."_s;
        const auto outcome = machine.reclaimer().reclaim(machine.caches(), Disposal::permanent);
        QCOMPARE(outcome.error, u"Could not reclaim b: The second."_s);
    }

    void whenNothingGoesNothingCounts_data() { bothDisposals(); }
    void whenNothingGoesNothingCounts()
    {
        QFETCH(Disposal, disposal);
        Machine machine;
        machine.file("a");
        machine.trash.stuck[machine.tree.path("home/cache/a")] = u"No."_s;
        const auto outcome = machine.reclaimer().reclaim(machine.caches(), disposal);
        QCOMPARE(outcome.bytesMoved, 0);
        QCOMPARE(outcome.error, u"Could not reclaim a: No."_s);
        QVERIFY(outcome.trashed.empty());
        // A failed move is never made a deletion.
        QCOMPARE(machine.trash.asked.size(), size_t{ 1 });
    }

    void emptyFolderIsNoFailure_data() { bothDisposals(); }
    void emptyFolderIsNoFailure()
    {
        QFETCH(Disposal, disposal);
        Machine machine;
        for (const auto *name : { "home/cache", "home/nothing" }) {
            const auto outcome
                = machine.reclaimer().reclaim(machine.finding(machine.tree.text(name)), disposal);
            QVERIFY(!outcome.error);
            QCOMPARE(outcome.bytesMoved, 0);
        }
        QVERIFY(machine.trash.asked.empty());
    }

    void findingItselfGoesWhereItsRuleSaysSo()
    {
        Machine machine;
        machine.file("a");
        machine.trash.things.insert(machine.tree.path("home/cache"));
        auto finding = machine.caches(7);
        finding.rule.emptyContentsOnly = false;
        const auto outcome = machine.reclaimer().reclaim(finding, Disposal::toTrash);
        QCOMPARE(machine.trash.asked, Asked{ "move " + machine.tree.path("home/cache") });
        QCOMPARE(outcome.trashed.size(), size_t{ 1 });
        QCOMPARE(outcome.trashed[0].label, u"Some Caches \u00B7 cache"_s);
        QCOMPARE(outcome.trashed[0].bytes, 7);
    }

    void trashIsNotMovedToTheTrash()
    {
        Machine machine;
        machine.trash.folder = machine.tree.path("home/trash");
        machine.tree.file("home/trash/files/a");
        const auto finding = machine.finding(machine.tree.text("home/trash/files"));
        const auto outcome = machine.reclaimer().reclaim(finding, Disposal::toTrash);
        QCOMPARE(
            outcome.error, u"This is already in the Trash. Delete it permanently to get the space back."_s);
        QCOMPARE(outcome.bytesMoved, 0);
        QVERIFY(machine.trash.asked.empty());
    }

    void trashIsClearedThingByThing()
    {
        Machine machine;
        machine.trash.folder = machine.tree.path("home/trash");
        const auto a = machine.tree.path("home/trash/files/a");
        const auto b = machine.tree.path("home/trash/files/b");
        machine.trash.things = { a, b };
        const auto finding = machine.finding(machine.tree.text("home/trash/files"), 50);
        const auto outcome = machine.reclaimer().reclaim(finding, Disposal::permanent);
        QVERIFY(!outcome.error);
        QCOMPARE(outcome.bytesMoved, 50);
        QCOMPARE(machine.trash.asked, (Asked{ "erase " + a, "erase " + b }));
    }

    void allAreReclaimedInOrderWhateverFails()
    {
        Machine machine;
        machine.file("a");
        auto first = machine.caches();
        first.rule.safety = Safety::reportOnly;
        const auto last = machine.caches();
        const auto outcomes = machine.reclaimer().reclaimAll({ first, last }, Disposal::permanent);
        QCOMPARE(outcomes.size(), size_t{ 2 });
        QVERIFY(outcomes[0].finding == first);
        QVERIFY(outcomes[0].error);
        QVERIFY(outcomes[1].finding == last);
        QCOMPARE(outcomes[1].bytesMoved, last.bytes);
        QVERIFY(machine.reclaimer().reclaimAll({}, Disposal::toTrash).empty());
    }
};

QUILLBROOK_SUITE(TestReclaimer, QCoreApplication)
#include "tst_Reclaimer.moc"
