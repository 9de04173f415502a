#include "Scan/ScanInHand.h"

namespace Quillbrook {

// Hands on what the real session gives. A scan asks for its readers once it has begun, which makes this the
// place to repeat a cancel that came before.
class ScanInHand::Session final : public DirectorySession
{
public:
    Session(ScanInHand &scan, std::unique_ptr<DirectorySession> session)
        : m_scan(scan)
        , m_session(std::move(session))
    {
    }

    [[nodiscard]] std::optional<std::uint64_t> rootDevice() const override { return m_session->rootDevice(); }

    [[nodiscard]] std::unique_ptr<DirectoryReader> makeReader() override
    {
        if (m_scan.m_cancelled)
            m_scan.m_scanner.cancel();
        return m_session->makeReader();
    }

private:
    ScanInHand &m_scan;
    std::unique_ptr<DirectorySession> m_session;
};

ScanInHand::ScanInHand(DirectoryReading &directories)
    : m_directories(directories)
{
}

FastScanner::Result ScanInHand::run(const FastScanner::Request &request)
{
    return m_scanner.scan(request);
}

void ScanInHand::cancel()
{
    m_cancelled = true;
    m_scanner.cancel();
}

FastScanner::Progress ScanInHand::progress() const
{
    return m_scanner.progress();
}

std::unique_ptr<DirectorySession> ScanInHand::session(const std::string &rootPath)
{
    return std::make_unique<Session>(*this, m_directories.session(rootPath));
}

} // namespace Quillbrook
