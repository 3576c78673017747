// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

/// Makes the kernel answer one kind of system call with an error.
struct RefusedCall {
    long number;
    int error;

    /// Only calls whose third argument, for a write its length, is at least this. The sanitizers
    /// write a few bytes to themselves.
    std::uint32_t leastThird = 0;
};

namespace RefusedCallDetail {

inline bool install(const std::vector<RefusedCall> &calls)
{
    std::vector<sock_filter> program;
    for (const RefusedCall &call : calls) {
        const auto number = static_cast<std::uint32_t>(call.number);
        const auto error = static_cast<std::uint32_t>(call.error);
        program.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)));
        program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 3));
        program.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[2])));
        program.push_back(BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, call.leastThird, 0, 1));
        program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error));
    }
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

} // namespace RefusedCallDetail

/// Runs an action in a process of its own in which the calls are refused. Answers what the action
/// answers, a number from 1 to 99, or another one when the process could not run it to its end.
template <typename Action>
int withRefusedCalls(const std::vector<RefusedCall> &calls, Action action)
{
    const pid_t child = ::fork();
    if (child == 0) {
        // Leaves without the end of the test program, which belongs to the parent.
        ::_exit(RefusedCallDetail::install(calls) ? action() : 100);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return 101;
    return WEXITSTATUS(status);
}
