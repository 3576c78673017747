// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

/// What one file of a folder is to become. Holds none of what it names.
struct FileChange {
    /// The sub-folder in which the file lies; empty for the folder itself.
    const char *folder;
    const char *name;

    /// The new content; nothing for a file that is to go.
    std::optional<std::string_view> bytes;
};
