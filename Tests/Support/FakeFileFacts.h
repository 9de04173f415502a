#pragma once

// A disk of which only the paths that a test names exist. It is set up before it is asked.

#include "Platform/FileFacts.h"

#include <functional>
#include <map>

namespace Quillbrook {

class FakeFileFacts final : public FileFacts
{
public:
    struct Entry
    {
        FileKind kind = FileKind::directory;
        std::optional<FileDates> dates{};
        std::optional<qint64> length{};
    };

    [[nodiscard]] std::optional<FileKind> kind(const std::string &path) const override
    {
        if (beforeKind)
            beforeKind(path);
        const auto found = entries.find(path);
        return found == entries.end() ? std::nullopt : std::optional(found->second.kind);
    }
    [[nodiscard]] std::optional<FileDates> dates(const std::string &path) const override
    {
        const auto found = entries.find(path);
        return found == entries.end() ? std::nullopt : found->second.dates;
    }

    [[nodiscard]] std::optional<qint64> length(const std::string &path) const override
    {
        const auto found = entries.find(path);
        return found == entries.end() ? std::nullopt : found->second.length;
    }

    std::map<std::string, Entry> entries{};
    /// Called on the asking thread. May be empty.
    std::function<void(const std::string &path)> beforeKind{};
};

} // namespace Quillbrook
