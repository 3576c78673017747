// SPDX-License-Identifier: MIT
#include "SystemCallFilter.h"

#include "RefusedCalls.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <initializer_list>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/sched.h>
#include <linux/seccomp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace {

#if defined(__x86_64__)
constexpr std::uint32_t architecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t architecture = AUDIT_ARCH_AARCH64;
#else
constexpr std::uint32_t architecture = 0;
#endif

constexpr std::uint32_t refusal(int error)
{
    return SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(error);
}

/// A program for the kernel's filter, built one condition after the other. While it runs, the
/// number of the call is what was loaded last. All arguments that it looks at are of 32 bits, but
/// for pointers.
class Program {
public:
    Program()
    {
        load(offsetof(seccomp_data, arch));
        add(BPF_JMP | BPF_JEQ | BPF_K, architecture, 1, 0);
        answer(refusal(EPERM));
        load(offsetof(seccomp_data, nr));
#if defined(__x86_64__)
        // The calls of x32 have the same architecture and numbers of their own.
        constexpr std::uint32_t firstOfX32 = 0x40000000;
        add(BPF_JMP | BPF_JGE | BPF_K, firstOfX32, 0, 1);
        answer(refusal(EPERM));
#endif
    }

    void refuse(long call, int error = EPERM)
    {
        add(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(call), 0, 1);
        answer(refusal(error));
    }

    /// Refused unless the argument is one of the values.
    void refuseUnless(long call, unsigned argument, const std::vector<std::uint32_t> &values)
    {
        // Behind the comparisons: refused, allowed.
        std::size_t rest = values.size();
        add(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(call), 0, rest + 3);
        loadArgument(argument);
        for (const std::uint32_t value : values)
            add(BPF_JMP | BPF_JEQ | BPF_K, value, rest--, 0);
        answer(refusal(EPERM));
        answer(SECCOMP_RET_ALLOW);
    }

    /// Refused when the argument is one of the values.
    void refuseWith(long call, unsigned argument, const std::vector<std::uint32_t> &values)
    {
        std::size_t rest = values.size();
        add(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(call), 0, rest + 3);
        loadArgument(argument);
        for (const std::uint32_t value : values)
            add(BPF_JMP | BPF_JEQ | BPF_K, value, rest--, 0);
        answer(SECCOMP_RET_ALLOW);
        answer(refusal(EPERM));
    }

    /// Refused when the argument has one of the bits.
    void refuseBits(long call, unsigned argument, std::uint32_t bits)
    {
        add(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(call), 0, 4);
        loadArgument(argument);
        add(BPF_JMP | BPF_JSET | BPF_K, bits, 1, 0);
        answer(SECCOMP_RET_ALLOW);
        answer(refusal(EPERM));
    }

    /// Refused unless the argument is a null pointer.
    void refuseUnlessNull(long call, unsigned argument)
    {
        add(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(call), 0, 6);
        loadArgument(argument);
        add(BPF_JMP | BPF_JEQ | BPF_K, 0, 0, 2);
        loadArgument(argument, sizeof(std::uint32_t));
        add(BPF_JMP | BPF_JEQ | BPF_K, 0, 1, 0);
        answer(refusal(EPERM));
        answer(SECCOMP_RET_ALLOW);
    }

    /// Answers success, with nothing done, when the argument is the value.
    void pretend(long call, unsigned argument, std::uint32_t value)
    {
        add(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(call), 0, 4);
        loadArgument(argument);
        add(BPF_JMP | BPF_JEQ | BPF_K, value, 0, 1);
        answer(refusal(0));
        load(offsetof(seccomp_data, nr));
    }

    /// Allows all else. The kernel keeps a copy.
    bool install()
    {
        answer(SECCOMP_RET_ALLOW);
        const sock_fprog filter{static_cast<unsigned short>(m_instructions.size()),
                                m_instructions.data()};
        // A program that confines itself has no secrets from itself: it needs none of the slower
        // ways past the processor's guesses that some kernels join to a filter.
        constexpr unsigned flags = SECCOMP_FILTER_FLAG_TSYNC | SECCOMP_FILTER_FLAG_SPEC_ALLOW;
        return ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, flags, &filter) == 0;
    }

private:
    void add(unsigned code, std::uint32_t value, std::size_t ifTrue = 0, std::size_t ifFalse = 0)
    {
        m_instructions.push_back({static_cast<std::uint16_t>(code),
                                  static_cast<std::uint8_t>(ifTrue),
                                  static_cast<std::uint8_t>(ifFalse), value});
    }
    void load(std::size_t offset)
    {
        add(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset));
    }
    /// Its lower half first: both architectures are little-endian.
    void loadArgument(unsigned argument, std::size_t at = 0)
    {
        load(offsetof(seccomp_data, args) + argument * sizeof(seccomp_data::args[0]) + at);
    }
    void answer(std::uint32_t value)
    {
        add(BPF_RET | BPF_K, value);
    }

    std::vector<sock_filter> m_instructions;
};

void refuseNamespaces(Program &program)
{
    constexpr std::uint32_t namespaces = CLONE_NEWNS | CLONE_NEWCGROUP | CLONE_NEWUTS |
                                         CLONE_NEWIPC | CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNET;
    program.refuseBits(SYS_clone, 0, namespaces);
    // Its flags cannot be looked at; without it the C library takes the one above.
    constexpr long clone3 = 435;
    program.refuse(clone3, ENOSYS);
}

void refuseSockets(Program &program, bool allowsInternet)
{
    std::vector<std::uint32_t> families{AF_UNIX};
    if (allowsInternet)
        families.insert(families.end(), {AF_INET, AF_INET6});
    program.refuseUnless(SYS_socket, 0, families);
    program.refuseUnless(SYS_socketpair, 0, {AF_UNIX});
}

/// Nothing is typed into the terminal that the program was started from.
void refuseTerminalInput(Program &program)
{
    program.refuseWith(SYS_ioctl, 1, {TIOCSTI, TIOCLINUX});
}

void refuseSignals(Program &program)
{
    const auto self = static_cast<std::uint32_t>(::getpid());
    for (const long call : {SYS_kill, SYS_tgkill, SYS_rt_sigqueueinfo, SYS_rt_tgsigqueueinfo})
        program.refuseUnless(call, 0, {self});
    // By the number of a thread or a file alone nobody can tell whose it is.
    constexpr long pidfdSendSignal = 424;
    program.refuse(SYS_tkill);
    program.refuse(pidfdSendSignal);
    // A file may send signals to its owner.
    constexpr std::uint32_t setOwner = 8;
    constexpr std::uint32_t setOwnerByKind = 15;
    program.refuseWith(SYS_fcntl, 1, {setOwner, setOwnerByKind});
}

} // namespace

bool installSystemCallFilter(const FilterOptions &options) noexcept
{
    if (architecture == 0)
        return false;
    Program program;
    for (const long call : refusedCalls)
        program.refuse(call);
    refuseNamespaces(program);
    refuseSockets(program, options.allowsInternet);
    refuseTerminalInput(program);
    if (options.assumesProcesses)
        program.pretend(SYS_kill, 1, 0);
    // The times of a file that is not open.
    program.refuseUnlessNull(SYS_utimensat, 1);
    // The limits of other processes.
    program.refuseUnless(SYS_prlimit64, 0, {0, static_cast<std::uint32_t>(::getpid())});
    if (options.refusesTruncation)
        program.refuse(SYS_truncate);
    if (options.refusesSignals)
        refuseSignals(program);
    return program.install();
}
