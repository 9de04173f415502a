#include "Platform/Linux/Session/LinuxQuitSignals.h"

#include <QDebug>
#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace Quillbrook {

namespace {

constexpr std::array asking{ SIGTERM, SIGINT };

/// The pipe's end that the handler writes to; -1 is none.
std::atomic<int> handlersEnd = -1;
static_assert(std::atomic<int>::is_always_lock_free, "a handler may use nothing that locks");

extern "C" void noteQuitSignal(int)
{
    const auto keptError = errno;
    const char byte = 0;
    // A full pipe has already said it.
    if (const auto end = handlersEnd.load(); end >= 0) [[maybe_unused]]
        const auto written = ::write(end, &byte, 1);
    errno = keptError;
}

} // namespace

LinuxQuitSignals::LinuxQuitSignals(QObject *parent)
    : QuitRequests(parent)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        qWarning("Quillbrook: no pipe for signals — %ls", qUtf16Printable(qt_error_string()));
        return;
    }
    m_readEnd = FileDescriptor(ends[0]);
    m_writeEnd = FileDescriptor(ends[1]);
    handlersEnd = m_writeEnd.number();
    m_notifier = std::make_unique<QSocketNotifier>(m_readEnd.number(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &LinuxQuitSignals::receive);

    struct sigaction action = {};
    action.sa_handler = noteQuitSignal;
    ::sigemptyset(&action.sa_mask);
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    for (const auto signal : asking) {
        // A signal that the parent process had ignored stays ignored, as nohup wants it.
        struct sigaction earlier = {};
        if (::sigaction(signal, nullptr, &earlier) == 0 && earlier.sa_handler != SIG_IGN)
            ::sigaction(signal, &action, nullptr);
    }
}

LinuxQuitSignals::~LinuxQuitSignals()
{
    if (!m_writeEnd.isOpen())
        return;
    struct sigaction usual = {};
    usual.sa_handler = SIG_DFL;
    ::sigemptyset(&usual.sa_mask);
    for (const auto signal : asking) {
        struct sigaction present = {};
        if (::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == noteQuitSignal)
            ::sigaction(signal, &usual, nullptr);
    }
    handlersEnd = -1;
}

void LinuxQuitSignals::receive()
{
    std::array<char, 16> bytes{};
    while (::read(m_readEnd.number(), bytes.data(), bytes.size()) > 0) { }
    Q_EMIT asked();
}

} // namespace Quillbrook
