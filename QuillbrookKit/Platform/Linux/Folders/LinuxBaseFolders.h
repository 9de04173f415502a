#pragma once

// Where this user's programs keep caches, settings, data and state, when the environment moves them from the
// usual places in the home folder.

#include <QString>

#include <optional>

class QProcessEnvironment;

namespace Quillbrook {

struct LinuxBaseFolders
{
    /// Absolute; absent where the usual place holds.
    std::optional<QString> cache{};
    std::optional<QString> config{};
    std::optional<QString> data{};
    std::optional<QString> state{};

    bool operator==(const LinuxBaseFolders &) const = default;

    /// Those of the user's other programs. In a sandbox the usual variables name its own folders: a Flatpak
    /// has further ones for the user's, and a Snap under strict confinement has none, so that the usual
    /// places hold. A value that is no absolute path says nothing.
    [[nodiscard]] static LinuxBaseFolders of(const QProcessEnvironment &environment);
};

} // namespace Quillbrook
