#pragma once

// Where this user's programs keep caches, settings, data and state, when the environment moves them from the
// usual places in the home folder.

#include <QStringList>

#include <array>
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

    /// Of the machine: in a Flatpak the usual variables tell of the sandbox's own folders. A value that is no
    /// absolute path says nothing.
    [[nodiscard]] static LinuxBaseFolders of(const QProcessEnvironment &environment);
};

/// Turns a path of the tables, which name the usual places, into the one that holds on this machine.
class LinuxMovedPaths
{
public:
    LinuxMovedPaths(const LinuxBaseFolders &bases, const QString &home);

    /// Gives up every base that was moved to, into or around a place of the tables that is outside of the
    /// bases: what lies there could be told as two things. Relative to home.
    void keepClearOf(const QString &place);
    /// Relative to home. Absent for what lies in a base that was moved out of the home folder, or to where
    /// another base is.
    [[nodiscard]] std::optional<QString> of(const QString &path) const;
    /// The bases that were moved, relative to home.
    [[nodiscard]] QStringList moved() const;

private:
    struct Base
    {
        QString usual{};
        std::optional<QString> actual{};
    };

    std::array<Base, 4> m_bases;
};

} // namespace Quillbrook
