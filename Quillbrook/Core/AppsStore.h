#pragma once

// The applications on this machine and what is left of those that are gone, worked out off the main thread.
// Names come first; sizes follow one by one, and the order settles when all are known. Main thread only; the
// services outlive it.

#include "Uninstaller/HostApplications.h"

#include <QList>
#include <QObject>
#include <QThreadPool>

#include <stop_token>

namespace Quillbrook {

struct KitServices;

class AppsStore : public QObject
{
    Q_OBJECT

public:
    explicit AppsStore(const KitServices &kit, QObject *parent = nullptr);
    ~AppsStore() override;

    /// Starts a load if one is due; a forced one whatever the state. It takes the place of one that runs, and
    /// begins with the sizes that are known already.
    void load(bool force);

    /// Ends a load that runs; what it has told stands.
    void stop();

    /// Largest first, as far as their sizes are known.
    [[nodiscard]] const QList<InstalledApp> &apps() const { return m_apps; }
    [[nodiscard]] const QList<FoundOrphan> &orphans() const { return m_orphans; }
    [[nodiscard]] bool isLoading() const { return m_loading; }
    /// The last load was stopped before its end.
    [[nodiscard]] bool isStopped() const { return m_stopped; }
    /// A load has been started at least once.
    [[nodiscard]] bool isLoaded() const { return m_loaded; }
    /// The names of the present load have come.
    [[nodiscard]] bool isNamed() const { return m_named; }
    /// How many of them have been measured in the present load.
    [[nodiscard]] qsizetype measured() const { return m_measured; }

Q_SIGNALS:
    /// Other rows, or another order.
    void appsChanged();
    /// The size of one of them is known now.
    void sizeChanged(qsizetype index);
    void orphansChanged();
    void loadingChanged();

private:
    struct Work;

    void takeNames(int load, QList<InstalledApp> apps);
    void takeSize(int load, const QString &key, qint64 bytes);
    void takeAll(int load, const QList<InstalledApp> &apps);
    void takeOrphans(int load, const QList<FoundOrphan> &orphans);

    const KitServices &m_kit;
    QList<InstalledApp> m_apps;
    QList<FoundOrphan> m_orphans;
    bool m_loading = false;
    bool m_stopped = false;
    bool m_loaded = false;
    bool m_named = false;
    qsizetype m_measured = 0;
    /// Counts loads: what an earlier one still tells is out of date.
    int m_load = 0;
    std::stop_source m_stop;
    /// A thread of its own. Its end is waited for; a measuring stops when it is asked to.
    QThreadPool m_pool;
};

} // namespace Quillbrook
