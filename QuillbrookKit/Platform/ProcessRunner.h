#pragma once

// Running another program for what it prints.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>
#include <stop_token>

namespace Quillbrook {

class ProcessRunner
{
public:
    struct Command
    {
        /// Absolute.
        QString program{};
        QStringList arguments{};
        /// The program is killed, with all it started, when it has run for longer; never with the largest
        /// value.
        std::chrono::milliseconds timeLimit = std::chrono::seconds(10);
        /// The program is killed when it has printed more bytes, on either stream.
        qsizetype outputLimit = qsizetype{ 4 } * 1024 * 1024;
        /// What it prints on its standard error is kept too, else dropped.
        bool keepsErrors = false;
        /// Once a stop is requested, the program may run for `afterStop` more and is then killed likewise.
        std::stop_token stop{};
        std::chrono::milliseconds afterStop{};
    };

    struct Result
    {
        /// Standard output, at most `outputLimit` bytes. What a killed program printed before is kept.
        QByteArray output{};
        /// Standard error, if asked for: at most `outputLimit` bytes.
        QByteArray errors{};
        /// False for a program that was killed at a limit or died of a signal.
        bool exited = false;
        int exitCode = -1;
    };

    virtual ~ProcessRunner() = default;
    /// Runs the command with the user's environment in the "C" locale, with nothing on its standard input,
    /// and waits for its end. Absent when it could not be started. Any thread.
    [[nodiscard]] virtual std::optional<Result> run(const Command &command) const = 0;
};

} // namespace Quillbrook
