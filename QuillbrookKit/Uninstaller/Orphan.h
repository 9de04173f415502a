#pragma once

// A folder named after an application that nothing installed can be. A plain value.

#include "Uninstaller/Leftover.h"

#include <QDateTime>

#include <optional>

namespace Quillbrook {

struct Orphan
{
    /// Absolute, in raw bytes.
    std::string path{};
    /// The name of it, without what its place adds at the end.
    QString bundleID{};
    LeftoverKind kind = LeftoverKind::supportFiles;
    qint64 bytes = 0;
    std::optional<QDateTime> lastModified{};

    bool operator==(const Orphan &) const = default;

    /// What the application may have been called, by the last piece of the identifier.
    [[nodiscard]] QString guessedApp() const;
};

[[nodiscard]] inline size_t qHash(const Orphan &orphan, size_t seed = 0)
{
    return qHashMulti(seed, std::hash<std::string>{}(orphan.path), orphan.bundleID, int(orphan.kind),
        orphan.bytes, orphan.lastModified.value_or(QDateTime()));
}

} // namespace Quillbrook
