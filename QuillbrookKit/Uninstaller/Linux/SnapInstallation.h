#pragma once

// What snapd keeps of one snap, by its own files: no process is started.

#include <QString>

#include <optional>
#include <string>

namespace Quillbrook {

class FileReading;
struct ApplicationPlaces;

namespace SnapInstallation {

/// The image of the snap `name` (raw bytes) that is in use, else the newest one; empty where there is none.
[[nodiscard]] std::string image(const ApplicationPlaces &places, const std::string &name);
/// As the snap words it; absent where it doesn't say.
[[nodiscard]] std::optional<QString> version(
    const FileReading &reading, const ApplicationPlaces &places, const std::string &name);

} // namespace SnapInstallation

} // namespace Quillbrook
