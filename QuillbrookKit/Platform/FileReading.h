#pragma once

// Reading a small file of another program's whole, where its format is known and its content is not trusted.

#include <QByteArray>

#include <optional>
#include <string>

namespace Quillbrook {

class FileReading
{
public:
    virtual ~FileReading() = default;
    /// The bytes of the regular file that `path` (raw bytes) leads to. Absent when it can't be read, is no
    /// regular file, or is longer than `limit` bytes; never waits on a pipe or a device. Any thread.
    [[nodiscard]] virtual std::optional<QByteArray> contents(
        const std::string &path, qsizetype limit) const = 0;
};

} // namespace Quillbrook
