// SPDX-License-Identifier: MIT
#include "Sha256.h"

#include <nettle/sha2.h>
#include <tuple>

static_assert(std::tuple_size_v<Sha256Digest> == SHA256_DIGEST_SIZE);

Sha256Digest sha256(std::string_view bytes) noexcept
{
    return sha256(bytes, {});
}

Sha256Digest sha256(std::string_view first, std::string_view second) noexcept
{
    sha256_ctx context;
    sha256_init(&context);
    for (const std::string_view bytes : {first, second})
        sha256_update(&context, bytes.size(),
                      reinterpret_cast<const unsigned char *>(bytes.data()));
    Sha256Digest digest;
    sha256_digest(&context, digest.size(), digest.data());
    return digest;
}
