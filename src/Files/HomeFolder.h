// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

/// The user's home folder: HOME, when it is an absolute path, or else what the user database says.
/// Only where neither says anything is it the root folder.
[[nodiscard]] std::filesystem::path homeFolder();
