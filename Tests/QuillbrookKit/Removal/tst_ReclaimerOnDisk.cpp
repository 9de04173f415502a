// The reclaimer and the ledger on real files, with the desktop's real Trash in a made-up home folder, as an
// ordinary user.

#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Platform/Linux/Processes/LinuxRunningApps.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "RawText.h"
#include "Removal/Reclaimer.h"
#include "Removal/TrashLedger.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using Disposal = Reclaimer::Disposal;
using Names = std::vector<std::string>;

namespace {

// Deletes for good, but something happens just before the first time.
class InterruptedRemoval final : public FileRemoval
{
public:
    explicit InterruptedRemoval(std::function<void()> interruption)
        : m_interruption(std::move(interruption))
    {
    }

    std::expected<void, QString> remove(const std::string &path, const TakingJudge &judge) override
    {
        if (const auto interruption = std::exchange(m_interruption, nullptr))
            interruption();
        return m_removal.remove(path, judge);
    }

private:
    std::function<void()> m_interruption;
    LinuxFileRemoval m_removal;
};

struct Machine : TrashFixture
{
    LinuxFileRemoval removal;
    LinuxFileFacts facts;
    LinuxFileReading reading;
    LinuxFileWriting writing;

    [[nodiscard]] Reclaimer reclaimer(FileRemoval *other = nullptr)
    {
        return { .services = { .trash = trash,
                     .removal = other != nullptr ? *other : removal,
                     .files = facts,
                     .clock = clock },
            .home = home.path() };
    }
    [[nodiscard]] TrashLedger ledger()
    {
        return TrashLedger({ .reading = reading, .writing = writing, .files = facts, .trash = trash },
            TrashLedger::standardStore(home.path(".local/share")));
    }
    [[nodiscard]] Finding finding(const std::string &name, bool emptyContentsOnly = true) const
    {
        return { .rule = { .id = u"a.rule"_s,
                     .title = u"Caches"_s,
                     .safety = Safety::careful,
                     .emptyContentsOnly = emptyContentsOnly },
            .path = repairedText(home.path(name)),
            .rawPath = home.path(name),
            .bytes = 1000 };
    }
    [[nodiscard]] Names names(const std::string &folder) const
    {
        return TrashFixture::names(home.path(folder));
    }

    // A folder of everything that is not easy.
    void makeOddities() const
    {
        home.fileWith("elsewhere/kept", "kept");
        home.file(".cache/a\xFF", 10);
        home.file(".cache/a\nb", 10);
        home.file(".cache/.hidden/deep/file", 10);
        home.link(".cache/to a folder", "../elsewhere");
        home.link(".cache/to nothing", "nowhere");
        home.pipe(".cache/pipe");
        home.file(".cache/locked/module/file", 10);
        home.permissions(".cache/locked/module", 0555);
        home.permissions(".cache/locked", 0555);
    }
};

const Names oddities{ ".hidden", "a\nb", "a\xFF", "locked", "pipe", "to a folder", "to nothing" };

} // namespace

class TestReclaimerOnDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatARunningApplicationUsesStays_data()
    {
        const auto running = u"App is running. Close it, then try again."_s;
        const auto unknown = u"Whether App is running can't be told any more. Scan again, then decide."_s;
        const auto own = std::to_string(::getpid());
        QTest::addColumn<std::string>("pid");
        QTest::addColumn<Safety>("safety");
        QTest::addColumn<QString>("expected");
        QTest::newRow("not running, safe") << std::string() << Safety::safe << QString();
        QTest::newRow("not running, careful") << std::string() << Safety::careful << QString();
        QTest::newRow("running, safe") << own << Safety::safe << running;
        QTest::newRow("running, careful") << own << Safety::careful << running;
        QTest::newRow("can't be told, safe") << std::string("?") << Safety::safe << unknown;
        QTest::newRow("can't be told, careful") << std::string("?") << Safety::careful << QString();
    }
    void whatARunningApplicationUsesStays()
    {
        QFETCH(std::string, pid);
        QFETCH(Safety, safety);
        QFETCH(QString, expected);
        for (const auto disposal : { Disposal::toTrash, Disposal::permanent }) {
            Machine machine;
            machine.home.file("cache/a", 10);
            machine.home.folder("run");
            if (!pid.empty()) {
                machine.home.fileWith("run/.flatpak/1/info", "[Application]\nname=org.one.App\n");
                machine.home.fileWith("run/.flatpak/1/pid", pid);
            }
            const LinuxRunningApps apps(machine.reading, machine.home.path("run"));
            auto finding = machine.finding("cache");
            finding.rule.safety = safety;
            finding.applicationId = u"org.one.App"_s;
            finding.locationLabel = u"App"_s;
            auto reclaimer = machine.reclaimer();
            reclaimer.services.runningApps = &apps;
            const auto outcome = reclaimer.reclaim(finding, disposal);
            QCOMPARE(outcome.error.value_or(QString()), expected);
            QCOMPARE(outcome.bytesMoved, expected.isEmpty() ? 1000 : 0);
            QCOMPARE(machine.names("cache"), expected.isEmpty() ? Names() : Names{ "a" });
        }
    }

    void contentGoesToTheTrashWhateverItIs()
    {
        Machine machine;
        machine.makeOddities();
        const auto outcome = machine.reclaimer().reclaim(machine.finding(".cache"), Disposal::toTrash);
        QVERIFY2(!outcome.error, qPrintable(outcome.error.value_or(QString())));
        QCOMPARE(outcome.bytesMoved, 1000);
        QCOMPARE(outcome.trashed.size(), oddities.size());
        QCOMPARE(machine.names(".cache"), Names());
        QVERIFY(TrashFixture::isThere(machine.home.path(".cache")));
        QCOMPARE(machine.names(".local/share/Trash/files"), oddities);
        for (const auto &item : outcome.trashed) {
            QVERIFY(TrashFixture::isThere(item.trashPath));
            QVERIFY(!TrashFixture::isThere(item.originalPath));
        }
        QCOMPARE(TrashFixture::content(machine.home.path("elsewhere/kept")), "kept");
    }

    void contentGoesForGoodWhateverItIs()
    {
        Machine machine;
        machine.makeOddities();
        const auto outcome = machine.reclaimer().reclaim(machine.finding(".cache"), Disposal::permanent);
        QVERIFY2(!outcome.error, qPrintable(outcome.error.value_or(QString())));
        QCOMPARE(outcome.bytesMoved, 1000);
        QVERIFY(outcome.trashed.empty());
        QCOMPARE(machine.names(".cache"), Names());
        QVERIFY(TrashFixture::isThere(machine.home.path(".cache")));
        QVERIFY(!TrashFixture::isThere(machine.places.homeTrash));
        QCOMPARE(TrashFixture::content(machine.home.path("elsewhere/kept")), "kept");
    }

    // The bytes say where, in a home folder whose name is not text, and what goes keeps the name it has.
    void homeWhoseNameIsNotTextIsCleared()
    {
        Machine machine;
        machine.home.file("jos\xE9/cache/a", 10);
        machine.home.file("jos\xE9/cache/\xEF\xBB\xBF"
                          "b",
            10);
        auto reclaimer = machine.reclaimer();
        reclaimer.home = machine.home.path("jos\xE9");
        const auto finding = machine.finding("jos\xE9/cache");
        const auto outcome = reclaimer.reclaim(finding, Disposal::toTrash);
        QVERIFY2(!outcome.error, qPrintable(outcome.error.value_or(QString())));
        QCOMPARE(machine.names("jos\xE9/cache"), Names());
        QCOMPARE(outcome.trashed.size(), size_t{ 2 });
        QCOMPARE(outcome.trashed.back().label, u"Caches \u00B7 \uFEFFb"_s);
        machine.home.file("jos\xE9/cache/c", 10);
        QVERIFY(!reclaimer.reclaim(finding, Disposal::permanent).error);
        QCOMPARE(machine.names("jos\xE9/cache"), Names());
    }

    void wholeFindingGoesWithItsFolder_data()
    {
        QTest::addColumn<bool>("isPermanent");
        QTest::newRow("to the Trash") << false;
        QTest::newRow("for good") << true;
    }
    void wholeFindingGoesWithItsFolder()
    {
        QFETCH(bool, isPermanent);
        Machine machine;
        machine.makeOddities();
        const auto outcome = machine.reclaimer().reclaim(
            machine.finding(".cache", false), isPermanent ? Disposal::permanent : Disposal::toTrash);
        QVERIFY2(!outcome.error, qPrintable(outcome.error.value_or(QString())));
        QVERIFY(!TrashFixture::isThere(machine.home.path(".cache")));
        QCOMPARE(machine.names(".local/share/Trash/files"), isPermanent ? Names() : Names{ ".cache" });
        QCOMPARE(TrashFixture::content(machine.home.path("elsewhere/kept")), "kept");
    }

    void folderThatHasBecomeALinkIsNotEmptied()
    {
        for (const auto disposal : { Disposal::toTrash, Disposal::permanent }) {
            Machine machine;
            machine.home.fileWith("elsewhere/kept", "kept");
            machine.home.link(".cache", "elsewhere");
            const auto outcome = machine.reclaimer().reclaim(machine.finding(".cache"), disposal);
            QCOMPARE(outcome.bytesMoved, 0);
            QVERIFY(!outcome.error);
            QCOMPARE(TrashFixture::content(machine.home.path("elsewhere/kept")), "kept");
        }
    }

    void wholeFindingThatHasBecomeALinkGoesAsALink()
    {
        Machine machine;
        machine.home.fileWith("elsewhere/kept", "kept");
        machine.home.link(".cache", "elsewhere");
        const auto outcome
            = machine.reclaimer().reclaim(machine.finding(".cache", false), Disposal::permanent);
        QVERIFY(!outcome.error);
        QVERIFY(!TrashFixture::isThere(machine.home.path(".cache")));
        QCOMPARE(TrashFixture::content(machine.home.path("elsewhere/kept")), "kept");
    }

    void folderWithoutRightsKeepsItsThings()
    {
        Machine machine;
        machine.home.file(".cache/a");
        machine.home.file(".cache/b");
        machine.home.permissions(".cache", 0555);
        const auto outcome = machine.reclaimer().reclaim(machine.finding(".cache"), Disposal::toTrash);
        QCOMPARE(outcome.bytesMoved, 0);
        QCOMPARE(outcome.error, u"Could not reclaim b: You do not have permission."_s);
        QVERIFY(outcome.trashed.empty());
        QCOMPARE(machine.names(".cache"), Names({ "a", "b" }));
        QCOMPARE(machine.names(".local/share/Trash/info"), Names());
    }

    void folderThatCannotBeReadIsEmpty()
    {
        Machine machine;
        machine.home.file(".cache/a");
        machine.home.permissions(".cache", 0333);
        const auto outcome = machine.reclaimer().reclaim(machine.finding(".cache"), Disposal::permanent);
        QCOMPARE(outcome.bytesMoved, 0);
        QVERIFY(!outcome.error);
        machine.home.permissions(".cache", 0755);
        QCOMPARE(machine.names(".cache"), Names{ "a" });
    }

    void folderThatIsGoneIsEmptyAndTheFindingItselfIsToldOf()
    {
        Machine machine;
        QVERIFY(!machine.reclaimer().reclaim(machine.finding("gone"), Disposal::toTrash).error);
        const auto outcome = machine.reclaimer().reclaim(machine.finding("gone", false), Disposal::toTrash);
        QCOMPARE(outcome.error, u"Could not reclaim gone: It is not there any more."_s);
        QCOMPARE(outcome.bytesMoved, 0);
    }

    void fileThatVanishesOnTheWayIsToldAndTheRestGoes()
    {
        Machine machine;
        for (const auto *name : { "a", "b", "c" })
            machine.home.file(std::string(".cache/") + name);
        InterruptedRemoval interrupted([&] { ::unlink(machine.home.path(".cache/b").c_str()); });
        const auto outcome
            = machine.reclaimer(&interrupted).reclaim(machine.finding(".cache"), Disposal::permanent);
        QVERIFY(outcome.error);
        QVERIFY2(outcome.error->startsWith(u"Could not reclaim b: "_s), qPrintable(*outcome.error));
        QCOMPARE(outcome.bytesMoved, 1000);
        QCOMPARE(machine.names(".cache"), Names());
    }

    void trashIsEmptiedWithItsNotesAndNeverThroughItself()
    {
        Machine machine;
        machine.home.file("a/kept");
        machine.home.file("b\xFF\n");
        QVERIFY(machine.trash.move(machine.home.path("a")));
        QVERIFY(machine.trash.move(machine.home.path("b\xFF\n")));
        machine.home.file(".local/share/Trash/files/without a note");
        machine.home.file(".local/share/Trash/expunged/123/left");
        const auto before = TrashFixture::everything(machine.places.homeTrash);

        const auto files = machine.finding(".local/share/Trash/files");
        const auto refused = machine.reclaimer().reclaim(files, Disposal::toTrash);
        QCOMPARE(
            refused.error, u"This is already in the Trash. Delete it permanently to get the space back."_s);
        QCOMPARE(TrashFixture::everything(machine.places.homeTrash), before);

        const auto outcome = machine.reclaimer().reclaim(files, Disposal::permanent);
        QVERIFY2(!outcome.error, qPrintable(outcome.error.value_or(QString())));
        QCOMPARE(outcome.bytesMoved, 1000);
        QCOMPARE(machine.names(".local/share/Trash/files"), Names());
        QCOMPARE(machine.names(".local/share/Trash/info"), Names());
        QCOMPARE(machine.names(".local/share/Trash/expunged"), Names{ "123" });

        const auto leftovers = machine.finding(".local/share/Trash/expunged");
        QVERIFY(!machine.reclaimer().reclaim(leftovers, Disposal::permanent).error);
        QCOMPARE(machine.names(".local/share/Trash/expunged"), Names());
    }

    void findingThatHoldsTheTrashDoesNotTakeIt()
    {
        Machine machine;
        machine.home.file("thrown away");
        QVERIFY(machine.trash.move(machine.home.path("thrown away")));
        const auto before = TrashFixture::everything(machine.places.homeTrash);
        const auto outcome = machine.reclaimer().reclaim(machine.finding(".local/share"), Disposal::toTrash);
        QVERIFY(outcome.error);
        QCOMPARE(outcome.bytesMoved, 0);
        QCOMPARE(TrashFixture::everything(machine.places.homeTrash), before);
    }

    void whatWentIsKnownUntilItIsPurged()
    {
        Machine machine;
        machine.makeOddities();
        machine.home.file("somebody's");
        QVERIFY(machine.trash.move(machine.home.path("somebody's")));
        const auto outcome = machine.reclaimer().reclaim(machine.finding(".cache"), Disposal::toTrash);
        {
            auto ledger = machine.ledger();
            ledger.record(outcome.trashed);
        }
        auto ledger = machine.ledger();
        QCOMPARE(ledger.items(), outcome.trashed);
        QCOMPARE(ledger.pendingCount(), qsizetype(oddities.size()));
        QCOMPARE(ledger.pendingBytes(), qint64(oddities.size()) * (1000 / qint64(oddities.size())));
        const auto purged = ledger.purge();
        QCOMPARE(purged.removed, qsizetype(oddities.size()));
        QCOMPARE(machine.names(".local/share/Trash/files"), Names{ "somebody's" });
        QCOMPARE(machine.names(".local/share/Trash/info"), Names{ "somebody's.trashinfo" });
        QVERIFY(machine.ledger().items().empty());
        QCOMPARE(TrashFixture::content(machine.home.path("elsewhere/kept")), "kept");
    }

    void whatWentComesBackAsItWas()
    {
        Machine machine;
        machine.makeOddities();
        // Looking at everything would wait for somebody to write into it.
        QCOMPARE(::unlink(machine.home.path(".cache/pipe").c_str()), 0);
        const auto before = TrashFixture::everything(machine.home.path(".cache"));
        auto ledger = machine.ledger();
        ledger.record(
            machine.reclaimer().reclaim(machine.finding(".cache", false), Disposal::toTrash).trashed);
        QCOMPARE(ledger.pendingCount(), 1);
        QVERIFY(ledger.restore(ledger.items().front()));
        QCOMPARE(TrashFixture::everything(machine.home.path(".cache")), before);
        QCOMPARE(machine.names(".local/share/Trash/info"), Names());
        QVERIFY(machine.ledger().items().empty());
    }

    void whatTheUserTookBackAndThrewAwayAgainIsNotPurged()
    {
        Machine machine;
        machine.home.fileWith(".cache/data", "kept");
        auto ledger = machine.ledger();
        ledger.record(machine.reclaimer().reclaim(machine.finding(".cache"), Disposal::toTrash).trashed);
        const auto place = ledger.items().front().trashPath;
        QVERIFY(machine.trash.restore(place, machine.home.path(".cache/data")));
        machine.clock.moment = machine.clock.moment.addDays(3);
        QCOMPARE(machine.trash.move(machine.home.path(".cache/data")), place);
        QTest::ignoreMessage(QtWarningMsg,
            qUtf8Printable(
                u"Quillbrook: could not purge %1 \u2014 Something else lies in the Trash under its "
                "name by now."_s.arg(QString::fromStdString(place))));
        QCOMPARE(ledger.purge(), TrashLedger::Purged());
        QCOMPARE(TrashFixture::content(place), "kept");
    }

    void ledgerThatNamesOtherPlacesDeletesNothing()
    {
        Machine machine;
        machine.home.fileWith("Documents/kept", "kept");
        machine.home.file("thrown away/inner");
        const auto trashed = machine.trash.move(machine.home.path("thrown away"));
        QVERIFY(trashed);
        auto ledger = machine.ledger();
        std::vector<TrashedItem> rows;
        for (const auto &path : { machine.home.path("Documents"), machine.places.homeTrash,
                 machine.places.homeTrash + "/files", *trashed + "/inner", *trashed + "/../../../.." }) {
            rows.push_back({ .id = QString::number(rows.size()), .trashPath = path });
            QTest::ignoreMessage(QtWarningMsg,
                qUtf8Printable(u"Quillbrook: could not purge %1 \u2014 It is not in the Trash."_s.arg(
                    QString::fromStdString(path))));
        }
        ledger.record(rows);
        const auto before = TrashFixture::everything(machine.places.homeTrash);
        QCOMPARE(ledger.purge(), TrashLedger::Purged());
        QCOMPARE(TrashFixture::everything(machine.places.homeTrash), before);
        QCOMPARE(TrashFixture::content(machine.home.path("Documents/kept")), "kept");
    }
};

QUILLBROOK_SUITE(TestReclaimerOnDisk, QCoreApplication, giveUpRoot)
#include "tst_ReclaimerOnDisk.moc"
