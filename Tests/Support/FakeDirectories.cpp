#include "Support/FakeDirectories.h"

#include <algorithm>
#include <chrono>

namespace Quillbrook {

class FakeDirectories::Reader final : public DirectoryReader
{
public:
    explicit Reader(FakeDirectories &directories)
        : m_directories(directories)
    {
        const std::scoped_lock lock(m_directories.m_lock);
        ++m_directories.m_madeReaders;
        m_directories.m_changed.notify_all();
    }

    ~Reader() override
    {
        const std::scoped_lock lock(m_directories.m_lock);
        ++m_directories.m_endedReaders;
        m_directories.m_changed.notify_all();
    }

    bool open(const std::string &path, OtherDevices) override
    {
        if (m_directories.beforeOpen)
            m_directories.beforeOpen(path);
        const std::scoped_lock lock(m_directories.m_lock);
        m_directories.m_opened.push_back(path);
        const auto found = m_directories.m_folders.find(path);
        if (found == m_directories.m_folders.end() || m_directories.closed.contains(path))
            return false;
        m_left = found->second;
        return true;
    }

    std::span<const DirectoryRecord> next() override
    {
        const auto batch = m_left.first(std::min(m_left.size(), m_directories.recordsPerRead));
        m_left = m_left.subspan(batch.size());
        return batch;
    }

    void close() override { m_left = {}; }

private:
    FakeDirectories &m_directories;
    std::span<const DirectoryRecord> m_left;
};

class FakeDirectories::Session final : public DirectorySession
{
public:
    explicit Session(FakeDirectories &directories)
        : m_directories(directories)
    {
    }

    std::optional<std::uint64_t> rootDevice() const override { return m_directories.rootDevice; }
    std::unique_ptr<DirectoryReader> makeReader() override { return std::make_unique<Reader>(m_directories); }

private:
    FakeDirectories &m_directories;
};

std::unique_ptr<DirectorySession> FakeDirectories::session(const std::string &)
{
    const std::scoped_lock lock(m_lock);
    ++m_madeSessions;
    return std::make_unique<Session>(*this);
}

void FakeDirectories::folder(const std::string &path, std::vector<DirectoryRecord> records)
{
    m_folders[path] = std::move(records);
}

DirectoryRecord FakeDirectories::aFolder(std::string_view name)
{
    return { .name = name, .device = homeDevice, .type = DirectoryRecord::Type::directory };
}

DirectoryRecord FakeDirectories::aFile(std::string_view name, std::int64_t size)
{
    return { .name = name, .device = homeDevice, .allocatedSize = size };
}

std::vector<std::string> FakeDirectories::opened() const
{
    const std::scoped_lock lock(m_lock);
    return m_opened;
}

int FakeDirectories::sessionsMade() const
{
    const std::scoped_lock lock(m_lock);
    return m_madeSessions;
}

int FakeDirectories::readersMade() const
{
    const std::scoped_lock lock(m_lock);
    return m_madeReaders;
}

int FakeDirectories::readersEnded() const
{
    const std::scoped_lock lock(m_lock);
    return m_endedReaders;
}

bool FakeDirectories::waitForReaders(int made) const
{
    return waitUntil([&] { return m_madeReaders >= made; });
}

bool FakeDirectories::waitForEndedReaders(int ended) const
{
    return waitUntil([&] { return m_endedReaders >= ended; });
}

bool FakeDirectories::waitUntil(const std::function<bool()> &holds) const
{
    std::unique_lock lock(m_lock);
    return m_changed.wait_for(lock, std::chrono::seconds(20), holds);
}

} // namespace Quillbrook
