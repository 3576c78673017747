// SPDX-License-Identifier: MIT
#include "Sha256.h"

// The functions of OpenSSL 1.1. Those of 3.0 first load its providers and its settings, which takes
// a sixth of the whole start and more memory than the bubble.
#define OPENSSL_API_COMPAT 10101
#include <openssl/sha.h>

namespace {

SHA256_CTX *native(void *context)
{
    return static_cast<SHA256_CTX *>(context);
}

} // namespace

Sha256::Sha256()
    : m_context(new SHA256_CTX)
{
    begin();
}

void Sha256::add(std::string_view bytes)
{
    SHA256_Update(native(m_context.get()), bytes.data(), bytes.size());
}

Sha256::Digest Sha256::finish()
{
    Digest digest;
    SHA256_Final(digest.data(), native(m_context.get()));
    begin();
    return digest;
}

void Sha256::begin()
{
    SHA256_Init(native(m_context.get()));
}

void Sha256::Free::operator()(void *context) const
{
    delete native(context);
}
