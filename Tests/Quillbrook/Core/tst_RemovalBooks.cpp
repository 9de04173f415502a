// The books of all removals, on real files in a temporary home folder.

#include "Removal/Clearance.h"
#include "Removal/LedgerFormat.h"
#include "Support/FakeServices.h"
#include "Support/HomeOnDisk.h"
#include "Support/Suite.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QThread>

#include <atomic>
#include <limits>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Change = std::function<void(AppModel &model)>;

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

// Files in memory that nobody can read before `go`.
struct SlowFiles final : FileReading
{
    explicit SlowFiles(const MemoryFiles &all)
        : files(all)
    {
    }

    [[nodiscard]] std::optional<QByteArray> contents(const std::string &path, qsizetype limit) const override
    {
        if (path.ends_with("/ledger.json")) {
            reader = QThread::currentThread();
            if (reader != QCoreApplication::instance()->thread())
                go.acquire();
        }
        return files.contents(path, limit);
    }

    const MemoryFiles &files;
    mutable QSemaphore go{};
    mutable std::atomic<QThread *> reader = nullptr;
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
            // The journal is closed after that.
            fixture.known();
        } else {
            fixture.model->reclaims().reclaim({ fixture.finding(packages) }, false);
            fixture.settled();
        }
        QVERIFY(std::filesystem::is_empty(fixture.journalPath()));
        QCOMPARE(fixture.defaults.stored.value(reclaimedKey), QVariant(qint64(12288)));
    }

    // A journal of a hundred thousand moves takes seconds.
    void nothingGoesBeforeTheBooksAreRead()
    {
        FakeKit fake;
        FakeDesktop desktop;
        const TrashedItem row{ .id = u"A"_s, .label = u"a"_s, .originalPath = "/a", .trashPath = "/t/a" };
        const auto &folder = fake.kitServices.dataFolder;
        const auto store = TrashLedger::standardStore(folder);
        fake.stored.files[store] = LedgerFormat::encode({ row });
        fake.stored.files[RemovalJournal::besideLedger(store)] = JournalFormat::batch(70)
            + JournalFormat::begin({ .title = u"b"_s, .bytes = 5 }) + JournalFormat::whole();
        fake.defaults.setInteger(reclaimedKey, 70);
        SlowFiles slow(fake.stored);
        AppModel model(desktop.services(
            fake.with({ .reading = &slow, .http = &desktop.http, .utility = &desktop.utility })));
        qint64 totalAtItsBegin = 0;
        size_t rowsAtItsWork = 0;
        model.books().run({ .begin = [&] { totalAtItsBegin = model.books().reclaimedSoFar(); },
            .work = [&](const auto & /*watch*/, const Books &books) -> qint64 {
                rowsAtItsWork = books.ledger.items().size();
                return 0;
            } });
        QTRY_VERIFY(slow.reader);
        QVERIFY(slow.reader != thread());
        QTest::qWait(20);
        QVERIFY(model.removals().isBusy());
        QCOMPARE(totalAtItsBegin, qint64(0));
        slow.go.release();
        QTRY_VERIFY(!model.removals().isBusy());
        QCOMPARE(totalAtItsBegin, qint64(75));
        QCOMPARE(rowsAtItsWork, size_t(1));
    }

    void changedVolumesAreFlushed_data()
    {
        QTest::addColumn<Change>("change");
        QTest::addColumn<QString>("folder");
        const Finding finding{ .path = u"/drive/cache"_s, .rawPath = "/drive/cache" };
        QTest::newRow("a finding that is emptied") << Change([finding](AppModel &model) {
            auto emptied = finding;
            emptied.rule.emptyContentsOnly = true;
            model.reclaims().reclaim({ emptied }, true);
        }) << u"/drive/cache"_s;
        QTest::newRow("a finding that goes") << Change([finding](AppModel &model) {
            auto whole = finding;
            whole.rule.emptyContentsOnly = false;
            model.reclaims().reclaim({ whole }, true);
        }) << u"/drive"_s;
        QTest::newRow("things of a finding") << Change([finding](AppModel &model) {
            auto safe = finding;
            safe.rule.safety = Safety::safe;
            model.reclaims().removeItems({}, safe);
        }) << u"/drive/cache"_s;
        QTest::newRow("things of the Trash") << Change([](AppModel &model) {
            model.reclaims().purge({ { .trashPath = "/drive/.Trash-7/files/a" } }, [](const auto &) {});
        }) << u"/drive/.Trash-7/files"_s;
        QTest::newRow("things that were picked") << Change([](AppModel &model) {
            const auto work = [](const auto & /*watch*/, auto & /*journal*/) {
                return std::vector{ PathRemoval::Removal{ .path = "/drive/thing" } };
            };
            model.pathRemovals().removeBy(work, u"things"_s);
        }) << u"/drive"_s;
    }
    void changedVolumesAreFlushed()
    {
        QFETCH(Change, change);
        QFETCH(QString, folder);
        FakeServices fake;
        AppModel model(fake.services);
        change(model);
        QTRY_VERIFY(!model.removals().isBusy());
        QTRY_VERIFY(model.books().flushing().isFinished());
        QCOMPARE(fake.trash.flushed,
            (std::vector{ folder.toStdString(), fake.home.rawHomeDirectory(), fake.kitServices.dataFolder }));
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
