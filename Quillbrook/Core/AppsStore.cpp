#include "Core/AppsStore.h"

#include "Platform/HomeFolder.h"
#include "Uninstaller/FolderNames.h"
#include "Uninstaller/MeasuredBytes.h"
#include "Uninstaller/Uninstaller.h"

#include <QHash>

#include <algorithm>
#include <utility>

namespace Quillbrook {

namespace {

constexpr qint64 staleDays = 180;

void sortBySize(QList<InstalledApp> &apps)
{
    std::ranges::stable_sort(
        apps, std::ranges::greater(), [](const InstalledApp &app) { return app.app.bytes; });
}

// Without sizes, which are measured one by one afterwards.
QList<InstalledApp> bundles(const UninstallerServices &services, const std::string &home)
{
    QList<InstalledApp> apps;
    const auto unmeasured = [](const std::string & /*path*/) { return qint64(0); };
    for (auto &app : Uninstaller::installedApps(services, Uninstaller::appFolders(home), unmeasured))
        apps.append({ .app = std::move(app) });
    return apps;
}

std::vector<FoundOrphan> orphansOfBundles(const UninstallerServices &services,
    const QList<InstalledApp> &apps, const Measure &measure, const std::string &home)
{
    std::vector<AppBundle> installed;
    for (const auto &app : apps)
        installed.push_back(app.app);
    std::vector<FoundOrphan> found;
    for (auto &orphan : Uninstaller::orphans(services,
             { .installed = std::move(installed),
               .measure = measure,
               .staleDays = staleDays,
               .home = home })) {
        const auto newest = FolderNames::newestBelow(orphan.path);
        found.push_back({ .orphan = std::move(orphan), .newestInside = newest });
    }
    return found;
}

} // namespace

// What runs on the pool: it refers to the store by nothing but calls that reach the main thread while it
// lives.
struct AppsStore::Work
{
    AppsStore *store;
    int load;
    const KitServices &kit;
    std::stop_token stop;
    std::string home;

    // The store waits for the pool's end before it goes, and calls that are on the way then are dropped.
    template <typename Call>
    void tell(Call call) const
    {
        QMetaObject::invokeMethod(store, std::move(call), Qt::QueuedConnection);
    }

    void run() const
    {
        const auto services = UninstallerServices::of(kit);
        const auto measure = measureOnDisk(MeasuringServices::of(kit), stop);
        auto apps = bundles(services, home);
        const auto listing = kit.applications.listing();
        apps.append(QList<InstalledApp>(listing.apps.begin(), listing.apps.end()));
        tell([store = store, load = load, apps] { store->takeNames(load, apps); });
        for (auto &app : apps) {
            if (stop.stop_requested())
                return;
            app.app.bytes = app.origin == AppOrigin::bundle ? measure(app.app.path)
                                                            : kit.applications.bytes(app, measure);
            app.isMeasured = true;
            tell([store = store, load = load, key = app.key(), bytes = app.app.bytes] {
                store->takeSize(load, key, bytes);
            });
        }
        sortBySize(apps);
        tell([store = store, load = load, apps] { store->takeAll(load, apps); });

        auto orphans = orphansOfBundles(services, apps, measure, home);
        const auto ofHost = kit.applications.orphans(listing, measure, staleDays);
        orphans.insert(orphans.end(), ofHost.begin(), ofHost.end());
        std::ranges::stable_sort(
            orphans, std::ranges::greater(), [](const FoundOrphan &found) { return found.orphan.bytes; });
        if (stop.stop_requested())
            return;
        tell([store = store, load = load, found = QList<FoundOrphan>(orphans.begin(), orphans.end())] {
            store->takeOrphans(load, found);
        });
    }
};

AppsStore::AppsStore(const KitServices &kit, QObject *parent)
    : QObject(parent)
    , m_kit(kit)
{
    m_pool.setMaxThreadCount(1);
}

AppsStore::~AppsStore()
{
    m_stop.request_stop();
    m_pool.waitForDone();
}

void AppsStore::load(bool force)
{
    if (!force && (m_loaded || m_loading))
        return;
    m_stop.request_stop();
    m_stop = {};
    m_loaded = true;
    m_named = false;
    m_measured = 0;
    m_loading = true;
    m_stopped = false;
    const Work work{ .store = this,
        .load = ++m_load,
        .kit = m_kit,
        .stop = m_stop.get_token(),
        .home = m_kit.home.rawHomeDirectory() };
    m_pool.start([work] { work.run(); });
    Q_EMIT loadingChanged();
}

void AppsStore::stop()
{
    if (!m_loading)
        return;
    m_stop.request_stop();
    // What it still tells is not true any more.
    ++m_load;
    m_loading = false;
    m_stopped = true;
    sortBySize(m_apps);
    Q_EMIT appsChanged();
    Q_EMIT loadingChanged();
}

void AppsStore::takeNames(int load, QList<InstalledApp> apps)
{
    if (load != m_load)
        return;
    QHash<QString, qint64> known;
    for (const auto &app : m_apps)
        if (app.isMeasured)
            known.insert(app.key(), app.app.bytes);
    for (auto &app : apps) {
        const auto bytes = app.isMeasured ? known.cend() : known.constFind(app.key());
        if (bytes == known.cend())
            continue;
        app.app.bytes = *bytes;
        app.isMeasured = true;
    }
    sortBySize(apps);
    m_apps = std::move(apps);
    m_named = true;
    Q_EMIT appsChanged();
    Q_EMIT loadingChanged();
}

void AppsStore::takeSize(int load, const QString &key, qint64 bytes)
{
    if (load != m_load)
        return;
    ++m_measured;
    const auto found = std::ranges::find(m_apps, key, &InstalledApp::key);
    if (found != m_apps.end()) {
        found->app.bytes = bytes;
        found->isMeasured = true;
        Q_EMIT sizeChanged(found - m_apps.begin());
    }
    Q_EMIT loadingChanged();
}

void AppsStore::takeAll(int load, const QList<InstalledApp> &apps)
{
    if (load != m_load)
        return;
    m_apps = apps;
    Q_EMIT appsChanged();
}

void AppsStore::takeOrphans(int load, const QList<FoundOrphan> &orphans)
{
    if (load != m_load)
        return;
    m_orphans = orphans;
    m_loading = false;
    Q_EMIT orphansChanged();
    Q_EMIT loadingChanged();
}

} // namespace Quillbrook
