#pragma once

// One named member of a finding: one simulator, one project's build files. A plain value.

#include <QDateTime>
#include <QString>

#include <optional>
#include <string>

namespace Quillbrook {

struct StorageItem
{
    /// "{rule id}/{directory entry name}".
    QString id{};
    QString name{};
    /// What kind of thing it is, in one short phrase.
    QString detail{};
    /// Absolute.
    QString path{};
    qint64 bytes = 0;
    std::optional<QDateTime> created{};
    std::optional<QDateTime> lastModified{};
    /// False when the item must not be removed now.
    bool removable = true;
    /// Why not, for people to read; present exactly when `removable` is false.
    std::optional<QString> blockedReason{};
    /// The path in raw bytes, for system calls.
    std::string rawPath{};

    bool operator==(const StorageItem &) const = default;
};

} // namespace Quillbrook
