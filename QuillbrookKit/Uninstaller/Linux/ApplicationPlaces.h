#pragma once

// Where a Linux desktop keeps its applications, and by which programs it is asked about them. Paths are
// absolute, in raw bytes, without a slash at their end.

#include <QStringList>

#include <string>
#include <vector>

class QProcessEnvironment;

namespace Quillbrook {

class HomeFolder;

struct ApplicationPlaces
{
    std::string home{};
    /// Where programs of this user keep data, settings, caches and state.
    std::string data{};
    std::string config{};
    std::string cache{};
    std::string state{};
    /// Where the system's programs keep data, the first first.
    std::vector<std::string> systemData{};
    /// Flatpak's folders.
    std::string userFlatpak{};
    std::string systemFlatpak{};
    /// Where snapd keeps entries and images, and where it mounts them.
    std::string snapd{};
    std::string snaps{};
    /// Folders that programs are looked for in by name, in order.
    std::vector<std::string> programs{};
    /// Where settings and state of the whole system are.
    std::string systemConfig{};
    std::string systemState{};
    /// Fixed tools; one that is not there is not asked.
    std::string dpkgQuery{};
    std::string rpm{};
    std::string flatpak{};
    /// The icon theme of the desktop, by the name of its folder; empty where that isn't known.
    std::string iconTheme{};
    /// Those that are looked in last, behind the one that all programs put theirs into, in order.
    std::vector<std::string> lastIconThemes{};
    /// The names by which the session's desktop is known to entries, the one that counts most first.
    QStringList desktops{};
    /// The file of the running program, and its AppImage where it is one.
    std::vector<std::string> ownFiles{};

    [[nodiscard]] static ApplicationPlaces ofThisUser(
        const HomeFolder &home, const QProcessEnvironment &environment);
};

} // namespace Quillbrook
