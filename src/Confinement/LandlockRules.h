// SPDX-License-Identifier: MIT
#pragma once

struct Reach;

/// The rules of Landlock (landlock(7)), by which the kernel refuses a process files, TCP and
/// signals to others: unprivileged, for good, and for the threads and processes that it starts.
///
/// What is right depends on the kernel's version of the interface, its ABI. Nothing is asked for
/// that the kernel does not know, so each version does as much as it can.
namespace LandlockRules {

/// Before it, links and renames from one folder into another are refused everywhere, without which
/// nothing is saved.
constexpr int firstAbi = 2;

/// The last one whose rights are known here.
constexpr int lastAbi = 7;

/// From which on the kernel refuses what before that is left to the filter of system calls.
constexpr int abiOfTruncation = 3;
constexpr int abiOfPorts = 4;
constexpr int abiOfSignals = 6;

/// The highest one that the kernel and this program both know; 0 where that is none, or too low.
[[nodiscard]] int usableAbi() noexcept;

/// Leaves the calling thread, and what it starts from now on, nothing but what may be reached. It
/// must have no_new_privs. False when the kernel refused, and nothing has changed then.
///
/// Abstract sockets stay open to it: X11 and the session manager are reached by them. Nothing may
/// be executed.
[[nodiscard]] bool enforce(const Reach &reach, int abi) noexcept;

} // namespace LandlockRules
