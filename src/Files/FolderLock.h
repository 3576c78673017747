// SPDX-License-Identifier: MIT
#pragma once

#include "Directory.h"

#include <optional>

/// Keeps a folder for one program alone, from the first take() until the end of this or of the
/// program. Leaves nothing behind in the folder.
class FolderLock {
public:
    /// False when another program has the folder. Where the file system has no locks nobody can
    /// tell, and the answer is true. Another folder than the last one replaces that.
    [[nodiscard]] bool take(const Directory &folder);

private:
    struct Held {
        Descriptor folder;
        FileIdentity identity;
    };

    std::optional<Held> m_held;
};
