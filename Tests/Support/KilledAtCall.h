#pragma once

// A piece of work that is done in a child process and killed at the entry of one of its system calls. The
// work must not need other threads.

#include <QDateTime>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>

namespace Quillbrook {

class KilledAtCall
{
public:
    explicit KilledAtCall(std::function<void()> work)
        : m_work(std::move(work))
    {
    }

    /// For a program that kills many, before the first.
    static void prepare()
    {
        // Child and tracer never run at once, and wake each other sooner on one processor.
        cpu_set_t processor;
        CPU_ZERO(&processor);
        CPU_SET(::sched_getcpu(), &processor);
        ::sched_setaffinity(0, sizeof(processor), &processor);
        // What the first use of a time costs is done once here, and not in every child.
        std::ignore = QDateTime::currentDateTime().toString();
    }

    /// Does the work up to the entry of its system call `kill`, counted from 1. False where it came to its
    /// end before that.
    bool at(long kill)
    {
        m_child = ::fork();
        if (m_child < 0)
            fail("no child");
        if (m_child == 0) {
            ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
            std::raise(SIGSTOP);
            stopAtEveryCall();
            m_work();
            ::_exit(0);
        }
        wait();
        ::ptrace(PTRACE_SETOPTIONS, m_child, nullptr, PTRACE_O_TRACESECCOMP | PTRACE_O_EXITKILL);
        for (calls = 0; go();)
            if (++calls == kill) {
                ::kill(m_child, SIGKILL);
                wait();
                return true;
            }
        return false;
    }

    long calls = 0;

private:
    [[noreturn]] static void fail(const char *what)
    {
        std::fprintf(stderr, "%s\n", what);
        std::exit(1);
    }
    // A filter that hands every call to the tracer at its entry stops half as often as tracing all calls
    // does, which stops at their exits too.
    static void stopAtEveryCall()
    {
        sock_filter all = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE);
        const sock_fprog program{ .len = 1, .filter = &all };
        if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0
            || ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
            ::_exit(2);
    }
    // To the entry of the next call; false at the end.
    bool go()
    {
        if (WIFEXITED(m_status) || WIFSIGNALED(m_status))
            return false;
        ::ptrace(PTRACE_CONT, m_child, nullptr, nullptr);
        wait();
        if (WIFEXITED(m_status) && WEXITSTATUS(m_status) != 0)
            fail("the work has failed, or its calls can't be traced");
        return WIFSTOPPED(m_status);
    }
    void wait()
    {
        if (::waitpid(m_child, &m_status, __WALL) != m_child)
            fail("the child is gone");
    }

    std::function<void()> m_work;
    pid_t m_child = -1;
    int m_status = 0;
};

} // namespace Quillbrook
