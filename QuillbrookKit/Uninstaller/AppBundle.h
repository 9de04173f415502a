#pragma once

// One application as it is listed, whatever kind it is of. A plain value.

#include <QDateTime>
#include <QHash>
#include <QString>

#include <functional>
#include <optional>
#include <string>

namespace Quillbrook {

/// Tells how many bytes lie at a path (raw bytes): a folder's by a walk of its own, a file's length, 0 for
/// nothing. Blocks on the disk; called on the thread of who was handed it.
using Measure = std::function<qint64(const std::string &path)>;

struct AppBundle
{
    /// Absolute, in raw bytes.
    std::string path{};
    QString name{};
    /// Empty for one that declares none.
    QString bundleID{};
    /// As the application words it.
    std::optional<QString> version{};
    qint64 bytes = 0;
    /// It came from a store that can hand it out again.
    bool fromAppStore = false;
    /// It belongs to the operating system.
    bool isSystem = false;
    /// By deliberate definition when `path` was last modified; absent where that can't be read.
    std::optional<QDateTime> lastOpened{};

    bool operator==(const AppBundle &) const = default;
};

[[nodiscard]] inline size_t qHash(const AppBundle &app, size_t seed = 0)
{
    return qHashMulti(seed, std::hash<std::string>{}(app.path), app.name, app.bundleID,
        app.version.value_or(QString()), app.bytes, app.fromAppStore, app.isSystem,
        app.lastOpened.value_or(QDateTime()));
}

} // namespace Quillbrook
