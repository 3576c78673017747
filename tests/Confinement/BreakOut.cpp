// SPDX-License-Identifier: MIT
#include "BreakOut.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <linux/keyctl.h>
#include <linux/netlink.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

/// A path in memory that needs no allocation.
class Path {
public:
    Path(const char *folder, const char *name)
    {
        std::snprintf(m_text.data(), m_text.size(), "%s/%s", folder, name);
    }
    operator const char *() const { return m_text.data(); }

private:
    std::array<char, 2048> m_text{};
};

int outcome(long answer)
{
    return answer < 0 ? errno : 0;
}

/// Of what answers a descriptor, which is closed again.
int opened(int descriptor)
{
    if (descriptor < 0)
        return errno;
    ::close(descriptor);
    return 0;
}

/// Runs it in a process of its own, which may become another program.
template <typename Action>
int inChild(Action action)
{
    // No handler of a library runs, whatever the thread was doing.
    const pid_t child = ::_Fork();
    if (child < 0)
        return errno;
    if (child == 0)
        ::_exit(action());
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR)
        continue;
    return WIFEXITED(status) ? WEXITSTATUS(status) : EINTR;
}

int readSecret(const Bait &bait)
{
    return opened(::open(Path(bait.home, ".ssh/id"), O_RDONLY | O_CLOEXEC));
}

int readSecretByLink(const Bait &bait)
{
    const Path link(bait.own, "way out");
    if (::symlink(Path(bait.home, ".ssh/id"), link) != 0)
        return errno;
    const int result = opened(::open(link, O_RDONLY | O_CLOEXEC));
    ::unlink(link);
    return result;
}

