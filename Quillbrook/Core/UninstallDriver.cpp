#include "Core/UninstallDriver.h"

#include "Core/PathRemovals.h"
#include "Core/Translation.h"
#include "Platform/HomeFolder.h"
#include "Removal/HostGuards.h"
#include "Removal/RemovalServices.h"
#include "Scan/Format.h"
#include "Uninstaller/MeasuredBytes.h"
#include "Uninstaller/Uninstaller.h"

#include <QtConcurrent>

#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

UninstallPlan planOf(
    const KitServices &kit, InstalledApp app, const QList<InstalledApp> &all, const std::stop_token &stop)
{
    const auto measure = measureOnDisk(MeasuringServices::of(kit), stop);
    // For a person to read; the log stays English.
    auto guards = kit.guards;
    guards.wording = translatedTableText;
    auto services = UninstallerServices::of(kit);
    services.guards = &guards;
    services.wording = translatedTableText;
    const bool isBundle = app.origin == AppOrigin::bundle;
    if (!app.isMeasured) {
        app.app.bytes = isBundle ? measure(app.app.path) : kit.applications.bytes(app, measure);
        app.isMeasured = true;
    }
    UninstallPlan plan{ .target = app };
    plan.plan = isBundle ? Uninstaller::plan(
                    services, { .app = app.app, .measure = measure, .home = kit.home.rawHomeDirectory() })
                         : kit.applications.plan({ .app = app,
                             .all = std::vector<InstalledApp>(all.begin(), all.end()),
                             .measure = measure,
                             .wording = translatedTableText });
    if (!plan.plan.blocked)
        plan.runtimeBytes = kit.applications.runtimeBytes(app, measure);
    return plan;
}

Uninstalling::Watch watchOf(const RemovalQueue::Watch &watch)
{
    return { .before =
                 [tell = watch.progress](
                     qsizetype number, qsizetype count, const PathRemoval::Item &item, qint64 bytes) {
                     tell({ .number = number, .count = count, .name = item.label, .bytes = bytes });
                 },
        .stop = watch.stop };
}

} // namespace

UninstallDriver::UninstallDriver(const KitServices &kit, PathRemovals &removals, QObject *parent)
    : QObject(parent)
    , m_kit(kit)
    , m_removals(removals)
{
    m_planning.setMaxThreadCount(1);
}

UninstallDriver::~UninstallDriver()
{
    stopPlanning();
}

QFuture<UninstallPlan> UninstallDriver::plan(const InstalledApp &app, const QList<InstalledApp> &all)
{
    stopPlanning();
    m_stopPlan = {};
    return QtConcurrent::run(&m_planning,
        [&kit = m_kit, app, all, stop = m_stopPlan.get_token()] { return planOf(kit, app, all, stop); });
}

void UninstallDriver::stopPlanning()
{
    m_stopPlan.request_stop();
}

void UninstallDriver::uninstall(const UninstallPlan &plan, const std::vector<Leftover> &leftovers,
    const std::function<void()> &completion)
{
    const Uninstalling::Order order{ .app = plan.target,
        .leftovers = leftovers,
        .measure = measureOnDisk(MeasuringServices::of(m_kit)),
        .manner = { .home = m_kit.home.rawHomeDirectory(), .host = &m_kit.guards } };
    const auto result = std::make_shared<Uninstalling::Result>();
    const auto work
        = [&kit = m_kit, order, result](const RemovalQueue::Watch &watch, RemovalJournal &journal) {
              auto own = order;
              own.manner.journal = &journal;
              own.watch = watchOf(watch);
              *result = Uninstalling::uninstall(
                  kit.applications, UninstallerServices::of(kit), RemovalServices::of(kit), own);
              return result->removals;
          };
    const auto done = [&removals = m_removals, app = plan.target.app, result, completion] {
        if (result->refusal)
            removals.tellOfUninstalling(false, *result->refusal);
        else if (result->takenAway && *result->takenAway)
            removals.tellOfUninstalling(
                true, u"%1 — %2 removed"_s.arg(app.name, Format::bytes(**result->takenAway)));
        else if (result->takenAway)
            removals.tellOfUninstalling(false, result->takenAway->error());
        completion();
    };
    m_removals.removeBy(work, plan.target.app.name, done);
}

void UninstallDriver::removeOrphans(
    const std::vector<Orphan> &orphans, const std::function<void()> &completion)
{
    const auto items = Uninstalling::items(orphans);
    if (items.empty()) {
        completion();
        return;
    }
    const PathRemoval::Manner manner{ .home = m_kit.home.rawHomeDirectory(), .host = &m_kit.guards };
    const auto work
        = [&kit = m_kit, items, manner](const RemovalQueue::Watch &watch, RemovalJournal &journal) {
              auto own = manner;
              own.journal = &journal;
              return Uninstalling::removeAll(RemovalServices::of(kit), items, own, watchOf(watch));
          };
    m_removals.removeBy(work, u"leftovers"_s, completion);
}

} // namespace Quillbrook
