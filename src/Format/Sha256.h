// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <nettle/sha2.h>
#include <string_view>

/// A SHA-256 (FIPS 180-4) over bytes that arrive in pieces.
class Sha256 {
public:
    using Digest = std::array<unsigned char, SHA256_DIGEST_SIZE>;

    Sha256() noexcept;

    void add(std::string_view bytes) noexcept;

    /// The digest of what was added; after that it begins anew.
    [[nodiscard]] Digest finish() noexcept;

private:
    sha256_ctx m_context;
};
