// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

/// The names of recovery copies. The second half of the identifier in such a name is that of the
/// data folder on this computer, so that one that a synchronising program brought along can be told
/// from one's own: a UUID of version 8 (RFC 9562), of which the first half is random, and the
/// second the beginning of the SHA-256 of "/etc/machine-id" and the path. Where the computer has no
/// such file, the identifier is random, as it was in older versions.
namespace RecoveryName {

enum class Origin : std::uint8_t {
    here,      ///< Made for this data folder, on this computer.
    elsewhere, ///< Made on another computer, or for another folder.
    unknown,
};

[[nodiscard]] std::string fresh(const std::filesystem::path &dataFolder);
[[nodiscard]] Origin originOf(std::string_view name, const std::filesystem::path &dataFolder);

} // namespace RecoveryName
