// Clearing findings, and the Trash after them, on a disk on which nothing is free.

#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Removal/Reclaimer.h"
#include "Removal/TrashLedger.h"
#include "Support/SmallDisk.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using Disposal = Reclaimer::Disposal;
using Names = std::vector<std::string>;

namespace {

QString whyNotPermitted;

// A home folder with a cache of five files on a small disk.
struct Machine
{
    Machine()
    {
        for (int i = 0; i < 5; ++i)
            user.home.file(".cache/" + std::to_string(i), 100);
    }

    [[nodiscard]] Reclaimer reclaimer()
    {
        return { .services = { .trash = user.trash, .removal = removal, .files = facts, .clock = user.clock },
            .home = user.home.path() };
    }
    [[nodiscard]] TrashLedger ledger()
    {
        return TrashLedger({ .reading = reading, .writing = writing, .files = facts, .trash = user.trash },
            TrashLedger::standardStore(user.home.path(".local/share")));
    }
    [[nodiscard]] Finding finding() const
    {
        return { .rule = { .id = u"a.rule"_s, .title = u"Caches"_s, .safety = Safety::safe },
            .path = user.home.text(".cache"),
            .rawPath = user.home.path(".cache"),
            .bytes = 500 };
    }
    [[nodiscard]] size_t filesIn(const std::string &folder) const
    {
        return TrashFixture::names(user.home.path(folder)).size();
    }

    SmallDisk disk;
    TrashFixture user{ disk.path() };
    LinuxFileRemoval removal;
    LinuxFileFacts facts;
    LinuxFileReading reading;
    LinuxFileWriting writing{ &user.reserve };
};

} // namespace

class TestReclaimerOnFullDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!whyNotPermitted.isEmpty())
            QSKIP(qPrintable(whyNotPermitted));
    }

    void withoutAReserveAllStaysWhereItIs()
    {
        Machine machine;
        machine.user.reserve.isKept = false;
        machine.disk.fill();
        const auto outcome = machine.reclaimer().reclaim(machine.finding(), Disposal::toTrash);
        QCOMPARE(outcome.error, u"Could not reclaim 4: There is no space left on the disk."_s);
        QCOMPARE(outcome.bytesMoved, 0);
        QCOMPARE(machine.filesIn(".cache"), size_t{ 5 });
        QCOMPARE(machine.filesIn(".local/share/Trash/files"), size_t{ 0 });
        QCOMPARE(machine.filesIn(".local/share/Trash/info"), size_t{ 0 });
    }

    void withTheReserveAllGoesAndIsBookedAndPurged()
    {
        Machine machine;
        machine.disk.keep(machine.user.reserve, 128 * 1024);
        machine.disk.fill();
        const auto outcome = machine.reclaimer().reclaim(machine.finding(), Disposal::toTrash);
        QVERIFY2(!outcome.error, qPrintable(outcome.error.value_or(QString())));
        QCOMPARE(machine.filesIn(".cache"), size_t{ 0 });
        auto ledger = machine.ledger();
        ledger.record(outcome.trashed);
        QCOMPARE(machine.ledger().items(), outcome.trashed);

        machine.disk.fill();
        machine.user.reserve.isKept = false;
        QCOMPARE(ledger.purge(), (TrashLedger::Purged{ .removed = 5, .bytes = 500 }));
        QCOMPARE(machine.filesIn(".local/share/Trash/files"), size_t{ 0 });
        QCOMPARE(machine.filesIn(".local/share/Trash/info"), size_t{ 0 });
        QVERIFY(machine.ledger().items().empty());
    }

    void forGoodItNeedsNoSpace()
    {
        Machine machine;
        machine.user.reserve.isKept = false;
        machine.disk.fill();
        const auto outcome = machine.reclaimer().reclaim(machine.finding(), Disposal::permanent);
        QVERIFY2(!outcome.error, qPrintable(outcome.error.value_or(QString())));
        QCOMPARE(machine.filesIn(".cache"), size_t{ 0 });
        QCOMPARE(machine.user.reserve.released, 0);
    }
};

QUILLBROOK_SUITE(TestReclaimerOnFullDisk, QCoreApplication, [] { whyNotPermitted = PrivateMounts::enter(); })
#include "tst_ReclaimerOnFullDisk.moc"
