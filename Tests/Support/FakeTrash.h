#pragma once

// A machine whose disk is a set of paths, some of them in the Trash, where a test makes a move, a return or a
// deletion fail. Everything asked for is remembered.

#include "Platform/FileFacts.h"
#include "Platform/FileRemoval.h"
#include "Platform/Trash.h"

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

    std::expected<std::string, QString> move(const std::string &path) override
    {
        asked.push_back("move " + path);
        if (const auto problem = failure(path))
            return std::unexpected(*problem);
        const auto name = path.substr(path.find_last_of('/') + 1);
        auto trashed = folder + "/files/" + name;
        for (int i = 2; things.contains(trashed); ++i)
            trashed = folder + "/files/" + name + '.' + std::to_string(i);
        things.erase(path);
        things.insert(trashed);
        return trashed;
    }

    std::expected<void, QString> restore(const std::string &from, const std::string &to) override
    {
        asked.push_back("restore " + from + ' ' + to);
        if (const auto problem = failure(from))
            return std::unexpected(*problem);
        if (!things.insert(to).second)
            return std::unexpected(QStringLiteral("Something else is there."));
        things.erase(from);
        return {};
    }

    std::expected<void, QString> erase(const std::string &path) override { return drop("erase ", path); }
    std::expected<void, QString> remove(const std::string &path) override { return drop("remove ", path); }

    [[nodiscard]] bool mayComeFrom(
        const std::string &from, const std::string &to, const QDateTime &) const override
    {
        const auto found = origins.find(from);
        return found == origins.end() || found->second == to;
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
