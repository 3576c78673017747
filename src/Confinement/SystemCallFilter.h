// SPDX-License-Identifier: MIT
#pragma once

/// What of the filter depends on the rest.
struct FilterOptions {
    /// truncate() by path, which Landlock sees from ABI 3 on.
    bool refusesTruncation = false;

    /// Signals to other processes, which Landlock sees from ABI 6 on.
    bool refusesSignals = false;

    /// Signal 0 is answered with success, whoever it is for.
    bool assumesProcesses = false;

    /// Sockets of the internet beside those of this computer.
    bool allowsInternet = false;
};

/// Has the kernel refuse the system calls (seccomp(2)) that this program has no use for and that
/// could lead out of it: starting programs, looking into other processes, mounting, namespaces,
/// sockets but local ones, the parts of the kernel that most break-outs went through, and what
/// changes a file that lies elsewhere without opening it: its mode, owner, attributes and times.
///
/// A refused call answers EPERM, and ENOSYS where the C library then goes another way; nothing is
/// killed. Calls of another architecture than the program's are all refused. For every thread of
/// the process, which must have no_new_privs. False where there is no filter: the kernel has none,
/// or the architecture is none of x86-64 and arm64.
///
/// Written down here and not made by libseccomp, which takes 0.2 MiB of memory for as long a list,
/// twice what all of the confinement may cost, and 0.6 ms where this takes 0.3.
bool installSystemCallFilter(const FilterOptions &options) noexcept;
