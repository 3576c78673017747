// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>

/// A SHA-256 over bytes that arrive in pieces.
class Sha256 {
public:
    using Digest = std::array<unsigned char, 32>;

    Sha256();

    void add(std::string_view bytes);

    /// The digest of what was added; after that it begins anew.
    [[nodiscard]] Digest finish();

private:
    void begin();

    /// OpenSSL's types stay out of the header.
    struct Free {
        void operator()(void *context) const;
    };
    std::unique_ptr<void, Free> m_context;
};
