// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <vector>

/// The folders in which the program keeps what is the user's: its "Penwick" for data, settings,
/// state and cache, and for the time of the session. Nobody else's is among them.
[[nodiscard]] std::vector<std::filesystem::path> ownFolders();

/// Where fontconfig keeps what it has learnt of the fonts.
[[nodiscard]] std::filesystem::path fontCacheFolder();

/// Makes those that are missing, for the user alone, and puts those that are empty yet on the disk
/// by name: afterwards the process may have no right to the folders above them. The folder for what
/// is known of fonts as well, which fontconfig could not make then. One that cannot be made is left
/// out; a save says so.
void makeOwnFolders();
