#pragma once

// Whether a piece of work ends the process as a broken invariant does: it runs in a forked child, so that the
// test goes on. The work must not need other threads.

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Quillbrook {

template <typename Work>
[[nodiscard]] bool endsProcess(Work &&work)
{
    const auto child = fork();
    if (child == 0) {
        const rlimit noCore{ 0, 0 };
        setrlimit(RLIMIT_CORE, &noCore);
        signal(SIGABRT, SIG_DFL);
        close(STDERR_FILENO);
        work();
        _exit(0);
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFSIGNALED(status)
        && WTERMSIG(status) == SIGABRT;
}

} // namespace Quillbrook
