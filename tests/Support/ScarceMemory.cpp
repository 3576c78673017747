// SPDX-License-Identifier: MIT
#include "ScarceMemory.h"

#include <QtGlobal>
#include <cerrno>
#include <cstdlib>
#include <malloc.h>
#include <utility>

// The names under which the C library keeps its own for those who replace them.
extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier)
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void *memory);
// NOLINTEND(bugprone-reserved-identifier)
}

namespace {

// Of the thread alone, and of a kind that needs no memory of its own.
[[gnu::tls_model("initial-exec")]] thread_local bool isScarce = false;
std::size_t successesLeft = 0;
std::size_t failureCount = 0;
ScarceMemory::Lack lackOfMemory = ScarceMemory::Lack::passing;

bool refuses() noexcept
{
    if (!isScarce)
        return false;
    if (successesLeft > 0) {
        --successesLeft;
        return false;
    }
    if (lackOfMemory == ScarceMemory::Lack::passing && failureCount > 0)
        return false;
    ++failureCount;
    errno = ENOMEM;
    return true;
}

} // namespace

ScarceMemory::ScarceMemory(std::size_t successes, Lack lack) noexcept
{
    successesLeft = successes;
    failureCount = 0;
    lackOfMemory = lack;
    isScarce = true;
}

ScarceMemory::~ScarceMemory()
{
    isScarce = false;
}

std::size_t ScarceMemory::failures() noexcept
{
    return failureCount;
}

// Exported, since the libraries are to call these.
extern "C" {

Q_DECL_EXPORT void *malloc(std::size_t size) noexcept
{
    return refuses() ? nullptr : __libc_malloc(size);
}

Q_DECL_EXPORT void *calloc(std::size_t count, std::size_t size) noexcept
{
    return refuses() ? nullptr : __libc_calloc(count, size);
}

Q_DECL_EXPORT void *realloc(void *memory, std::size_t size) noexcept
{
    return refuses() ? nullptr : __libc_realloc(memory, size);
}

Q_DECL_EXPORT void *aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
    return refuses() ? nullptr : __libc_memalign(alignment, size);
}

Q_DECL_EXPORT void *memalign(std::size_t alignment, std::size_t size) noexcept
{
    return refuses() ? nullptr : __libc_memalign(alignment, size);
}

Q_DECL_EXPORT int posix_memalign(void **memory, std::size_t alignment, std::size_t size) noexcept
{
    *memory = refuses() ? nullptr : __libc_memalign(alignment, size);
    return *memory ? 0 : ENOMEM;
}

Q_DECL_EXPORT void free(void *memory) noexcept
{
    __libc_free(memory);
}
}
