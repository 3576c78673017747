// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>
#include <sys/types.h>

/// What lies outside for a confined process to reach for.
struct Bait {
    const char *home;     ///< Holds ".ssh/id", "movable", and the own folder somewhere below.
    const char *beside;   ///< The folders above the own ones, with colons between them.
    const char *own;      ///< A folder that may be written, with a file "mine" in it.
    pid_t otherProcess;   ///< Of the same user.
    std::uint16_t port;   ///< Somebody listens to it on this computer, by TCP.
    const char *abstract; ///< Somebody listens to this abstract socket.
};

/// One way to get out of a confined process, or to reach for what lies outside.
struct Attempt {
    enum class Kind {
        files,   ///< Landlock alone can refuse it.
        calls,   ///< The filter of system calls refuses it, with Landlock or without.
        allowed, ///< It is not refused: Landlock does not see it, or X11 needs it.
    };

    const char *name;
    Kind kind;

    /// 0 when it worked, or the errno. What it changed it puts back. May run in a signal handler.
    int (*run)(const Bait &bait);

    /// Whether it needs rights that users do not have.
    bool isForRoot = false;
};

[[nodiscard]] std::span<const Attempt> breakOutAttempts();
