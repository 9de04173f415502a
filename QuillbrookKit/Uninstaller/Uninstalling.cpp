#include "Uninstaller/Uninstalling.h"

#include "RawText.h"
#include "Removal/RemovalServices.h"
#include "Uninstaller/Uninstaller.h"

namespace Quillbrook::Uninstalling {

using namespace Qt::StringLiterals;

namespace {

QString lastComponent(const std::string &path)
{
    return repairedText(std::string_view(path).substr(path.rfind('/') + 1));
}

std::optional<QString> whileRunning(
    const HostApplications &host, const UninstallerServices &services, const InstalledApp &app)
{
    const auto running = app.origin == AppOrigin::bundle ? Uninstaller::isRunning(services, app.app.bundleID)
                                                         : host.isRunning(app);
    if (!running)
        return Uninstaller::unknownRunningSentence().replace(u"{name}"_s, app.app.name);
    return *running ? std::optional(u"%1 is running — quit it and try again."_s.arg(app.app.name))
                    : std::nullopt;
}

} // namespace

std::vector<PathRemoval::Item> items(const Order &order)
{
    const auto &app = order.app.app;
    std::vector<PathRemoval::Item> items;
    for (const auto &leftover : order.leftovers)
        items.push_back({ .path = leftover.path,
            .bytes = leftover.bytes,
            .label = u"%1 · %2"_s.arg(app.name, leftover.label()) });
    if (order.app.origin == AppOrigin::bundle)
        items.push_back({ .path = app.path, .bytes = app.bytes, .label = app.name });
    for (const auto &path : order.app.goes)
        items.push_back({ .path = path,
            .bytes = order.measure(path),
            .label = path == app.path ? app.name : u"%1 · %2"_s.arg(app.name, lastComponent(path)) });
    return items;
}

std::vector<PathRemoval::Item> items(const std::vector<Orphan> &orphans)
{
    std::vector<PathRemoval::Item> items;
    for (const auto &orphan : orphans)
        items.push_back({ .path = orphan.path,
            .bytes = orphan.bytes,
            .label = u"%1 · %2"_s.arg(orphan.guessedApp(), rawValue(orphan.kind)) });
    return items;
}

std::vector<PathRemoval::Removal> removeAll(const RemovalServices &removal,
    const std::vector<PathRemoval::Item> &items, const PathRemoval::Manner &manner, const Watch &watch)
{
    std::vector<PathRemoval::Removal> removals;
    qint64 bytes = 0;
    for (const auto &item : items) {
        if (watch.stop.stop_requested())
            break;
        if (watch.before)
            watch.before(qsizetype(removals.size()) + 1, qsizetype(items.size()), item, bytes);
        removals.push_back(PathRemoval::remove(removal, item, manner));
        bytes += removals.back().bytes;
    }
    return removals;
}

Result uninstall(const HostApplications &host, const UninstallerServices &services,
    const RemovalServices &removal, const Order &order)
{
    const auto &app = order.app;
    if (app.isSelf || app.needsAdministrator())
        return { .refusal = u"%1 stays."_s.arg(app.app.name) };
    if (auto running = whileRunning(host, services, app))
        return { .refusal = std::move(running) };
    const bool goesByTool = app.origin == AppOrigin::flatpakOfUser;
    if (auto obstacle = goesByTool ? host.obstacle(app) : std::nullopt)
        return { .refusal = std::move(obstacle) };
    const auto all = items(order);
    Result result{ .removals = removeAll(removal, all, order.manner, order.watch) };
    // The application goes last, so that a stop which comes before the end keeps it.
    const bool isLeft = goesByTool ? order.watch.stop.stop_requested() : result.removals.size() < all.size();
    if (isLeft) {
        result.takenAway = std::unexpected(u"%1 was left where it is."_s.arg(app.app.name));
    } else if (goesByTool) {
        if (const auto taken = host.takeAway(app, order.watch.stop); taken)
            result.takenAway = app.app.bytes;
        else
            result.takenAway = std::unexpected(taken.error());
    }
    return result;
}

} // namespace Quillbrook::Uninstalling
