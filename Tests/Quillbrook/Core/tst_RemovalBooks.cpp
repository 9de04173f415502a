// The books of all removals, on real files in a temporary home folder.

#include "Removal/Clearance.h"
#include "Support/HomeOnDisk.h"
#include "Support/Suite.h"

#include <QSignalSpy>

#include <limits>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr auto packages = ".npm/_cacache";
constexpr auto logs = ".gradle/daemon";
const auto reclaimedKey = u"Quillbrook.reclaimedBytes"_s;

// Two findings: packages of two files, 12 KB in all, and logs of one.
struct Fixture : HomeOnDisk
{
    Fixture()
    {
        tree.file("home/.npm/_cacache/one", 4096);
        tree.file("home/.npm/_cacache/two", 8192);
        tree.file("home/.gradle/daemon/log", 4096);
        scan();
    }

    // Moves a finding to the Trash and ends there, as a kill before the books does.
    void clearWithoutBooks(const Finding &finding)
    {
        RemovalJournal journal(disk.reading, disk.writing, journalPath());
        const RemovalServices removal{
            .trash = disk.trash, .removal = disk.removal, .files = disk.files, .clock = clock
        };
        Clearance clearance(removal, journal, home.home.toStdString());
        journal.startBatch(0);
        QCOMPARE(clearance.clear({ .findings = { finding } }, {}).size(), size_t(1));
    }
    [[nodiscard]] std::string journalPath() const
    {
        return RemovalJournal::besideLedger(TrashLedger::standardStore(dataFolder));
    }
};

} // namespace

class TestRemovalBooks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runningTotalSurvivesARestart()
    {
        Fixture fixture;
        QSignalSpy totals(&fixture.model->books(), &RemovalBooks::reclaimedSoFarChanged);
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        fixture.removed();
        QCOMPARE(totals.count(), 1);
        fixture.settled();
        QCOMPARE(fixture.defaults.integer(reclaimedKey), std::optional<qint64>(12288));
        fixture.start();
        QCOMPARE(fixture.model->books().reclaimedSoFar(), qint64(12288));
    }

    void damagedTotalIsTakenForWhatItCanBe()
    {
        constexpr auto most = std::numeric_limits<qint64>::max();
        Fixture fixture;
        fixture.defaults.setInteger(reclaimedKey, most - 1);
        fixture.start();
        fixture.scan();
        fixture.model->reclaims().reclaim({ fixture.finding(logs) }, false);
        fixture.removed();
        QCOMPARE(fixture.model->books().reclaimedSoFar(), most);
        fixture.settled();
        fixture.defaults.setInteger(reclaimedKey, -5);
        fixture.start();
        QCOMPARE(fixture.model->books().reclaimedSoFar(), qint64(0));
    }

    void whatAKillLeftIsTakenUp()
    {
        Fixture fixture;
        fixture.clearWithoutBooks(fixture.finding(packages));
        for (int starts = 0; starts < 2; ++starts) {
            fixture.start();
            QCOMPARE(fixture.model->books().pending(), (TrashLedger::Pending{ .count = 2, .bytes = 12288 }));
            QCOMPARE(fixture.model->books().reclaimedSoFar(), qint64(12288));
        }
    }

    // A kill right after that finds the total in the one or in the other.
    void totalIsStoredBeforeTheJournalForgets_data()
    {
        QTest::addColumn<bool>("isTakenUp");
        QTest::newRow("by a removal") << false;
        QTest::newRow("by the start after a kill") << true;
    }
    void totalIsStoredBeforeTheJournalForgets()
    {
        QFETCH(bool, isTakenUp);
        Fixture fixture;
        if (isTakenUp) {
            fixture.clearWithoutBooks(fixture.finding(packages));
            fixture.start();
        } else {
            fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
            fixture.settled();
        }
        QVERIFY(std::filesystem::is_empty(fixture.journalPath()));
        QCOMPARE(fixture.defaults.stored.value(reclaimedKey), QVariant(qint64(12288)));
    }

    void whatIsKeptIsForgottenOnceItHasLeftTheTrash()
    {
        const Fixture fixture;
        fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
        fixture.settled();
        auto &books = fixture.model->books();
        const auto first = books.held().front().item;
        books.toggleKept(first.id);
        QCOMPARE(books.kept(), QSet{ first.id });
        QCOMPARE(books.ticked(), std::vector{ books.held().back() });
        QCOMPARE(books.deletable(), books.ticked());
        QCOMPARE(books.pending().count, 2);
        std::filesystem::remove(first.trashPath);
        books.refresh();
        fixture.known();
        QVERIFY(books.kept().isEmpty());
        QCOMPARE(books.held().size(), size_t(1));
    }
};

QUILLBROOK_SUITE(TestRemovalBooks, QCoreApplication)
#include "tst_RemovalBooks.moc"
