// SPDX-License-Identifier: MIT
#include "Sha256.h"

Sha256::Sha256() noexcept
{
    sha256_init(&m_context);
}

void Sha256::add(std::string_view bytes) noexcept
{
    sha256_update(&m_context, bytes.size(), reinterpret_cast<const unsigned char *>(bytes.data()));
}

Sha256::Digest Sha256::finish() noexcept
{
    Digest digest;
    sha256_digest(&m_context, digest.size(), digest.data());
    return digest;
}
