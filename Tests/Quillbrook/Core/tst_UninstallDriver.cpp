// What is told of an uninstalling, on real files in a temporary home folder.

#include "Support/HomeOnDisk.h"
#include "Support/Suite.h"

#include <QThread>

#include <atomic>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

struct Machine : HomeOnDisk
{
    InstalledApp flatpak{ .app
        = { .path = path("app"), .name = u"One"_s, .bundleID = u"org.one.App"_s, .bytes = 2048 },
        .origin = AppOrigin::flatpakOfUser,
        .runtimes = { u"runtime/a/b/c"_s },
        .isMeasured = true };
    InstalledApp appImage{ .app = { .path = path("Draw.AppImage"), .name = u"Draw"_s, .bundleID = u"draw"_s },
        .origin = AppOrigin::appImage,
        .goes = { path("Draw.AppImage") } };

    Machine()
    {
        tree.file("home/Draw.AppImage", 4096);
        tree.file("home/.cache/draw/x", 4096);
    }

    [[nodiscard]] UninstallPlan plan(const InstalledApp &app) const
    {
        auto planning = model->uninstalls().plan(app, {});
        planning.waitForFinished();
        return planning.result();
    }
    // Waits for the end.
    void uninstall(const InstalledApp &app, const std::vector<Leftover> &leftovers) const
    {
        bool isDone = false;
        model->uninstalls().uninstall(plan(app), leftovers, [&] { isDone = true; });
        QVERIFY(!isDone);
        QTRY_VERIFY(isDone);
    }
    [[nodiscard]] QStringList log() const { return model->pathRemovals().uninstallLog(); }
    [[nodiscard]] Leftover cache() const
    {
        return { .path = path(".cache/draw"), .kind = LeftoverKind::cache, .bytes = 4096 };
    }
};

} // namespace

class TestUninstallDriver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void planMeasuresWhatIsNotMeasured()
    {
        const Machine machine;
        QCOMPARE(machine.plan(machine.appImage).plan.app.bytes, qint64(4096));
        QCOMPARE(machine.plan(machine.flatpak).runtimeBytes, qint64(4096));
    }

    void aPlanTakesThePlaceOfAnother()
    {
        Machine machine;
        const auto folder = machine.path(".cache/draw");
        std::atomic<int> calls = 0;
        // The first measures on and on, as long as there is a size to be told.
        machine.applications.whilePlanning = [&](const HostPlanRequest &request) {
            const bool isFirst = ++calls == 1;
            while (isFirst && request.measure(folder) == 4096)
                QThread::msleep(1);
        };
        const auto first = machine.model->uninstalls().plan(machine.appImage, {});
        QTRY_COMPARE(calls.load(), 1);
        const auto second = machine.model->uninstalls().plan(machine.flatpak, {});
        QTRY_VERIFY(first.isFinished() && second.isFinished());
        QCOMPARE(second.result().runtimeBytes, qint64(4096));
    }

    void whatWentIsOnTheLedgerAndInTheLog()
    {
        const Machine machine;
        machine.uninstall(machine.appImage, { machine.cache() });
        QCOMPARE(machine.log(),
            QStringList{
                u"✓ Draw — 8.0 KB moved to the Trash. The space comes back when the Trash is emptied."_s });
        QCOMPARE(
            machine.model->books().ledger().pending(), (TrashLedger::Pending{ .count = 2, .bytes = 8192 }));
        QCOMPARE(machine.model->books().reclaimedSoFar(), qint64(8192));
        QVERIFY(machine.isTrashed("Draw.AppImage") && machine.isTrashed("draw"));
    }

    void whatStartedMeanwhileLosesNothing()
    {
        Machine machine;
        machine.applications.running = true;
        machine.uninstall(machine.appImage, { machine.cache() });
        QCOMPARE(machine.log(), QStringList{ u"✗ Draw is running — quit it and try again."_s });
        QVERIFY(machine.has("Draw.AppImage") && machine.has(".cache/draw"));
    }

    void aFlatpaksOwnBytesAreToldApart()
    {
        const Machine machine;
        machine.uninstall(machine.flatpak, { machine.cache() });
        QCOMPARE(machine.log(),
            (QStringList{ u"✓ One — 2.0 KB removed"_s,
                u"✓ One — 4.0 KB moved to the Trash. The space comes back when the Trash is emptied."_s }));
        QCOMPARE(machine.model->books().reclaimedSoFar(), qint64(4096));
    }

    void aFlatpakThatFailsIsTold()
    {
        Machine machine;
        machine.applications.failure = u"One could not be uninstalled: no room"_s;
        machine.uninstall(machine.flatpak, { machine.cache() });
        QCOMPARE(machine.log().constFirst(), u"✗ One could not be uninstalled: no room"_s);
        QCOMPARE(machine.model->books().ledger().pending().count, 1);
    }

    void orphansGoWithTheirOwnSubject()
    {
        const Machine machine;
        bool isDone = false;
        machine.model->uninstalls().removeOrphans({ { .path = machine.path(".cache/draw"),
                                                      .bundleID = u"a.b.my-draw"_s,
                                                      .kind = LeftoverKind::cache,
                                                      .bytes = 4096 } },
            [&] { isDone = true; });
        QTRY_VERIFY(isDone);
        QCOMPARE(machine.log(),
            QStringList{
                u"✓ leftovers — 4.0 KB moved to the Trash. The space comes back when the Trash is emptied."_s });
        QCOMPARE(machine.model->books().ledger().items().at(0).label, u"My Draw · Cache"_s);
    }

    void withoutOrphansNothingStarts()
    {
        const Machine machine;
        bool isDone = false;
        machine.model->uninstalls().removeOrphans({}, [&] { isDone = true; });
        QVERIFY(isDone);
        QVERIFY(machine.log().isEmpty());
    }
};

QUILLBROOK_SUITE(TestUninstallDriver, QCoreApplication)
#include "tst_UninstallDriver.moc"
