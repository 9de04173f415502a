#pragma once

// What an application wrote outside of itself. Plain values.

#include <QHash>
#include <QString>

#include <cstdint>
#include <functional>
#include <span>
#include <string>

namespace Quillbrook {

enum class LeftoverKind : std::uint8_t {
    container,
    groupContainer,
    supportFiles,
    cache,
    preferences,
    savedState,
    webStorage,
    logs,
    cookies,
    launchItem,
    scripts,
    systemWide
};

/// One kind, what it is called, and what it is good for.
struct LeftoverKindRow
{
    LeftoverKind kind;
    QString rawValue;
    QString explanation;
};

/// In the order of the enumeration.
[[nodiscard]] std::span<const LeftoverKindRow> leftoverKinds();
[[nodiscard]] const QString &rawValue(LeftoverKind kind);
[[nodiscard]] const QString &explanation(LeftoverKind kind);

struct Leftover
{
    /// Absolute, in raw bytes.
    std::string path{};
    LeftoverKind kind = LeftoverKind::supportFiles;
    qint64 bytes = 0;
    /// It is only shown, never removed.
    bool needsAdministrator = false;

    bool operator==(const Leftover &) const = default;

    [[nodiscard]] const std::string &id() const { return path; }
    [[nodiscard]] const QString &label() const { return rawValue(kind); }
};

[[nodiscard]] inline size_t qHash(const Leftover &leftover, size_t seed = 0)
{
    return qHashMulti(seed, std::hash<std::string>{}(leftover.path), int(leftover.kind), leftover.bytes,
        leftover.needsAdministrator);
}

} // namespace Quillbrook
