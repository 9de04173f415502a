#pragma once

// What the environment tells of the desktop this process belongs to.

#include "Platform/Linux/Sandbox/Sandbox.h"

#include <QStringList>

#include <string>
#include <vector>

namespace Quillbrook {

struct DesktopSession
{
    Sandbox sandbox{};
    /// The names the desktop goes by, the most fitting first; empty without one.
    QStringList desktops{};
    /// Where the user's settings are, and then, in their order, those of the whole system. Absolute, in raw
    /// bytes.
    std::string configFolder{};
    std::vector<std::string> systemConfigFolders{};
    /// Where programs are looked for.
    QStringList programFolders{};

    /// `home` is the user's home folder (raw bytes), `root` the one to look for a sandbox's marks in.
    [[nodiscard]] static DesktopSession of(const QProcessEnvironment &environment, const std::string &home,
        const QString &root = QStringLiteral("/"));

    /// The absolute path of a program by its name or path; empty when it is not there to be run.
    [[nodiscard]] QString findProgram(const QString &name) const;

    bool operator==(const DesktopSession &) const = default;
};

} // namespace Quillbrook
