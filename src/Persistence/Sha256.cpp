// SPDX-License-Identifier: MIT
#include "Sha256.h"

#include <QtGlobal>
#include <openssl/evp.h>

namespace {

/// Looked up once: the search costs more than the digest of a short note.
const EVP_MD *sha256()
{
    static const EVP_MD *const algorithm = EVP_MD_fetch(nullptr, "SHA256", nullptr);
    return algorithm;
}

/// Nothing but a broken installation or a lack of memory makes a digest fail.
void require(bool succeeded)
{
    if (!succeeded)
        qFatal("The SHA-256 of OpenSSL does not work.");
}

EVP_MD_CTX *native(void *context)
{
    return static_cast<EVP_MD_CTX *>(context);
}

} // namespace

Sha256::Sha256()
    : m_context(EVP_MD_CTX_new())
{
    require(m_context && sha256());
    begin();
}

void Sha256::add(std::string_view bytes)
{
    require(EVP_DigestUpdate(native(m_context.get()), bytes.data(), bytes.size()) == 1);
}

Sha256::Digest Sha256::finish()
{
    Digest digest;
    require(EVP_DigestFinal_ex(native(m_context.get()), digest.data(), nullptr) == 1);
    begin();
    return digest;
}

void Sha256::begin()
{
    require(EVP_DigestInit_ex2(native(m_context.get()), sha256(), nullptr) == 1);
}

void Sha256::Free::operator()(void *context) const
{
    EVP_MD_CTX_free(native(context));
}
