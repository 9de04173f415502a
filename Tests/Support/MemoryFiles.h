#pragma once

// Files in memory, for what reads and writes whole ones, on any thread. Writing fails for as long as a test
// says so.

#include "Platform/FileReading.h"
#include "Platform/FileWriting.h"

#include <map>
#include <mutex>

namespace Quillbrook {

class MemoryFiles final : public FileReading, public FileWriting
{
public:
    std::map<std::string, QByteArray> files;
    bool isFull = false;
    /// How often something was written or should have been.
    int writes = 0;

    [[nodiscard]] std::optional<QByteArray> contents(const std::string &path, qsizetype limit) const override
    {
        const std::scoped_lock lock(m_mutex);
        const auto found = files.find(path);
        if (found == files.end() || found->second.size() > limit)
            return std::nullopt;
        return found->second;
    }

    std::expected<void, QString> replace(const std::string &path, QByteArrayView content) override
    {
        const std::scoped_lock lock(m_mutex);
        ++writes;
        if (isFull)
            return std::unexpected(QStringLiteral("No space left on device"));
        files[path] = content.toByteArray();
        return {};
    }

    std::expected<void, QString> append(const std::string &path, QByteArrayView content) override
    {
        const std::scoped_lock lock(m_mutex);
        if (isFull)
            return std::unexpected(QStringLiteral("No space left on device"));
        files[path] += content.toByteArray();
        return {};
    }

private:
    mutable std::mutex m_mutex;
};

} // namespace Quillbrook
