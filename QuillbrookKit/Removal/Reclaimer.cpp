#include "Removal/Reclaimer.h"

#include "Platform/FileRemoval.h"
#include "Platform/FolderEntries.h"
#include "Platform/RunningApps.h"
#include "Platform/Trash.h"
#include "RawText.h"
#include "Removal/BookedMove.h"
#include "Removal/HostGuards.h"
#include "Removal/RemovalJournal.h"
#include "StandardisedPath.h"

#include <QCoreApplication>

#include <algorithm>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

QString nameOf(const std::string &path)
{
    return repairedText(std::string_view(path).substr(path.find_last_of('/') + 1));
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

QString notThereAnyMore()
{
    return QCoreApplication::translate("Reclaimer", "Its folder is not where it was any more.");
}

// Where one of the kept folders really is.
std::optional<QString> keptBehindALink(const TakenThing &thing, const std::vector<std::string> &places)
{
    const bool isKept = std::ranges::any_of(places,
        [&](const std::string &kept) { return kept == thing.path || kept.starts_with(thing.path + '/'); });
    if (!isKept)
        return std::nullopt;
    return QCoreApplication::translate(
        "Reclaimer", "One of your own folders is really there, behind a link.");
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

QString ReclaimError::stopped()
{
    return QCoreApplication::translate("Reclaimer", "Stopped before all of it went.");
}

struct Reclaimer::Targets
{
    std::vector<std::string> paths{};
    // Where the folder that they were listed in really is; absent where they were not listed in one.
    std::optional<std::string> place{};
    // What must neither go nor be held by what goes.
    std::vector<std::string> kept{};
};

Reclaimer::Outcome Reclaimer::reclaim(const Finding &finding, Disposal disposal, const Steps &steps) const
{
    Outcome outcome{ .finding = finding, .permanent = disposal == Disposal::permanent };
    outcome.error = refusal(finding, disposal);
    if (outcome.error)
        return outcome;
    const auto found = targets(finding);
    if (!found) {
        outcome.error = found.error();
        return outcome;
    }
    const bool isJournaled = journal != nullptr && !outcome.permanent && !found->paths.empty();
    const auto begun = isJournaled ? journal->begin({ .title = finding.rule.title,
                           .bytes = finding.bytes,
                           .planned = static_cast<qint64>(found->paths.size()),
                           .byRule = byRule })
                                   : std::expected<void, QString>();
    if (!begun) {
        outcome.error = BookedMove::notBegun(begun.error());
        return outcome;
    }
    clear(*found, outcome, steps);
    if (isJournaled)
        journal->settle();
    return outcome;
}

void Reclaimer::clear(const Targets &targets, Outcome &outcome, const Steps &steps) const
{
    const auto planned = static_cast<qint64>(targets.paths.size());
    qint64 removed = 0;
    Step step{ .entries = planned };
    for (const auto &target : targets.paths) {
        if (steps.stop.stop_requested()) {
            outcome.error = ReclaimError::stopped();
            if (journal != nullptr && !outcome.permanent)
                journal->fail({});
            break;
        }
        ++step.entry;
        step.name = nameOf(target);
        step.bytes = outcome.finding.bytes / planned * removed;
        if (steps.before)
            steps.before(step);
        if (const auto disposed = dispose(target, targets, outcome); disposed)
            ++removed;
        else
            outcome.error = ReclaimError::failed(step.name, disposed.error());
    }
    if (removed == 0)
        return;
    outcome.bytesMoved = outcome.finding.bytes;
    for (auto &item : outcome.trashed)
        item.bytes = outcome.finding.bytes / removed;
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
    if (!isBelowHome(finding.rawPath))
        return ReclaimError::outsideHome(finding.path);
    if (finding.redirectedOffVolume)
        return ReclaimError::redirected();
    if (disposal == Disposal::toTrash && services.trash.holds(finding.rawPath))
        return ReclaimError::alreadyInTrash();
    return reasonToWait(finding, services.runningApps);
}

// As it is written and as it is read: "/home/me/.." begins like something in the home folder. Without a home
// folder nothing is below it.
bool Reclaimer::isBelowHome(const std::string &path) const
{
    const auto start = home + '/';
    return home.starts_with('/') && path.starts_with(start)
        && standardisedPath(path, home).starts_with(start);
}

// As the links on the way lead by now. Without a word about where links lead every path is what it says.
bool Reclaimer::isReallyBelowHome(const std::string &path) const
{
    const auto resolve = services.guards != nullptr ? services.guards->withoutLinks : nullptr;
    const auto realHome = resolve ? standardisedPath(resolve(home + "/."), {}) : home;
    return path.starts_with(home + '/') || (realHome.size() > 1 && path.starts_with(realHome + '/'));
}

std::vector<std::string> Reclaimer::keptTargets() const
{
    const bool isKnown = services.guards != nullptr && services.guards->keptTargets;
    return isKnown ? services.guards->keptTargets() : std::vector<std::string>();
}

// Of a folder what lies in it, hidden things among it: none where it can't be read, and none behind a link,
// which it may have become since it was found.
std::expected<Reclaimer::Targets, QString> Reclaimer::targets(const Finding &finding) const
{
    const auto &path = finding.rawPath;
    Targets targets;
    targets.kept = keptTargets();
    if (!finding.rule.emptyContentsOnly) {
        targets.paths = { path };
        return targets;
    }
    if (services.trash.holds(path)) {
        for (const auto &thing : services.trash.items(path))
            targets.paths.push_back(thing.path);
        return targets;
    }
    const auto entries = folderEntries(path);
    if (!entries->open(path))
        return targets;
    targets.place = entries->place();
    if (!targets.place || !isReallyBelowHome(*targets.place))
        return std::unexpected(ReclaimError::outsideHome(finding.path));
    while (const auto entry = entries->next())
        targets.paths.push_back(path + '/' + std::string(entry->name));
    std::ranges::sort(targets.paths);
    return targets;
}

TakingJudge Reclaimer::judge(const Targets &targets) const
{
    return [this, &targets](const TakenThing &thing) -> std::optional<QString> {
        const auto folder = thing.path.substr(0, thing.path.find_last_of('/'));
        if (targets.place ? folder != *targets.place : !isReallyBelowHome(thing.path))
            return notThereAnyMore();
        return keptBehindALink(thing, targets.kept);
    };
}

std::expected<void, QString> Reclaimer::dispose(
    const std::string &target, const Targets &targets, Outcome &outcome) const
{
    if (!outcome.permanent)
        return moveToTrash(target, targets, outcome);
    return services.trash.holds(target) ? services.trash.erase(target)
                                        : services.removal.remove(target, judge(targets));
}

std::expected<void, QString> Reclaimer::moveToTrash(
    const std::string &target, const Targets &targets, Outcome &outcome) const
{
    auto moved = BookedMove::entry(services, journal,
        { .label = outcome.finding.rule.title + u" \u00B7 "_s + nameOf(target), .originalPath = target },
        judge(targets));
    if (!moved)
        return std::unexpected(moved.error());
    outcome.trashed.push_back(*std::move(moved));
    return {};
}

// An item may lie anywhere in the folder, and the folder may have changed its place, but not for a link.
std::expected<TrashedItem, QString> Reclaimer::moveItem(const StorageItem &item, const Finding &finding) const
{
    if (const auto sentence = refusal(finding, Disposal::toTrash))
        return std::unexpected(*sentence);
    const auto &path = finding.rawPath;
    const auto folder = folderEntries(path);
    const auto place = folder->open(path) ? folder->place() : std::nullopt;
    if (!place || !isReallyBelowHome(*place))
        return std::unexpected(notThereAnyMore());
    const TakingJudge judge = [&](const TakenThing &thing) -> std::optional<QString> {
        return thing.path.starts_with(*place + '/') ? keptBehindALink(thing, keptTargets())
                                                    : notThereAnyMore();
    };
    return BookedMove::alone(
        services, journal, { .label = item.name, .originalPath = item.rawPath, .bytes = item.bytes }, judge);
}

} // namespace Quillbrook
