#pragma once

// Reading one folder's entries with what a scan needs of them: one call a folder, never one virtual call a
// file. A scan asks the factory for one session; each worker asks the session for a reader of its own, which
// owns its scratch and is used by that worker alone.

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Quillbrook {

/// One directory entry. `device` is what a scan compares to stay on one device (0: not told), `fileId` names
/// the file for hard-link counting together with `fileDevice` (fileId 0: not told), `allocatedSize` is bytes
/// on disk. `isMeasured` is false where the system did not tell a file's size, which is 0 then.
/// `isMountPoint` is told of folders only. `name` points into the reader's scratch and is valid until the
/// next call on the same reader. Folders need tell no more than their name, type, device and mount state.
struct DirectoryRecord
{
    enum class Type : std::uint8_t { other, directory, symlink };

    std::string_view name{};
    std::uint64_t device = 0;
    std::uint64_t fileDevice = 0;
    std::uint64_t fileId = 0;
    std::int64_t allocatedSize = 0;
    std::uint32_t linkCount = 1;
    Type type = Type::other;
    bool isMountPoint = false;
    bool isMeasured = true;
};

/// What a reader tells of a file on another device: its name alone, without touching that device, or its size
/// as well.
enum class OtherDevices : std::uint8_t { named, measured };

/// Reads folders for one worker. Not thread-safe; never shared.
class DirectoryReader
{
public:
    virtual ~DirectoryReader() = default;

    /// Opens `path` (absolute, raw bytes, of any length); false when it can't be opened as a folder, for
    /// whatever reason. The root of a scan may be a link and is followed; any other folder is not. Every
    /// other folder is one that this session's records named, below the root.
    [[nodiscard]] virtual bool open(const std::string &path, OtherDevices others) = 0;
    /// The next batch of records of the open folder, without "." and ".." and what has gone meanwhile; empty
    /// at the end. An error in the middle ends the folder, keeping what was read.
    [[nodiscard]] virtual std::span<const DirectoryRecord> next() = 0;
    /// Ends the open folder; called once after each successful `open`.
    virtual void close() = 0;
};

/// What is known once for a whole scan. Thread-safe after construction.
class DirectorySession
{
public:
    virtual ~DirectorySession() = default;
    /// The device of the scan's root, comparable with `DirectoryRecord::device`; absent when it can't be
    /// told.
    [[nodiscard]] virtual std::optional<std::uint64_t> rootDevice() const = 0;
    [[nodiscard]] virtual std::unique_ptr<DirectoryReader> makeReader() = 0;
};

/// The platform's way to read folders. Thread-safe; lives as long as the process.
class DirectoryReading
{
public:
    virtual ~DirectoryReading() = default;
    [[nodiscard]] virtual std::unique_ptr<DirectorySession> session(const std::string &rootPath) = 0;
};

} // namespace Quillbrook
