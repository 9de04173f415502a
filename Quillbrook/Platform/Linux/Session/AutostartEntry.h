#pragma once

// The desktop entry that starts a program with the session: what one says, and how ours is written. Pure.

#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <optional>

namespace Quillbrook {

struct AutostartEntry
{
    /// Unquoted no further than the file's own escapes; empty when absent.
    QString exec{};
    /// A program without which nothing starts; empty when absent.
    QString tryExec{};
    bool isHidden = false;
    /// The switch that some desktops add.
    bool isSwitchedOff = false;
    /// The desktops that alone start it; absent when all do.
    std::optional<QStringList> onlyShowIn{};
    QStringList notShowIn{};

    bool operator==(const AutostartEntry &) const = default;

    /// What a file says; of a key that stands twice the last counts. Absent without a desktop entry in it.
    [[nodiscard]] static std::optional<AutostartEntry> parse(QByteArrayView text);
    /// Whether a desktop of these names starts it, `tryExec` left aside.
    [[nodiscard]] bool isFor(const QStringList &desktops) const;
};

/// The file that starts `program` (an absolute path) in the background. A hidden one keeps anything of its
/// name from being started.
[[nodiscard]] QByteArray autostartFile(const QString &program, bool isHidden);

} // namespace Quillbrook
