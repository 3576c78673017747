// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>

/// Where the user's programs keep what, by the XDG rules: the variable of the environment, when it
/// is an absolute path, or else the usual folder in the home folder. None needs to be there.

[[nodiscard]] std::filesystem::path userDataFolder();
[[nodiscard]] std::filesystem::path userConfigFolder();
[[nodiscard]] std::filesystem::path userStateFolder();
[[nodiscard]] std::filesystem::path userCacheFolder();

/// The folder for the time of the session, where there is one.
[[nodiscard]] std::optional<std::filesystem::path> sessionFolder();

/// Makes a folder for the user alone, and those above it, where it is missing. As long as it is
/// empty its name is put on the disk, too: later the process may have no right to the folders
/// above. What fails shows when the folder is used.
void makeUserFolder(const std::filesystem::path &path);

/// What a variable of the environment holds, when it is an absolute path: by the XDG rules a
/// relative one is no path at all.
[[nodiscard]] std::optional<std::filesystem::path> absolutePathIn(const char *variable);
