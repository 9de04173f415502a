#pragma once

// Writing the program's own small files, which have to survive a kill, a loss of power and a full disk. Paths
// are absolute and raw bytes; errors are texts for a person to read. Callable from any thread; blocks on the
// disk.

#include <QByteArrayView>
#include <QString>

#include <expected>
#include <string>

namespace Quillbrook {

class FileWriting
{
public:
    virtual ~FileWriting() = default;

    /// Puts a file of `content` at `path`, in the place of what is there, with the folders it needs; only the
    /// user may read either. Whatever happens meanwhile, `path` holds the whole of the old content or the
    /// whole of the new. A folder at `path` is an error.
    [[nodiscard]] virtual std::expected<void, QString> replace(
        const std::string &path, QByteArrayView content)
        = 0;

    /// Adds `content` at the end of the file at `path`, with the folders it needs; only the user may read
    /// either. All of it or, on an error, nothing. It outlives a kill of the program at once, and a loss of
    /// power only once the system has written it out. What is no file of its own is an error.
    [[nodiscard]] virtual std::expected<void, QString> append(const std::string &path, QByteArrayView content)
        = 0;
};

} // namespace Quillbrook
