#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Removal/LedgerFormat.h"
#include "Removal/TrashLedger.h"
#include "Support/FakeTrash.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTest>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr int rounds = 60;
constexpr unsigned longestLifeMicroseconds = 40'000;
constexpr size_t rowsASave = 100;
constexpr size_t savesARound = 8;

std::vector<TrashedItem> rows(size_t save)
{
    const TrashedItem item{ .id = QString::number(save),
        .label = u"Thing"_s,
        .originalPath = "/home/someone/.cache/a\xFF\n" + std::string(100, 'o'),
        .trashPath = "/home/someone/.local/share/Trash/files/" + std::string(100, 't'),
        .bytes = 1,
        .movedAt = QDateTime::fromMSecsSinceEpoch(1'700'000'000'000, Qt::UTC) };
    return std::vector(rowsASave, item);
}

// Saves again and again, each time with more, until it is killed; begins anew with nothing in between.
[[noreturn]] void saveForEver(const std::string &store)
{
    LinuxFileReading reading;
    LinuxFileWriting writing;
    FakeTrash trash;
    for (;;) {
        std::ignore = writing.replace(store, "[]");
        TrashLedger ledger({ .reading = reading, .writing = writing, .files = trash, .trash = trash }, store);
        for (size_t save = 0; save < savesARound; ++save)
            ledger.record(rows(save));
    }
}

// Whether `items` is what stood in the ledger after one of the saves.
bool isAfterASave(const std::vector<TrashedItem> &items)
{
    if (items.size() % rowsASave != 0)
        return false;
    std::vector<TrashedItem> expected;
    for (size_t save = 0; save * rowsASave < items.size(); ++save)
        std::ranges::copy(rows(save), std::back_inserter(expected));
    return items == expected;
}

} // namespace

class TestLedgerKilled : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whenAProgramIsKilledItsFileIsWhole()
    {
        const TempTree tree;
        const auto store = tree.path("Quillbrook/ledger.json");
        QRandomGenerator random(4711);
        std::ignore = LinuxFileWriting().replace(store, "[]");
        QSet<size_t> sizes;
        for (int round = 0; round < rounds; ++round) {
            const auto child = ::fork();
            QVERIFY(child >= 0);
            if (child == 0)
                saveForEver(store);
            ::usleep(random.bounded(longestLifeMicroseconds));
            ::kill(child, SIGKILL);
            int status = 0;
            QCOMPARE(::waitpid(child, &status, 0), child);
            QVERIFY(WIFSIGNALED(status));

            const auto stored = LinuxFileReading().contents(store, 1 << 28);
            QVERIFY2(stored, "the file is gone");
            const auto items = LedgerFormat::decode(*stored);
            QVERIFY2(items, "the file holds no ledger");
            QVERIFY2(isAfterASave(*items), qPrintable(QString::number(items->size())));
            sizes.insert(items->size());
            // At most the one that was being written.
            QVERIFY(QDir(tree.text("Quillbrook")).entryList(QDir::Files | QDir::Hidden).size() <= 2);
        }
        QVERIFY2(sizes.size() > 2, "no child lived long enough to save");
    }

    void theNextProgramCarriesOn()
    {
        const TempTree tree;
        const auto store = tree.path("ledger.json");
        tree.fileWith("ledger.json", LedgerFormat::encode(rows(0)).toStdString());
        tree.fileWith("ledger.json.new", LedgerFormat::encode(rows(1)).first(1000).toStdString());
        LinuxFileReading reading;
        LinuxFileWriting writing;
        FakeTrash trash;
        const LedgerServices services{
            .reading = reading, .writing = writing, .files = trash, .trash = trash
        };
        TrashLedger ledger(services, store);
        QCOMPARE(ledger.items(), rows(0));
        ledger.record(rows(1));
        QVERIFY(isAfterASave(TrashLedger(services, store).items()));
        QCOMPARE(QDir(tree.text()).entryList(QDir::Files | QDir::Hidden), QStringList{ u"ledger.json"_s });
    }
};

QUILLBROOK_SUITE(TestLedgerKilled, QCoreApplication)
#include "tst_LedgerKilled.moc"
