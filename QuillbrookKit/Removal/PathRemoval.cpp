#include "Removal/PathRemoval.h"

#include "Platform/FileFacts.h"
#include "Platform/FileRemoval.h"
#include "Platform/FolderEntries.h"
#include "Platform/Trash.h"
#include "Removal/BookedMove.h"
#include "Removal/PathGuards.h"
#include "StandardisedPath.h"

#include <QCoreApplication>

#include <algorithm>

namespace Quillbrook::PathRemoval {

using namespace Qt::StringLiterals;

namespace {

std::optional<QString> answer(const std::string &path, const std::string &home, const HostGuards *host)
{
    auto judged = GuardedPath::judge(path, home);
    // A home folder that is the root of the disk makes nothing on it the user's.
    judged.fearsSystemRoots = host == nullptr || !host->sparesHomeFromSystemRoots || home == "/"
        || !(judged.isHome || judged.rest);
    if (host == nullptr)
        return PathGuards::answer(PathGuards::builtIn(), judged);
    if (auto sentence = PathGuards::answer(PathGuards::builtIn(), judged, host->wording))
        return sentence;
    return PathGuards::answer(host->guards, judged, host->wording);
}

// What is not below the home folder by one of its paths may be by the other. Below none it is judged by the
// first, below both by both.
std::optional<QString> answerForHomes(
    const std::string &path, const std::vector<std::string> &homes, const HostGuards *host)
{
    bool isAtHome = false;
    for (const auto &home : homes) {
        const auto judged = GuardedPath::judge(path, home);
        if (!judged.isHome && !judged.rest)
            continue;
        isAtHome = true;
        if (auto sentence = answer(path, home, host))
            return sentence;
    }
    return isAtHome ? std::nullopt : answer(path, homes.front(), host);
}

// With a slash behind it the system would look for a folder, and through a link.
std::string itself(std::string path)
{
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    return path;
}

Removal failed(const Item &item, const QString &error)
{
    return { .path = item.path, .error = error };
}

Removal failedToRemove(const Item &item, const QString &why)
{
    return failed(item, u"Could not remove %1: %2"_s.arg(item.label, why));
}

std::vector<std::string> homesOf(const std::string &home, const HostGuards &host)
{
    std::vector homes{ home };
    if (auto resolved = standardisedPath(host.withoutLinks(home + "/."), {});
        !resolved.empty() && resolved != home)
        homes.push_back(std::move(resolved));
    return homes;
}

// The guards about where a thing really is, by the folder that it is taken from.
std::optional<QString> refusalThere(const TakenThing &thing, const Manner &manner)
{
    const auto home = standardisedPath(manner.home, {});
    const auto *host = manner.host;
    if (host == nullptr || !host->withoutLinks)
        return answerForHomes(thing.path, { home }, host);
    const auto homes = homesOf(home, *host);
    if (auto sentence = answerForHomes(thing.path, homes, host))
        return sentence;
    const auto inHome = host->inHome ? host->inHome(thing.path) : thing.path;
    return inHome == thing.path ? std::nullopt : answerForHomes(inHome, homes, host);
}

bool isPicked(const TakenThing &thing, const Item &item)
{
    return !item.picked
        || (item.picked->isDirectory == (thing.kind == FileKind::directory)
            && item.picked->inode == thing.inode);
}

QString notMeasured(const Item &item)
{
    return QCoreApplication::translate("PathRemoval", "%1 is not what was measured any more. Scan again.")
        .arg(item.label);
}

bool isHidden(std::string_view name)
{
    return name.starts_with('.');
}

} // namespace

std::optional<QString> refusal(const std::string &path, const std::string &home, const HostGuards *host)
{
    const auto standardisedHome = standardisedPath(home, {});
    const auto given = standardisedPath(path, standardisedHome);
    if (host == nullptr || !host->withoutLinks || !given.starts_with('/'))
        return answerForHomes(given, { standardisedHome }, host);

    const auto homes = homesOf(standardisedHome, *host);
    if (auto sentence = answerForHomes(given, homes, host))
        return sentence;
    // Not what was standardised: to the system a ".." behind a link leads elsewhere than its text says.
    const auto asGiven = path.starts_with('/') ? path : given;
    const auto resolved = standardisedPath(host->withoutLinks(asGiven), {});
    return resolved == given ? std::nullopt : answerForHomes(resolved, homes, host);
}

Removal remove(const RemovalServices &services, const Item &item, const Manner &manner)
{
    if (const auto sentence = refusal(item.path, manner.home, manner.host))
        return failed(item, *sentence);
    if (!services.files.kind(itself(item.path)))
        return failed(item, u"%1 is not there any more."_s.arg(item.label));
    std::optional<QString> refused;
    const TakingJudge judge = [&](const TakenThing &thing) {
        refused = isPicked(thing, item) ? refusalThere(thing, manner) : notMeasured(item);
        return refused;
    };
    const auto failure
        = [&](const QString &why) { return refused ? failed(item, *refused) : failedToRemove(item, why); };
    if (manner.permanent) {
        if (const auto done = services.removal.remove(item.path, judge); !done)
            return failure(done.error());
        return { .path = item.path, .bytes = item.bytes };
    }
    const auto moved = BookedMove::alone(services, manner.journal,
        { .label = item.label, .originalPath = item.path, .bytes = item.bytes }, judge);
    if (!moved)
        return failure(moved.error());
    return { .path = item.path, .bytes = item.bytes, .trashed = *moved };
}

std::vector<Removal> removeAll(
    const RemovalServices &services, const std::vector<Item> &items, const Manner &manner)
{
    std::vector<Removal> removals;
    removals.reserve(items.size());
    for (const auto &item : items)
        removals.push_back(remove(services, item, manner));
    return removals;
}

ItemCount itemCount(const std::string &path, qsizetype cap)
{
    // Looks through a link at what is there, while the walk follows none, not even the first: what lies
    // behind a link would stay if the link were removed.
    const auto entries = folderEntries(path);
    if (entries->kind() == FolderEntries::Kind::nothing)
        return {};
    if (entries->kind() == FolderEntries::Kind::other)
        return { .count = 1 };

    const auto enough = std::max<qsizetype>(cap, 1);
    qsizetype count = 0;
    std::vector<std::string> folders{ path };
    while (!folders.empty()) {
        const auto folder = std::move(folders.back());
        folders.pop_back();
        if (!entries->open(folder))
            continue;
        while (const auto entry = entries->next()) {
            if (isHidden(entry->name))
                continue;
            if (++count == enough)
                return { .count = cap, .capped = true };
            if (entry->isFolder)
                folders.push_back(folder + '/' + std::string(entry->name));
        }
    }
    return { .count = count };
}

} // namespace Quillbrook::PathRemoval
