#pragma once

// Reads real folders and calls the test at known moments, so that it can change the disk just then. The hooks
// are set before the scan and called on the workers' threads.

#include "Platform/DirectoryReader.h"

#include <functional>
#include <string>
#include <utility>

namespace Quillbrook {

class HookedDirectories final : public DirectoryReading
{
public:
    using Hook = std::function<void(const std::string &path)>;

    explicit HookedDirectories(DirectoryReading &real)
        : m_real(real)
    {
    }

    [[nodiscard]] std::unique_ptr<DirectorySession> session(const std::string &rootPath) override
    {
        return std::make_unique<Session>(*this, m_real.session(rootPath));
    }

    Hook beforeOpen = [](const std::string &) {};
    Hook afterOpen = [](const std::string &) {};

private:
    class Reader final : public DirectoryReader
    {
    public:
        Reader(HookedDirectories &hooks, std::unique_ptr<DirectoryReader> real)
            : m_hooks(hooks)
            , m_real(std::move(real))
        {
        }
        bool open(const std::string &path, OtherDevices others) override
        {
            m_hooks.beforeOpen(path);
            const bool opened = m_real->open(path, others);
            m_hooks.afterOpen(path);
            return opened;
        }
        std::span<const DirectoryRecord> next() override { return m_real->next(); }
        void close() override { m_real->close(); }

    private:
        HookedDirectories &m_hooks;
        std::unique_ptr<DirectoryReader> m_real;
    };

    class Session final : public DirectorySession
    {
    public:
        Session(HookedDirectories &hooks, std::unique_ptr<DirectorySession> real)
            : m_hooks(hooks)
            , m_real(std::move(real))
        {
        }
        std::optional<std::uint64_t> rootDevice() const override { return m_real->rootDevice(); }
        std::unique_ptr<DirectoryReader> makeReader() override
        {
            return std::make_unique<Reader>(m_hooks, m_real->makeReader());
        }

    private:
        HookedDirectories &m_hooks;
        std::unique_ptr<DirectorySession> m_real;
    };

    DirectoryReading &m_real;
};

} // namespace Quillbrook
