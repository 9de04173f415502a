#pragma once

// What a Linux desktop adds to the guards of a removal: the system's own folders and those of its package
// systems, drives, the folders every home has, keys, wallets, encrypted files, folders shared with other
// devices, the Trash, containers, virtual machines, and Quillbrook itself.
//
// Each row was weighed: what it names breaks something, or is gone for good, when a piece of it is taken out
// behind the back of the program that keeps it.

#include "Platform/Linux/Trash/TrashPlaces.h"
#include "Removal/HostGuards.h"

namespace Quillbrook {

class FileReading;
class HomeFolder;

namespace LinuxGuards {

/// What the guards go by besides the path. Paths are absolute and standardised.
struct Places
{
    std::string userName{};
    /// The home folder, and where its links lead.
    std::vector<std::string> homes{};
    /// The user's own folders, whatever their language calls them.
    std::vector<std::string> userFolders{};
    TrashPlaces trashes{};
    /// The program's own file, its AppImage if it is one, and the folders it keeps its own data in.
    std::vector<std::string> programFiles{};
    std::vector<std::string> ownFolders{};
    /// Whether something is mounted at exactly this path, asked at each judgement.
    std::function<bool(const std::string &path)> isMountPoint{};
    /// By which paths besides its own the home folder can be reached, asked at each judgement.
    std::function<std::vector<std::string>()> otherMountsOfHome{};
};

/// Those of this process.
[[nodiscard]] Places places(const HomeFolder &home, const FileReading &reading);

/// The guards, which look at the disk for where links lead and for what is mounted. Callable from any thread.
[[nodiscard]] HostGuards guards(const Places &places);

} // namespace LinuxGuards

} // namespace Quillbrook
