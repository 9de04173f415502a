#pragma once

// Which programs of this user run at one moment, by what the kernel and the session bus tell of them. This
// process itself doesn't count.

#include <QSet>
#include <QString>

#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace Quillbrook {

struct RunningPrograms
{
    /// Identifiers that the session started things under, and names on the session bus.
    QSet<QString> ids{};
    /// Paths (raw bytes) of running files: programs, scripts, AppImages.
    std::set<std::string> files{};

    /// By a folder like the kernel's of processes. Absent where that can't be read.
    [[nodiscard]] static std::optional<RunningPrograms> read(const std::string &processes = "/proc");
    /// The names on this user's session bus; none where there is none.
    [[nodiscard]] static QSet<QString> busNames();
    /// The identifier in the last part of a control group's path, as "app-gnome-org.one.App-123.scope";
    /// empty where there is none.
    [[nodiscard]] static QString idOfGroup(std::string_view group);
};

} // namespace Quillbrook
