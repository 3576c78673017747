// SPDX-License-Identifier: MIT
#pragma once

#include "Reach.h"

#include <string>

/// What was taken from this process: a plain value, to be told.
struct Confinement {
    /// QUILLMARK_UNCONFINED=1: nothing was.
    bool isWaived = false;

    /// The ABI of Landlock; 0 where the kernel has none that will do, and files are not kept from
    /// it.
    int landlock = 0;

    /// System calls are filtered.
    bool hasFilter = false;

    /// TCP is possible, since the display is reached by it.
    bool hasNetwork = false;

    /// One sentence for the user.
    [[nodiscard]] std::string description() const;
};

/// Confines this process for good: no new privileges, no files but those that may be reached, no
/// network, no other programs. To be called while there is one thread and before anything is read
/// that others wrote. What the kernel cannot do is left out; nothing here fails.
///
/// With an ABI of Landlock it is as on a kernel that has no higher one, for tests.
Confinement confine(const Reach &reach);
Confinement confine(const Reach &reach, int landlockAbi);
