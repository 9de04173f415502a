#pragma once

// One scan's scanner, shared by the model, which watches and cancels it, and the pool thread that runs it.
// The scanner alone forgets a cancel that comes before its scan has begun; this does not, so that a scan that
// is cancelled while its thread is still waiting for its turn never walks the disk. It runs once.

#include "Platform/DirectoryReader.h"
#include "Scan/FastScanner.h"

#include <atomic>

namespace Quillbrook {

class ScanInHand final : private DirectoryReading
{
public:
    explicit ScanInHand(DirectoryReading &directories);

    /// Blocks until the scan has ended or was cancelled.
    [[nodiscard]] FastScanner::Result run(const FastScanner::Request &request);
    /// Callable from any thread at any time, like `progress`.
    void cancel();
    [[nodiscard]] FastScanner::Progress progress() const;

private:
    class Session;

    [[nodiscard]] std::unique_ptr<DirectorySession> session(const std::string &rootPath) override;

    DirectoryReading &m_directories;
    FastScanner m_scanner{ *this };
    std::atomic<bool> m_cancelled = false;
};

} // namespace Quillbrook
