#pragma once

// Folders that exist only in a test, for what a disk can't be made to do on demand. The folders are set up
// before the scan; what the readers report is safe to read after it, or through the functions that wait.

#include "Platform/DirectoryReader.h"

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace Quillbrook {

class FakeDirectories final : public DirectoryReading
{
public:
    static constexpr std::uint64_t homeDevice = 7;

    [[nodiscard]] std::unique_ptr<DirectorySession> session(const std::string &rootPath) override;

    /// Makes the folder at `path` hold `records`. Their names are literals; a record without a device is on
    /// the root's.
    void folder(const std::string &path, std::vector<DirectoryRecord> records);
    /// Records of the two common kinds.
    [[nodiscard]] static DirectoryRecord aFolder(std::string_view name);
    [[nodiscard]] static DirectoryRecord aFile(std::string_view name, std::int64_t size = 0);

    /// The folders that readers tried to open, in order.
    [[nodiscard]] std::vector<std::string> opened() const;
    [[nodiscard]] int sessionsMade() const;
    [[nodiscard]] int readersMade() const;
    [[nodiscard]] int readersEnded() const;
    /// Waits until so many readers are at work or have ended; false when that takes too long.
    [[nodiscard]] bool waitForReaders(int made) const;
    [[nodiscard]] bool waitForEndedReaders(int ended) const;

    /// Called on the worker's thread before each open.
    std::function<void(const std::string &path)> beforeOpen{};
    /// Folders that can't be opened, besides those that were never set up.
    std::set<std::string> closed{};
    std::optional<std::uint64_t> rootDevice = homeDevice;
    /// How many records a read delivers at most.
    size_t recordsPerRead = 1000;

private:
    class Session;
    class Reader;

    [[nodiscard]] bool waitUntil(const std::function<bool()> &holds) const;

    std::map<std::string, std::vector<DirectoryRecord>> m_folders;
    mutable std::mutex m_lock;
    mutable std::condition_variable m_changed;
    std::vector<std::string> m_opened;
    int m_madeSessions = 0;
    int m_madeReaders = 0;
    int m_endedReaders = 0;
};

} // namespace Quillbrook
