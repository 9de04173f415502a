#pragma once

// What applications and games are called, from the small files in which other programs note it. Their content
// is not trusted: a name is one line, and where none is found the identifier has to do. Private to the
// catalogue.

#include <QByteArrayView>
#include <QString>

#include <optional>
#include <string>

namespace Quillbrook {

class FileReading;
struct HostCatalogue;

namespace ApplicationNames {

/// By the desktop entry that Flatpak exports for the application `id`, to the home folder (raw bytes) or for
/// all users, else that id.
[[nodiscard]] QString ofFlatpak(
    const FileReading &reading, const HostCatalogue &host, const std::string &home, const QString &id);
/// By the manifest that Steam keeps in `folder` (raw bytes) for the game of that number; absent without one.
[[nodiscard]] std::optional<QString> ofSteamGame(
    const FileReading &reading, const std::string &folder, const QString &number);

/// The "Name" of the first group of a desktop entry.
[[nodiscard]] std::optional<QString> parseDesktopEntry(QByteArrayView text);
/// The first "name" of a game's manifest.
[[nodiscard]] std::optional<QString> parseSteamManifest(QByteArrayView text);

} // namespace ApplicationNames

} // namespace Quillbrook
