#pragma once

// Works out what goes with an application, and takes it away, or what is left of others. All of it happens
// off the main thread, and what is removed goes through `PathRemovals` in its turn, which also tells what
// came of it. Main thread only; what it is made with outlives it.

#include "Uninstaller/HostApplications.h"
#include "Uninstaller/Uninstalling.h"

#include <QFuture>
#include <QObject>
#include <QThreadPool>

#include <functional>
#include <stop_token>

namespace Quillbrook {

class PathRemovals;
struct KitServices;

/// What the sheet of an application shows.
struct UninstallPlan
{
    InstalledApp target{};
    Plan plan{};
    /// Bytes of the runtimes that nothing else uses after it.
    qint64 runtimeBytes = 0;
};

class UninstallDriver : public QObject
{
    Q_OBJECT

public:
    UninstallDriver(const KitServices &kit, PathRemovals &removals, QObject *parent = nullptr);
    ~UninstallDriver() override;

    /// Works out the plan of `app`; `all` are those that are listed. It takes the place of one that is being
    /// worked out, whose figures are not true then.
    [[nodiscard]] QFuture<UninstallPlan> plan(const InstalledApp &app, const QList<InstalledApp> &all);
    /// Nobody waits for the plan any more.
    void stopPlanning();

    /// Takes the application of a plan away, with the leftovers that were chosen, and calls `completion` when
    /// that has been tried, or could not be.
    void uninstall(const UninstallPlan &plan, const std::vector<Leftover> &leftovers,
        const std::function<void()> &completion);
    /// The same for what is left of others. Without any it only calls `completion`.
    void removeOrphans(const std::vector<Orphan> &orphans, const std::function<void()> &completion);

private:
    const KitServices &m_kit;
    PathRemovals &m_removals;
    std::stop_source m_stopPlan;
    /// A thread of its own, so that no scan waits for it. Its end is waited for; a measuring stops when it is
    /// asked to.
    QThreadPool m_planning;
};

} // namespace Quillbrook
