#pragma once

// Deleting for good, without a way back.

#include "Platform/TakenThing.h"

#include <expected>

namespace Quillbrook {

class FileRemoval
{
public:
    virtual ~FileRemoval() = default;

    /// Deletes what lies at `path` (absolute, raw bytes, of any length), a folder with all in it. A link goes
    /// as a link, wherever it leads, and nothing on another mount is touched. What can't be deleted is left
    /// out, and the rest goes: the error, a sentence for a person to read, tells of the first such thing and
    /// how many there were. That nothing lies at `path` is an error too. Guards nothing besides what `judge`
    /// says, where there is one. Callable from any thread, and blocks on the disk.
    [[nodiscard]] virtual std::expected<void, QString> remove(
        const std::string &path, const TakingJudge &judge)
        = 0;
    [[nodiscard]] std::expected<void, QString> remove(const std::string &path)
    {
        return remove(path, TakingJudge());
    }
};

} // namespace Quillbrook
