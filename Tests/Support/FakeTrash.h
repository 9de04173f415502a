#pragma once

// A machine whose disk is a set of paths, some of them in the Trash, where a test makes a move, a return or a
// deletion fail. Everything asked for is remembered.

#include "Platform/FileFacts.h"
#include "Platform/FileRemoval.h"
#include "Platform/Trash.h"

#include <functional>
#include <map>
#include <set>

namespace Quillbrook {

class FakeTrash final : public Trash, public FileRemoval, public FileFacts
{
public:
    /// Every path there is, and everything below each.
    std::set<std::string> things;
    /// Paths that nothing can be done about, with why.
    std::map<std::string, QString> stuck;
    /// Where things in the Trash are said to come from.
    std::map<std::string, std::string> origins;
    std::string folder = "/home/someone/.local/share/Trash";
    /// What was asked, in order: "move PATH", "restore PATH PATH", "erase PATH", "remove PATH".
    std::vector<std::string> asked;
    /// Called on the thread that moves, before it does. May be empty.
    std::function<void(const std::string &path)> onMove{};
    /// The folders of the last flush.
    mutable std::vector<std::string> flushed;

    using FileRemoval::remove;
    using Trash::erase;
    using Trash::move;
    using Trash::restore;

    std::expected<TrashedThing, QString> move(const std::string &path, const TrashOrder &order) override
    {
        asked.push_back("move " + path);
        if (onMove)
            onMove(path);
        if (const auto problem = judged(path, order.judge))
            return std::unexpected(*problem);
        const auto name = path.substr(path.find_last_of('/') + 1);
        auto trashed = folder + "/files/" + name;
        for (int i = 2; things.contains(trashed); ++i)
            trashed = folder + "/files/" + name + '.' + std::to_string(i);
        const TrashedThing thing{ .path = trashed };
        if (const auto told = order.announce ? order.announce(thing) : std::expected<void, QString>(); !told)
            return std::unexpected(told.error());
        things.erase(path);
        things.insert(trashed);
        return thing;
    }

    std::expected<void, QString> restore(
        const std::string &from, const std::string &to, const Provenance *was) override
    {
        if (was != nullptr && !isStill(from, *was))
            return std::unexpected(somethingElse());
        asked.push_back("restore " + from + ' ' + to);
        if (const auto problem = failure(from))
            return std::unexpected(*problem);
        if (!things.insert(to).second)
            return std::unexpected(QStringLiteral("Something else is there."));
        things.erase(from);
        return {};
    }

    std::expected<void, QString> erase(const std::string &path, const Provenance *was) override
    {
        if (was != nullptr && !isStill(path, *was))
            return std::unexpected(somethingElse());
        return drop("erase ", path);
    }
    std::expected<void, QString> remove(const std::string &path, const TakingJudge &judge) override
    {
        const auto refused = failure(path) || !judge ? std::nullopt : judged(path, judge);
        return refused ? std::unexpected(*refused) : drop("remove ", path);
    }

    [[nodiscard]] bool isStill(const std::string &from, const Provenance &was) const override
    {
        const auto found = origins.find(from);
        return things.contains(from) && (found == origins.end() || found->second == was.originalPath);
    }
    [[nodiscard]] bool isAway(const std::string &) const override { return false; }
    void flush(const std::vector<std::string> &folders) const override { flushed = folders; }
    void takeBackRight(const std::string &, const Provenance &) override { }
    void finishErasing(const std::vector<GoneThing> &gone) override
    {
        for (const auto &thing : gone)
            asked.push_back("finish " + thing.trashPath);
    }
    void dropLoneNote(const std::string &path, const std::string &) override
    {
        asked.push_back("drop " + path);
    }

    [[nodiscard]] bool holds(const std::string &path) const override
    {
        return path == folder || path.starts_with(folder + '/');
    }

    [[nodiscard]] std::vector<TrashEntry> items(const std::string &path) const override
    {
        std::vector<TrashEntry> items;
        for (const auto &thing : things)
            if (thing.starts_with(path + '/'))
                items.push_back({ .path = thing });
        return items;
    }

    [[nodiscard]] std::optional<FileKind> kind(const std::string &path) const override
    {
        return things.contains(path) ? std::optional(FileKind::other) : std::nullopt;
    }
    [[nodiscard]] std::optional<FileDates> dates(const std::string &) const override { return std::nullopt; }
    [[nodiscard]] std::optional<qint64> length(const std::string &) const override { return std::nullopt; }

private:
    [[nodiscard]] std::optional<QString> judged(const std::string &path, const TakingJudge &judge) const
    {
        const auto problem = failure(path);
        return problem || !judge ? problem : judge({ .path = path, .kind = FileKind::other });
    }

    [[nodiscard]] std::optional<QString> failure(const std::string &path) const
    {
        if (const auto found = stuck.find(path); found != stuck.end())
            return found->second;
        if (!things.contains(path))
            return QStringLiteral("Nothing is there.");
        return std::nullopt;
    }

    std::expected<void, QString> drop(const char *verb, const std::string &path)
    {
        asked.push_back(verb + path);
        if (const auto problem = failure(path))
            return std::unexpected(*problem);
        things.erase(path);
        return {};
    }
};

} // namespace Quillbrook
