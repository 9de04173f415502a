#pragma once

// Opens the folders of a trash, and makes them where they are wanted and missing. A folder that another user
// owns, or that is a link, is never used.

#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Folders/MountedDevice.h"
#include "Platform/Linux/Trash/FileCalls.h"
#include "Platform/Linux/Trash/TrashPlaces.h"

#include <expected>
#include <mutex>
#include <optional>

namespace Quillbrook {

/// An open trash. `top` is the top of its volume, which notes name origins from; empty for the home trash,
/// whose notes name them from the root.
struct TrashFolder
{
    std::string path{};
    std::string top{};
    FileDescriptor self{};
    FileDescriptor files{};
    FileDescriptor info{};
};

/// A trash that stays open for the next move. Callable from any thread; what is taken is nobody else's until
/// it is given back.
class OpenTrash
{
public:
    /// Absent where none is kept for what lies on that device.
    [[nodiscard]] std::optional<TrashFolder> take(MountedDevice device);
    void giveBack(MountedDevice device, TrashFolder trash);

private:
    std::mutex m_mutex;
    MountedDevice m_device;
    std::optional<TrashFolder> m_trash;
};

class TrashFolders
{
public:
    using Result = std::expected<TrashFolder, int>;

    /// Both outlive this object.
    TrashFolders(const TrashPlaces &places, const FileCalls &calls)
        : m_places(places)
        , m_calls(calls)
    {
    }

    /// The trash for what lies on `device`, made if need be: the home trash, or else that of the volume.
    /// ENOTSUP where there can be none.
    [[nodiscard]] Result forDevice(MountedDevice device) const;
    /// Whether the open trash is still the one at its path, and the user's own.
    [[nodiscard]] bool isInPlace(const TrashFolder &trash) const;
    /// The trash at this path, as it is. Where something is mounted in it, it is none: EXDEV.
    [[nodiscard]] Result existing(const std::string &trash) const;
    /// A folder in an open one, with what the user may do there; made where it is missing and `isMade` says
    /// so. ENOTSUP where it is not the user's.
    [[nodiscard]] std::expected<FileDescriptor, int> ownFolder(
        int folder, const std::string &name, bool isMade) const;

private:
    [[nodiscard]] Result homeTrash(MountedDevice device) const;
    [[nodiscard]] Result volumeTrash(MountedDevice device) const;
    [[nodiscard]] Result sharedTrash(int top, const std::string &topPath) const;
    [[nodiscard]] Result opened(
        int parent, const std::string &name, const std::string &path, bool isMade) const;
    [[nodiscard]] std::expected<FileDescriptor, int> homeTrashParent(MountedDevice device) const;
    [[nodiscard]] bool isFolderInPlace(const FileDescriptor &folder, const std::string &path) const;
    [[nodiscard]] bool isOn(const FileDescriptor &folder, MountedDevice device) const;

    const TrashPlaces &m_places;
    const FileCalls &m_calls;
};

} // namespace Quillbrook
