#pragma once

// The user's own folders, which a desktop names in the user's language.

#include <QByteArray>
#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace Quillbrook {

class FileReading;

namespace LinuxUserFolders {

/// Absolute paths. One that is switched off, which is spelt as the home folder itself, is absent.
struct Folders
{
    std::optional<QString> desktop{};
    std::optional<QString> documents{};
    std::optional<QString> downloads{};
    std::optional<QString> music{};
    std::optional<QString> pictures{};
    std::optional<QString> publicShare{};
    std::optional<QString> templates{};
    std::optional<QString> videos{};

    bool operator==(const Folders &) const = default;

    /// Those that are present.
    [[nodiscard]] std::vector<QString> all() const;
};

/// From the text of user-dirs.dirs: lines of XDG_NAME_DIR="$HOME/..." or an absolute path. A line that is
/// anything else says nothing; of two for one folder the later counts.
[[nodiscard]] Folders parse(const QByteArray &text, const QString &home);
/// From the file among the user's settings, which lie in the folder `settings` (absolute, raw bytes); all
/// absent without it.
[[nodiscard]] Folders read(const FileReading &reading, const std::string &settings, const QString &home);

} // namespace LinuxUserFolders

} // namespace Quillbrook