int listHome(const Bait &bait)
{
    return opened(::open(bait.home, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

/// 0 when it worked in one of the folders.
template <typename Action>
int inAnyOf(const char *folders, Action action)
{
    int result = ENOENT;
    for (const char *at = folders; result != 0 && *at != '\0';) {
        const std::size_t length = ::strcspn(at, ":");
        std::array<char, 1024> folder{};
        std::memcpy(folder.data(), at, length);
        result = action(folder.data());
        at += length + (at[length] == ':' ? 1 : 0);
    }
    return result;
}

int writeBeside(const Bait &bait)
{
    return inAnyOf(bait.beside, [](const char *folder) {
        const Path file(folder, "made by the probe");
        const int result = opened(::open(file, O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        ::unlink(file);
        return result;
    });
}

int makeFolderBeside(const Bait &bait)
{
    return inAnyOf(bait.beside, [](const char *parent) {
        const Path folder(parent, "folder of the probe");
        const int result = outcome(::mkdir(folder, 0700));
        ::rmdir(folder);
        return result;
    });
}

int linkOut(const Bait &bait)
{
    return inAnyOf(bait.beside, [&](const char *folder) {
        const Path there(folder, "linked out");
        const int result = outcome(::link(Path(bait.own, "mine"), there));
        ::unlink(there);
        return result;
    });
}

int linkIn(const Bait &bait)
{
    const Path here(bait.own, "linked in");
    const int result = outcome(::link(Path(bait.home, ".ssh/id"), here));
    ::unlink(here);
    return result;
}

int move(const char *from, const char *to)
{
    const int result = outcome(::rename(from, to));
    if (result == 0)
        ::rename(to, from);
    return result;
}

int renameOut(const Bait &bait)
{
    return inAnyOf(bait.beside, [&](const char *folder) {
        return move(Path(bait.own, "mine"), Path(folder, "moved out"));
    });
}

int renameIn(const Bait &bait)
{
    return move(Path(bait.home, "movable"), Path(bait.own, "moved in"));
}

int removeOther(const Bait &bait)
{
    const Path file(bait.home, "movable");
    const int result = outcome(::unlink(file));
    if (result == 0)
        opened(::open(file, O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    return result;
}

int truncateByPath(const Bait &bait)
{
    return outcome(::truncate(Path(bait.home, "movable"), 0));
}

int truncateByOpening(const Bait &bait)
{
    return opened(::open(Path(bait.home, "movable"), O_WRONLY | O_TRUNC | O_CLOEXEC));
}

int readOtherProcess(const Bait &bait)
{
    std::array<char, 64> path{};
    std::snprintf(path.data(), path.size(), "/proc/%d/environ", bait.otherProcess);
    return opened(::open(path.data(), O_RDONLY | O_CLOEXEC));
}

int changeMode(const Bait &bait)
{
    return outcome(::chmod(Path(bait.home, "movable"), 0600));
}

int changeAttribute(const Bait &bait)
{
    const Path file(bait.home, "movable");
    const int result = outcome(::setxattr(file, "user.probe", "1", 1, 0));
    ::removexattr(file, "user.probe");
    return result;
}

int changeTimes(const Bait &bait)
{
    return outcome(::utimensat(AT_FDCWD, Path(bait.home, "movable"), nullptr, 0));
}

int lookAt(const Bait &bait)
{
    struct stat found {};
    return outcome(::stat(Path(bait.home, ".ssh/id"), &found));
}

int connectByTcp(const Bait &bait)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket < 0)
        return errno;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(bait.port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int result =
        outcome(::connect(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address));
    ::close(socket);
    return result;
}

int useUdp(const Bait & /*bait*/)
{
    return opened(::socket(AF_INET6, SOCK_DGRAM | SOCK_CLOEXEC, 0));
}

int useNetlink(const Bait & /*bait*/)
{
    return opened(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
}

int connectToAbstract(const Bait &bait)
{
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket < 0)
        return errno;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::size_t length = std::strlen(bait.abstract);
    std::memcpy(address.sun_path + 1, bait.abstract, length);
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + length);
    const int result =
        outcome(::connect(socket, reinterpret_cast<const sockaddr *>(&address), size));
    ::close(socket);
    return result;
}

int execute(const Bait & /*bait*/)
{
    return inChild([] {
        char name[] = "true";
        char *arguments[] = {name, nullptr};
        ::execve("/bin/true", arguments, nullptr);
        return errno;
    });
}

int executeOwn(const Bait & /*bait*/)
{
    // A program that was never a file of anybody's.
    return inChild([] {
        const int from = ::open("/usr/bin/true", O_RDONLY | O_CLOEXEC);
        const int copy = ::memfd_create("probe", MFD_CLOEXEC);
        std::array<char, 4096> some{};
        for (ssize_t size; (size = ::read(from, some.data(), some.size())) > 0;)
            if (::write(copy, some.data(), static_cast<std::size_t>(size)) != size)
                return EIO;
        char name[] = "true";
        char *arguments[] = {name, nullptr};
        char *environment[] = {nullptr};
        ::syscall(SYS_execveat, copy, "", arguments, environment, AT_EMPTY_PATH);
        return errno;
    });
}

int trace(const Bait &bait)
{
    const int result = outcome(::ptrace(PTRACE_SEIZE, bait.otherProcess, nullptr, nullptr));
    if (result == 0) {
        ::ptrace(PTRACE_INTERRUPT, bait.otherProcess, nullptr, nullptr);
        ::waitpid(bait.otherProcess, nullptr, __WALL);
        ::ptrace(PTRACE_DETACH, bait.otherProcess, nullptr, nullptr);
    }
    return result;
}

int readOtherMemory(const Bait &bait)
{
    char byte = 0;
    const iovec here{&byte, 1};
    const iovec there{&byte, 1}; // Whatever lies there: it is refused before anybody looks.
    const int result = outcome(::process_vm_readv(bait.otherProcess, &here, 1, &there, 1, 0));
    return result == EFAULT ? 0 : result;
}

int signalOther(const Bait &bait)
{
    return outcome(::kill(bait.otherProcess, SIGURG)); // Nobody minds it.
}

int signalOtherByFile(const Bait &bait)
{
    const auto file = static_cast<int>(::syscall(434 /* pidfd_open */, bait.otherProcess, 0));
    if (file < 0)
        return errno;
    const int result = outcome(::syscall(424 /* pidfd_send_signal */, file, SIGURG, nullptr, 0));
    ::close(file);
    return result;
}

int limitOther(const Bait &bait)
{
    rlimit limit{};
    return outcome(::prlimit(bait.otherProcess, RLIMIT_CPU, nullptr, &limit));
}

int mountOver(const Bait &bait)
{
    const int result = outcome(::mount("none", bait.own, "tmpfs", 0, nullptr));
    if (result == 0)
        ::umount2(bait.own, MNT_DETACH);
    return result;
}

int openUserNamespace(const Bait & /*bait*/)
{
    return inChild([] { return outcome(::unshare(CLONE_NEWUSER)); });
}

int cloneIntoUserNamespace(const Bait & /*bait*/)
{
    const long child = ::syscall(SYS_clone, CLONE_NEWUSER | SIGCHLD, nullptr, nullptr, nullptr, 0);
    if (child == 0)
        ::_exit(0);
    if (child > 0)
        ::waitpid(static_cast<pid_t>(child), nullptr, 0);
    return outcome(child);
}

int useKeyring(const Bait & /*bait*/)
{
    return outcome(::syscall(SYS_keyctl, KEYCTL_GET_KEYRING_ID, KEY_SPEC_PROCESS_KEYRING, 1));
}

int useRings(const Bait & /*bait*/)
{
    std::array<std::uint32_t, 64> parameters{};
    return opened(static_cast<int>(::syscall(425 /* io_uring_setup */, 1, parameters.data())));
}

int handleFaults(const Bait & /*bait*/)
{
    constexpr int userModeOnly = 1;
    return opened(static_cast<int>(::syscall(SYS_userfaultfd, O_CLOEXEC | userModeOnly)));
}

int typeIntoTerminal(const Bait & /*bait*/)
{
    // There need be no terminal: that is found out only by who may ask.
    char letter = 'x';
    const int result = outcome(::ioctl(STDIN_FILENO, TIOCSTI, &letter));
    return result == ENOTTY || result == EIO ? 0 : result;
}

#if defined(__x86_64__)
int callByForeignNumber(const Bait & /*bait*/)
{
    constexpr long x32 = 0x40000000;
    const int result = outcome(::syscall(x32 | SYS_getpid));
    return result == ENOSYS ? 0 : result; // Kernels need not know x32.
}
#endif

constexpr auto files = Attempt::Kind::files;
constexpr auto calls = Attempt::Kind::calls;

constexpr Attempt attempts[] = {
    {"read ~/.ssh/id", files, &readSecret},
    {"read ~/.ssh/id by a link", files, &readSecretByLink},
    {"list the home folder", files, &listHome},
    {"write beside an own folder", files, &writeBeside},
    {"make a folder beside", files, &makeFolderBeside},
    {"link out", files, &linkOut},
    {"link in", files, &linkIn},
    {"rename out", files, &renameOut},
    {"rename in", files, &renameIn},
    {"remove another's file", files, &removeOther},
    {"truncate by path", files, &truncateByPath},
    {"truncate by opening", files, &truncateByOpening},
    {"read another process", files, &readOtherProcess},
    {"change another file's mode", calls, &changeMode},
    {"change another file's attribute", calls, &changeAttribute},
    {"change another file's times", calls, &changeTimes},
    {"look at a file's size and times", Attempt::Kind::allowed, &lookAt},
    {"connect by TCP", calls, &connectByTcp},
    {"a socket for UDP", calls, &useUdp},
    {"a socket for netlink", calls, &useNetlink},
    {"connect to an abstract socket", Attempt::Kind::allowed, &connectToAbstract},
    {"execute /bin/true", calls, &execute},
    {"execute from memory", calls, &executeOwn},
    {"trace another process", calls, &trace},
    {"read another's memory", calls, &readOtherMemory},
    {"signal another process", calls, &signalOther},
    {"signal it by its file", calls, &signalOtherByFile},
    {"limit another process", calls, &limitOther},
    {"mount", calls, &mountOver, true},
    {"open a user namespace", calls, &openUserNamespace},
    {"clone into a user namespace", calls, &cloneIntoUserNamespace},
    {"use the keyring", calls, &useKeyring},
    {"use io_uring", calls, &useRings},
    {"use userfaultfd", calls, &handleFaults},
    {"type into the terminal", calls, &typeIntoTerminal},
#if defined(__x86_64__)
    {"call by a foreign number", calls, &callByForeignNumber},
#endif
};

} // namespace

std::span<const Attempt> breakOutAttempts()
{
    return attempts;
}
