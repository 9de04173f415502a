#include "Platform/Linux/Processes/LinuxProcessRunner.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QProcessEnvironment>

#include <algorithm>
#include <csignal>
#include <unistd.h>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

// A killed process is gone within moments; the bound is for a machine that is stuck itself.
constexpr int reapMilliseconds = 5000;
// How soon a stop is noticed.
constexpr int sliceMilliseconds = 100;

QProcessEnvironment plainEnvironment()
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"LC_ALL"_s, u"C"_s);
    return environment;
}

// The group, not the process alone: a shell script's own child would live on and hold the pipe open.
void killGroup(qint64 leader)
{
    if (leader > 0)
        ::kill(-static_cast<pid_t>(leader), SIGKILL);
}

// Adds what the process has printed so far; false once there is more than `limit`.
bool drain(QProcess &process, ProcessRunner::Result &result, qsizetype limit)
{
    result.output += process.readAllStandardOutput();
    result.errors += process.readAllStandardError();
    const bool within = result.output.size() <= limit && result.errors.size() <= limit;
    result.output.truncate(limit);
    result.errors.truncate(limit);
    return within;
}

// The end of the time that a program has, which a stop brings nearer.
class Deadline
{
public:
    explicit Deadline(const ProcessRunner::Command &command)
        : m_command(command)
        , m_end(command.timeLimit)
    {
    }

    [[nodiscard]] bool hasPassed()
    {
        if (!m_isStopping && m_command.stop.stop_requested()) {
            m_isStopping = true;
            m_end = std::min(m_end, QDeadlineTimer(m_command.afterStop));
        }
        return m_end.hasExpired();
    }
    /// -1 is for ever.
    [[nodiscard]] int milliseconds() const { return static_cast<int>(m_end.remainingTime()); }
    /// The same, but not beyond the moment at which a stop is looked for again.
    [[nodiscard]] int sliceOfIt() const
    {
        const bool mayStop = m_command.stop.stop_possible() && !m_isStopping;
        const bool isLong = milliseconds() < 0 || milliseconds() > sliceMilliseconds;
        return mayStop && isLong ? sliceMilliseconds : milliseconds();
    }

private:
    const ProcessRunner::Command &m_command;
    QDeadlineTimer m_end;
    bool m_isStopping = false;
};

} // namespace

std::optional<ProcessRunner::Result> LinuxProcessRunner::run(const Command &command) const
{
    QProcess process;
    process.setProgram(command.program);
    process.setArguments(command.arguments);
    process.setProcessEnvironment(plainEnvironment());
    process.setStandardInputFile(QProcess::nullDevice());
    if (!command.keepsErrors)
        process.setStandardErrorFile(QProcess::nullDevice());
    process.setChildProcessModifier([] { ::setpgid(0, 0); });
    Deadline deadline(command);
    process.start(QIODevice::ReadOnly);
    if (!process.waitForStarted(deadline.milliseconds()))
        return std::nullopt;
    const auto leader = process.processId();

    Result result;
    bool within = true;
    while (within && process.state() != QProcess::NotRunning && !deadline.hasPassed()) {
        process.waitForReadyRead(deadline.sliceOfIt());
        within = drain(process, result, command.outputLimit);
    }
    const bool ended = process.state() == QProcess::NotRunning;
    if (!ended) {
        killGroup(leader);
        process.kill();
        process.waitForFinished(reapMilliseconds);
    }
    within = drain(process, result, command.outputLimit) && within;
    result.exited = ended && within && process.exitStatus() == QProcess::NormalExit;
    result.exitCode = result.exited ? process.exitCode() : -1;
    return result;
}

} // namespace Quillbrook
