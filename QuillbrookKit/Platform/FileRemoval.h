#pragma once

// Deleting for good, without a way back.

#include <QString>

#include <expected>
#include <string>

namespace Quillbrook {

class FileRemoval
{
public:
    virtual ~FileRemoval() = default;

    /// Deletes what lies at `path` (absolute, raw bytes, of any length), a folder with all in it. A link goes
    /// as a link, wherever it leads, and nothing on another mount is touched. What can't be deleted is left
    /// out, and the rest goes: the error, a sentence for a person to read, tells of the first such thing and
    /// how many there were. That nothing lies at `path` is an error too. Guards nothing. Callable from any
    /// thread, and blocks on the disk.
    [[nodiscard]] virtual std::expected<void, QString> remove(const std::string &path) = 0;
};

} // namespace Quillbrook
