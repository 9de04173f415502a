#pragma once

// What a sandboxed program keeps of a folder that a person has handed to it, so that it need not ask again.
// Main thread only.

#include <QByteArray>
#include <QString>

#include <expected>
#include <optional>
#include <string>

namespace Quillbrook {

class FolderGrants
{
public:
    struct Resolved
    {
        /// Where the folder is now. Absolute, in raw bytes.
        std::string path{};
        /// It is the folder, but what was kept is out of date and should be made anew.
        bool isStale = false;

        bool operator==(const Resolved &) const = default;
    };

    virtual ~FolderGrants() = default;
    /// What to keep of a folder that was picked; a failure is a text for the log.
    [[nodiscard]] virtual std::expected<QByteArray, QString> bookmark(const std::string &path) = 0;
    /// The folder that was kept; absent when the data are of no use, or the grant is gone.
    [[nodiscard]] virtual std::optional<Resolved> resolve(const QByteArray &bookmark) = 0;
    /// Whether the folder can be read from now on.
    [[nodiscard]] virtual bool startAccessing(const std::string &path) = 0;
    virtual void stopAccessing(const std::string &path) = 0;
    /// Whether the desktop's own places for homes tell that the folder lies on the startup disk; by its path
    /// alone.
    [[nodiscard]] virtual bool isOnStartupDisk(const std::string & /*path*/) const { return false; }
};

} // namespace Quillbrook
