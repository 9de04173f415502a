#include "Removal/Reclaimer.h"

#include "Platform/Clock.h"
#include "Platform/FileRemoval.h"
#include "Platform/FolderEntries.h"
#include "Platform/RunningApps.h"
#include "Platform/Trash.h"
#include "StandardisedPath.h"

#include <QCoreApplication>

#include <algorithm>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

QString nameOf(const std::string &path)
{
    return QString::fromStdString(path.substr(path.find_last_of('/') + 1));
}

// Hidden ones among them. None of a folder that can't be read, and none behind a link: the folder may have
// become one since it was found.
std::vector<std::string> childrenOf(const std::string &folder)
{
    std::vector<std::string> children;
    const auto entries = folderEntries(folder);
    if (!entries->open(folder))
        return children;
    while (const auto entry = entries->next())
        children.push_back(folder + '/' + std::string(entry->name));
    std::ranges::sort(children);
    return children;
}

// Asked again at the removal: the application may have been started since the finding was made.
std::optional<QString> reasonToWait(const Finding &finding, const RunningApps *apps)
{
    if (finding.applicationId.isEmpty())
        return std::nullopt;
    const auto isRunning = apps != nullptr ? apps->isRunning(finding.applicationId) : std::nullopt;
    const auto name = finding.locationLabel.value_or(finding.applicationId);
    if (isRunning.value_or(false))
        return ReclaimError::running(name);
    if (!isRunning && finding.rule.safety == Safety::safe)
        return ReclaimError::perhapsRunning(name);
    return std::nullopt;
}

} // namespace

QString ReclaimError::notActionable(const QString &title)
{
    return u"\"%1\" is report-only and cannot be removed by Quillbrook."_s.arg(title);
}

QString ReclaimError::outsideHome(const QString &path)
{
    return u"Refusing to touch %1: outside the home directory."_s.arg(path);
}

QString ReclaimError::redirected()
{
    return u"Symlinked to another volume \u2014 removing it would free nothing here."_s;
}

QString ReclaimError::alreadyInTrash()
{
    return u"This is already in the Trash. Delete it permanently to get the space back."_s;
}

QString ReclaimError::running(const QString &name)
{
    return QCoreApplication::translate("Reclaimer", "%1 is running. Close it, then try again.").arg(name);
}

QString ReclaimError::perhapsRunning(const QString &name)
{
    return QCoreApplication::translate(
        "Reclaimer", "Whether %1 is running can't be told any more. Scan again, then decide.")
        .arg(name);
}

QString ReclaimError::failed(const QString &name, const QString &error)
{
    return u"Could not reclaim %1: %2"_s.arg(name, error);
}

Reclaimer::Outcome Reclaimer::reclaim(const Finding &finding, Disposal disposal) const
{
    Outcome outcome{ .finding = finding, .permanent = disposal == Disposal::permanent };
    outcome.error = refusal(finding, disposal);
    if (outcome.error)
        return outcome;

    qint64 removed = 0;
    for (const auto &target : targets(finding)) {
        auto disposed = dispose(target, finding, disposal);
        if (!disposed) {
            outcome.error = ReclaimError::failed(nameOf(target), disposed.error());
            continue;
        }
        ++removed;
        if (*disposed)
            outcome.trashed.push_back(**std::move(disposed));
    }
    if (removed == 0)
        return outcome;
    outcome.bytesMoved = finding.bytes;
    for (auto &item : outcome.trashed)
        item.bytes = finding.bytes / removed;
    return outcome;
}

std::vector<Reclaimer::Outcome> Reclaimer::reclaimAll(const QList<Finding> &findings, Disposal disposal) const
{
    std::vector<Outcome> outcomes;
    for (const auto &finding : findings)
        outcomes.push_back(reclaim(finding, disposal));
    return outcomes;
}

std::optional<QString> Reclaimer::refusal(const Finding &finding, Disposal disposal) const
{
    if (finding.rule.safety == Safety::reportOnly)
        return ReclaimError::notActionable(finding.rule.title);
    if (!isBelowHome(finding.path))
        return ReclaimError::outsideHome(finding.path);
    if (finding.redirectedOffVolume)
        return ReclaimError::redirected();
    if (disposal == Disposal::toTrash && services.trash.holds(finding.path.toStdString()))
        return ReclaimError::alreadyInTrash();
    return reasonToWait(finding, services.runningApps);
}

// As it is written and as it is read: "/home/me/.." begins like something in the home folder. Without a home
// folder nothing is below it.
bool Reclaimer::isBelowHome(const QString &path) const
{
    const auto start = homeDirectory + u'/';
    return homeDirectory.startsWith(u'/') && path.startsWith(start)
        && standardisedPath(path, homeDirectory).startsWith(start);
}

std::vector<std::string> Reclaimer::targets(const Finding &finding) const
{
    const auto path = finding.path.toStdString();
    if (!finding.rule.emptyContentsOnly)
        return { path };
    if (!services.trash.holds(path))
        return childrenOf(path);
    std::vector<std::string> things;
    for (const auto &thing : services.trash.items(path))
        things.push_back(thing.path);
    return things;
}

std::expected<std::optional<TrashedItem>, QString> Reclaimer::dispose(
    const std::string &target, const Finding &finding, Disposal disposal) const
{
    if (disposal == Disposal::permanent) {
        const auto gone
            = services.trash.holds(target) ? services.trash.erase(target) : services.removal.remove(target);
        if (!gone)
            return std::unexpected(gone.error());
        return std::nullopt;
    }
    const auto trashed = services.trash.move(target);
    if (!trashed)
        return std::unexpected(trashed.error());
    return TrashedItem::moved({ .label = finding.rule.title + u" \u00B7 "_s + nameOf(target),
        .originalPath = target,
        .trashPath = *trashed,
        .movedAt = services.clock.now() });
}

} // namespace Quillbrook
