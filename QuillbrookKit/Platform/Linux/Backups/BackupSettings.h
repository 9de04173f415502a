#pragma once

// What the settings of backup programs say about where they back up to. The bytes are other programs' and not
// trusted; what can't be understood says that nothing is set up. Pure functions.

#include <QByteArray>
#include <QByteArrayView>

#include <string>
#include <string_view>

namespace Quillbrook::BackupSettings {

/// Déjà Dup: whether `value`, as gsettings prints a text, tells of a last backup. Its destination is set even
/// where it was never used.
[[nodiscard]] bool isTextWithContent(QByteArrayView value);
/// The same from the settings file that Déjà Dup keeps inside a Flatpak.
[[nodiscard]] bool dejaDupHasRun(const QByteArray &keyFile);

/// Pika Backup: whether `json` holds any backup.
[[nodiscard]] bool pikaHasBackups(QByteArrayView json);

/// Vorta: whether its database holds any repository.
[[nodiscard]] bool vortaHasRepositories(QByteArray database);

/// Back In Time: whether any profile has a place for its snapshots.
[[nodiscard]] bool backInTimeHasPlace(const QByteArray &text);

struct Timeshift
{
    /// It copies the home folder to a device of its own.
    bool copiesHome = false;
    /// How many snapshots of the disk itself hold the home folder.
    int homeSnapshots = 0;

    bool operator==(const Timeshift &) const = default;
};

/// What Timeshift does for the folder `home` (raw bytes). As it comes it leaves home folders out.
[[nodiscard]] Timeshift timeshift(QByteArrayView json, const std::string &home);

/// Whether a systemd service, in the text of its unit, starts a program that backs up the folder `home`: one
/// that is told to take other places alone does not.
[[nodiscard]] bool startsBackup(const QByteArray &unit, const std::string &home);
/// "NAME.service" for "NAME.timer", and "NAME@.service" for "NAME@INSTANCE.timer"; empty for what is no
/// timer.
[[nodiscard]] std::string serviceOf(std::string_view timer);

} // namespace Quillbrook::BackupSettings
