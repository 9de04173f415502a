#pragma once

// The places of the tables on a machine whose environment moves the base folders.

#include "Platform/Linux/Folders/LinuxBaseFolders.h"

#include <QStringList>

#include <array>
#include <optional>

namespace Quillbrook {

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
