// How the list of applications comes together, and when.

#include "Core/AppsStore.h"
#include "Support/FakeKit.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>

#include <algorithm>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

InstalledApp app(const QString &id, qint64 bytes)
{
    return { .app
        = { .path = "/apps/" + id.toStdString(), .name = id.toUpper(), .bundleID = id, .bytes = bytes },
        .origin = AppOrigin::package,
        .isMeasured = true };
}

struct Machine : FakeKit
{
    AppsStore store{ kitServices };

    Machine() { applications.apps = { app(u"small"_s, 10), app(u"large"_s, 30), app(u"alike"_s, 10) }; }

    [[nodiscard]] QStringList ids() const
    {
        QStringList ids;
        for (const auto &app : store.apps())
            ids.append(app.app.bundleID);
        return ids;
    }
};

} // namespace

class TestAppsStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theLargestComesFirst()
    {
        Machine machine;
        machine.applications.found = { { .orphan = { .path = "/a", .bytes = 5 } } };
        machine.store.load(false);
        QVERIFY(machine.store.isLoading() && machine.store.isLoaded());
        QTRY_VERIFY(!machine.store.isLoading());
        QCOMPARE(machine.ids(), (QStringList{ u"large"_s, u"small"_s, u"alike"_s }));
        QCOMPARE(machine.store.orphans().size(), 1);
        QCOMPARE(machine.store.measured(), 3);
    }

    void namesComeBeforeSizes()
    {
        Machine machine;
        for (auto &app : machine.applications.apps)
            app.isMeasured = false;
        QStringList told;
        connect(&machine.store, &AppsStore::appsChanged,
            [&] { told.append(machine.store.apps().constFirst().isMeasured ? u"sizes"_s : u"names"_s); });
        connect(&machine.store, &AppsStore::sizeChanged, [&] { told.append(u"size"_s); });
        machine.store.load(false);
        QTRY_VERIFY(!machine.store.isLoading());
        QCOMPARE(told, (QStringList{ u"names"_s, u"size"_s, u"size"_s, u"size"_s, u"sizes"_s }));
    }

    void aLoadThatIsNotDueStartsNothing()
    {
        Machine machine;
        const QSignalSpy changes(&machine.store, &AppsStore::appsChanged);
        machine.store.load(false);
        machine.store.load(false);
        QTRY_VERIFY(!machine.store.isLoading());
        const auto before = changes.count();
        machine.store.load(false);
        QVERIFY(!machine.store.isLoading());
        QCOMPARE(changes.count(), before);
        QCOMPARE(machine.applications.listings.load(), 1);
    }

    void aForcedLoadTakesThePlaceOfAnother()
    {
        Machine machine;
        machine.store.load(false);
        {
            const std::scoped_lock held(machine.applications.lock);
            machine.applications.apps = { app(u"new"_s, 1) };
        }
        machine.store.load(true);
        QTRY_VERIFY(!machine.store.isLoading());
        QCOMPARE(machine.ids(), QStringList{ u"new"_s });
    }

    void aLoadCanBeStopped()
    {
        Machine machine;
        for (auto &app : machine.applications.apps)
            app.isMeasured = false;
        machine.applications.found = { { .orphan = { .path = "/a", .bytes = 5 } } };
        // In the middle: the first is measured, the others are not.
        const auto once
            = connect(&machine.store, &AppsStore::sizeChanged, &machine.store, [&] { machine.store.stop(); });
        machine.store.load(false);
        QTRY_VERIFY(machine.store.isStopped());
        QVERIFY(!machine.store.isLoading());
        QCOMPARE(machine.store.measured(), 1);
        QTest::qWait(50);
        QCOMPARE(machine.store.measured(), 1);
        QVERIFY(machine.store.orphans().isEmpty());
        QCOMPARE(std::ranges::count(machine.store.apps(), true, &InstalledApp::isMeasured), 1);

        disconnect(once);
        machine.store.load(true);
        QVERIFY(!machine.store.isStopped());
        QTRY_COMPARE(machine.store.orphans().size(), 1);
        machine.store.stop();
        QVERIFY(!machine.store.isStopped());
    }

    void aStoreMayGoWhileItLoads()
    {
        FakeKit kit;
        kit.applications.apps = { app(u"one"_s, 1) };
        auto store = std::make_unique<AppsStore>(kit.kitServices);
        store->load(false);
        store.reset();
        QCoreApplication::processEvents();
    }
};

QUILLBROOK_SUITE(TestAppsStore, QCoreApplication)
#include "tst_AppsStore.moc"
