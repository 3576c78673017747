// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string_view>

using Sha256Digest = std::array<unsigned char, 32>;

/// The SHA-256 of these bytes (FIPS 180-4).
[[nodiscard]] Sha256Digest sha256(std::string_view bytes) noexcept;

/// Of the one behind the other.
[[nodiscard]] Sha256Digest sha256(std::string_view first, std::string_view second) noexcept;
