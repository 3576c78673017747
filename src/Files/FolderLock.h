// SPDX-License-Identifier: MIT
#pragma once

#include "Directory.h"

#include <optional>

/// Keeps a folder for one program alone, or for those together that each add something of their
/// own, from the first take() until the end of this or of the program. Leaves nothing behind in the
/// folder.
class FolderLock {
public:
    /// False when another program has the folder. Where the file system has no locks nobody can
    /// tell, and the answer is true. Another folder than the last one replaces that.
    [[nodiscard]] bool take(const Directory &folder, Disk::Lock how = Disk::Lock::alone);

    /// Whether others are really kept out.
    [[nodiscard]] bool isHeld() const noexcept { return m_held.has_value(); }

private:
    struct Held {
        Descriptor folder;
        FileIdentity identity;
    };

    std::optional<Held> m_held;
};
